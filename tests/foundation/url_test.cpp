#include "platform/foundation/url.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/cf_url.h"
#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

#include <string>
#include <utility>
#include <vector>

#include <strings.h>
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

TEST_F(Url, KnowsItsPartsAndLosesItsLastComponent) {
  const struct {
    const char* url;
    const char* scheme;
    const char* path;
    const char* last;
    const char* without;
  } cases[] = {
      {"file:///a%20b/%C3%A9/", "file", "/a b/\xC3\xA9", "\xC3\xA9", "file:///a%20b/"},
      {"FILE://localhost/", "FILE", "/", "/", "FILE://localhost/../"},
      {"file:/a", "file", "/a", "a", "file:/"},
      {"file:////", "file", "/", "/", "file:////../"},
      {"file:///a//b//", "file", "/a//b", "b", "file:///a//"},
      {"file:///a/..", "file", "/a/..", "..", "file:///a/../../"},
      {"file:///a/./", "file", "/a/.", ".", "file:///a/./../"},
      {"file:///x/caf%C3%A9%2520", "file", "/x/caf\xC3\xA9%20", "caf\xC3\xA9%20", "file:///x/"},
      {"http:///x/%FF%fe", "http", "/x/%FF%FE", "%FF%FE", "http:///x/"},
      {"http://h/a%2Fb%25", "http", "/a/b%", "a/b%", "http://h/"},
      {"http://host/a;b?q=1/2#f/g", "http", "/a;b", "a;b", "http://host/?q=1/2#f/g"},
      {"http://host?q=/a", "http", "", "", kNone},
      {"addressbook://1:ABPerson?edit", "addressbook", "", "", kNone},
      {"mailto:a@b/c", "mailto", kNone, "", kNone},
      {"file:a", "file", kNone, "", kNone},
      {"a-1.+:/p", "a-1.+", "/p", "p", "a-1.+:/"},
      {"1a:/p", kNone, "1a:/p", "p", "1a:/"},
      {"//host/p", kNone, "/p", "p", "//host/"},
      {"foo/", kNone, "foo", "foo", "./"},
      {"foo/bar", kNone, "foo/bar", "bar", "foo/"},
      {"./", kNone, ".", ".", "./../"},
      {"#x", kNone, "", "", kNone},
  };
  for (const auto& [url, scheme, path, last, without] : cases) {
    SCOPED_TRACE(url);
    EXPECT_EQ(orNil(urlOf(url).scheme().UTF8String()), orNil(scheme));
    EXPECT_EQ(orNil(urlOf(url).path().UTF8String()), orNil(path));
    EXPECT_EQ(urlOf(url).isFileURL(), scheme != kNone && strcasecmp(scheme, "file") == 0);
    EXPECT_EQ(taken(CFURLCopyLastPathComponent(refOf(url))), last);
    EXPECT_EQ(taken(CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, refOf(url))), orNil(without));
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

TEST_F(Url, GivesThePathOfFilesOfThisComputerOnly) {
  const std::pair<const char*, const char*> cases[] = {
      {"file:///a/b/", "/a/b"},
      {"file://localhost/a", "/a"},
      {"file:////", "/"},
      {"file:///%61%20?q", "/a "},
      {"file:a", "none"},
      {"file://elsewhere/a", "none"},
      {"file:///a%00b", "none"},
      {"file:///a%2Fb", "none"},
      {"http://localhost/a", "none"},
      {"file:///%2F/..%2f", "none"},
      {"/a", "none"},
  };
  for (const auto& [url, path] : cases) EXPECT_EQ(filePath(refOf(url)), path) << url;
  EXPECT_EQ(filePath(refOf("file:///abc"), 5), "/abc");
  EXPECT_EQ(filePath(refOf("file:///abc"), 4), "none");
  for (const char* folder : {"/tmp", "/tmp/"}) EXPECT_EQ(taken(fileUrl(folder, true)), "file:///tmp/");
  EXPECT_EQ(taken(fileUrl("tmp")), "nil");
}

TEST_F(Url, OfAPathIsAbsoluteAndMarksFolders) {
  const auto urlText = [](const char* path) {
    return orNil(NSURL::fileURLWithPath(NSString::stringWithUTF8String(path)).absoluteString().UTF8String());
  };
  ASSERT_EQ(chdir("/usr"), 0);
  for (const char* folder : {"/usr", "/usr/"}) EXPECT_EQ(urlText(folder), "file:///usr/");
  EXPECT_EQ(urlText("/not there/\xC3\xA9#1"), "file:///not%20there/%C3%A9%231");
  EXPECT_EQ(urlText("bin"), "file:///usr/bin/");
  EXPECT_EQ(urlText(""), "nil");
}

}  // namespace
