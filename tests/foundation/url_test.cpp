#include "platform/foundation/url.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/cf_url.h"
#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr const char* kNone = nullptr;

using Url = LiveObjectsTest;

NSURL urlOf(const char* text) { return NSURL::URLWithString(NSString::stringWithUTF8String(text)); }

CFURLRef refOf(const char* text) { return bridge<CFURLRef>(urlOf(text)); }

// The text of a string or URL that this function releases; "nil" for none.
std::string taken(CFTypeRef reference) {
  const auto owner = Retained<NSObject>::adopt(bridge<NSObject>(reference));
  return owner ? owner->description().UTF8String() : "nil";
}

// What reads as a test's table: nil for a null pointer.
std::string orNil(const char* text) { return text != nullptr ? text : "nil"; }

std::string filePath(CFURLRef url, CFIndex size = 4096) {
  std::vector<std::uint8_t> buffer(static_cast<std::size_t>(size), 'x');
  if (!CFURLGetFileSystemRepresentation(url, true, buffer.data(), size)) return "none";
  return reinterpret_cast<const char*>(buffer.data());
}

CFURLRef fileUrl(const std::string& path, bool isDirectory = false) {
  return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                 reinterpret_cast<const std::uint8_t*>(path.data()),
                                                 static_cast<CFIndex>(path.size()), isDirectory);
}

TEST_F(Url, ComesFromLegalTextOnly) {
  for (const char* legal : {"http://host/a?b#c", "addressbook://1B2C-D:ABPerson?edit", "mailto:a@b.c", "a/b", "#x",
                            "%41", "x:", "//host/p", "http://u:p@h:99999999/;(,)~*'!$&=+_"}) {
    EXPECT_STREQ(urlOf(legal).absoluteString().UTF8String(), legal);
  }
  for (const char* garbage : {"", "a b", "http://h/\xC3\xA9", "%", "%4", "%4g", "%zz", "100%", "a#b#c", "<a>", "{a}",
                              "a\nb", "a\"b", "a\\b", "^", "`", "|", "\x7F"}) {
    EXPECT_FALSE(urlOf(garbage)) << garbage;
  }
  EXPECT_FALSE(NSURL::URLWithString(NSString::stringWithUTF8({"a\0b", 3})));
  EXPECT_EQ(raised([] { NSURL::URLWithString(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { NSURL::fileURLWithPath(nullptr); }), "NSInvalidArgumentException");
}

TEST_F(Url, KnowsItsParts) {
  const struct {
    const char* url;
    const char* scheme;
    const char* path;
    bool isFile;
  } cases[] = {
      {"file:///a%20b/%C3%A9/", "file", "/a b/\xC3\xA9", true},
      {"FILE://localhost/", "FILE", "/", true},
      {"file:/a", "file", "/a", true},
      {"http://host", "http", "", false},
      {"http://host?q=/a", "http", "", false},
      {"http://host/a;b?c#d", "http", "/a;b", false},
      {"http:///%FF%e9x", "http", "/%FF%E9x", false},
      {"http://h/a%2Fb%25", "http", "/a/b%", false},
      {"a-1.+:/p", "a-1.+", "/p", false},
      {"1a:/p", kNone, "1a:/p", false},
      {"mailto:a@b", "mailto", kNone, false},
      {"file:a", "file", kNone, true},
      {"a/b/", kNone, "a/b", false},
      {"//host/p", kNone, "/p", false},
      {"#x", kNone, "", false},
  };
  for (const auto& [url, scheme, path, isFile] : cases) {
    SCOPED_TRACE(url);
    EXPECT_EQ(orNil(urlOf(url).scheme().UTF8String()), orNil(scheme));
    EXPECT_EQ(orNil(urlOf(url).path().UTF8String()), orNil(path));
    EXPECT_EQ(urlOf(url).isFileURL(), isFile);
  }
}

TEST_F(Url, TakesComponentsAway) {
  const struct {
    const char* url;
    const char* without;
    const char* last;
  } cases[] = {
      {"file:///a/b", "file:///a/", "b"},
      {"file:///a/b/", "file:///a/", "b"},
      {"file:///a//b//", "file:///a//", "b"},
      {"file:///a", "file:///", "a"},
      {"file:///", "file:///../", "/"},
      {"file:////", "file:////../", "/"},
      {"file:///a/..", "file:///a/../../", ".."},
      {"file:///a/./", "file:///a/./../", "."},
      {"file:///x/caf%C3%A9%2520", "file:///x/", "caf\xC3\xA9%20"},
      {"file:///x/%FF%fe", "file:///x/", "%FF%FE"},
      {"file:///x/a%2Fb", "file:///x/", "a/b"},
      {"http://host/", "http://host/../", "/"},
      {"http://host/a?q=1/2#f/g", "http://host/?q=1/2#f/g", "a"},
      {"http://host", kNone, ""},
      {"http://host?a/b", kNone, ""},
      {"addressbook://1:ABPerson?edit", kNone, ""},
      {"mailto:a@b/c", kNone, ""},
      {"foo", "./", "foo"},
      {"foo/", "./", "foo"},
      {"foo/bar", "foo/", "bar"},
      {"./", "./../", "."},
  };
  for (const auto& [url, without, last] : cases) {
    SCOPED_TRACE(url);
    EXPECT_EQ(taken(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, refOf(url))), orNil(without));
    EXPECT_EQ(taken(CFURLCopyLastPathComponent(refOf(url))), last);
  }
}

TEST_F(Url, AppendsComponents) {
  const struct {
    const char* url;
    std::u16string component;
    bool isDirectory;
    const char* longer;
  } cases[] = {
      {"file:///a", u"b", false, "file:///a/b"},
      {"file:///a/", u"b", true, "file:///a/b/"},
      {"file:///", u"AddressBook.framework", false, "file:///AddressBook.framework"},
      {"file:///a/", u"b ?#%/;:", false, "file:///a/b%20%3F%23%25%2F%3B:"},
      {"file:///a/", u"e\u0301\U0001F600", false, "file:///a/e%CC%81%F0%9F%98%80"},
      {"file:///a/", std::u16string(u"x\0y", 3), false, "file:///a/x%00y"},
      {"file:///a", u"", true, "file:///a/"},
      {"http://h/a?q", u"b", false, "http://h/a/b?q"},
      {"file:///a/", u"\xD800", false, kNone},
      {"http://h", u"b", false, kNone},
      {"mailto:a", u"b", false, kNone},
  };
  for (const auto& [url, component, isDirectory, longer] : cases) {
    SCOPED_TRACE(url);
    const auto name = bridge<CFStringRef>(NSString::stringWithCharacters(component.data(), component.size()));
    EXPECT_EQ(taken(CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, refOf(url), name, isDirectory)),
              orNil(longer));
  }
}

TEST_F(Url, CarriesAPathOfAnyBytes) {
  std::string path = "/";
  for (int byte = 1; byte < 256; ++byte) path += static_cast<char>(byte);
  const auto url = Retained<NSURL>::adopt(bridge<NSURL>(fileUrl(path)));
  EXPECT_EQ(filePath(bridge<CFURLRef>(url.get())), path);
  EXPECT_TRUE(urlOf(url->absoluteString().UTF8String()).isEqual(url.get()));
}

TEST_F(Url, GivesThePathOfFilesOfThisComputerOnly) {
  const struct {
    const char* url;
    const char* path;
  } cases[] = {
      {"file:///a/b/", "/a/b"},
      {"file://localhost/a", "/a"},
      {"file:///", "/"},
      {"file:////", "/"},
      {"file:///%61%20?q", "/a "},
      {"file:/a", "/a"},
      {"file:a", "none"},
      {"file://elsewhere/a", "none"},
      {"file:///a%00b", "none"},
      {"file:///a%2Fb", "none"},
      {"file://", "none"},
      {"http://localhost/a", "none"},
      {"file:///%2F/..%2f", "none"},
      {"/a", "none"},
  };
  for (const auto& [url, path] : cases) EXPECT_EQ(filePath(refOf(url)), path) << url;
  EXPECT_EQ(filePath(refOf("file:///abc"), 5), "/abc");
  EXPECT_EQ(filePath(refOf("file:///abc"), 4), "none");
  EXPECT_EQ(taken(fileUrl("/tmp", true)), "file:///tmp/");
  EXPECT_EQ(taken(fileUrl("/tmp/", true)), "file:///tmp/");
  EXPECT_EQ(taken(fileUrl("tmp")), "nil");
}

TEST_F(Url, OfAPathIsAbsoluteAndMarksFolders) {
  const auto urlText = [](const char* path) {
    return orNil(NSURL::fileURLWithPath(NSString::stringWithUTF8String(path)).absoluteString().UTF8String());
  };
  ASSERT_EQ(chdir("/usr"), 0);
  EXPECT_EQ(urlText("/usr"), "file:///usr/");
  EXPECT_EQ(urlText("/usr/"), "file:///usr/");
  EXPECT_EQ(urlText("/not there/\xC3\xA9#1"), "file:///not%20there/%C3%A9%231");
  EXPECT_EQ(urlText("bin"), "file:///usr/bin/");
  EXPECT_EQ(urlText(""), "nil");
}

TEST_F(Url, EqualsAUrlOfTheSameText) {
  EXPECT_TRUE(urlOf("a:/b").isEqual(urlOf("a:/b")));
  EXPECT_EQ(urlOf("a:/b").hash(), urlOf("a:/b").hash());
  EXPECT_FALSE(urlOf("a:/b").isEqual(urlOf("a:/B")));
  EXPECT_FALSE(urlOf("a:/b").isEqual("a:/b"_ns));
  EXPECT_FALSE(urlOf("a:/b").isEqual(nullptr));
}

}  // namespace
