#include "platform/carbon/files.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/cf_url.h"
#include "platform/foundation/url.h"
#include "platform/objc/retained.h"
#include "tests/objc/live_objects.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr const char* kComposed = "caf\xC3\xA9";
constexpr const char* kDecomposed = "cafe\xCC\x81";
constexpr const char* kNoUtf8 = "bad\xFF\xC3name";

class Files : public LiveObjectsTest {
 protected:
  Files() {
    std::string made = testing::TempDir() + "files_test_XXXXXX";
    folder_ = fs::canonical(mkdtemp(made.data()));
  }
  ~Files() override { fs::remove_all(folder_); }

  [[nodiscard]] fs::path at(const char* name) const { return folder_ / name; }

  fs::path makeFile(const char* name) const {
    std::ofstream(at(name)) << "contents";
    return at(name);
  }

  static std::optional<FSRef> refOf(const fs::path& path) {
    FSRef ref;
    if (FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(path.c_str()), &ref, nullptr) != noErr) return {};
    return ref;
  }

  static std::optional<FSRef> refInside(const FSRef& parent, const std::u16string& name) {
    FSRef ref;
    if (FSMakeFSRefUnicode(&parent, name.size(), name.data(), 0, &ref) != noErr) return {};
    return ref;
  }

  // Empty when the reference is good no more.
  static std::string pathOf(const FSRef& ref) {
    std::uint8_t path[4096];
    return FSRefMakePath(&ref, path, sizeof path) == noErr ? reinterpret_cast<const char*>(path) : "";
  }

  static std::u16string nameOf(const FSRef& ref) {
    HFSUniStr255 name{};
    EXPECT_EQ(FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, &name, nullptr, nullptr), noErr);
    return {name.unicode, name.length};
  }

  static OSErr check(const FSRef& ref) {
    return FSGetCatalogInfo(&ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
  }

  static std::string urlTextOf(const FSRef& ref) {
    const auto url = Retained<NSURL>::adopt(bridge<NSURL>(CFURLCreateFromFSRef(kCFAllocatorDefault, &ref)));
    return url ? url->absoluteString().UTF8String() : "";
  }

  static std::optional<FSRef> refOfUrl(const std::string& text) {
    FSRef ref;
    const NSURL url = NSURL::URLWithString(NSString::stringWithUTF8(text));
    if (!CFURLGetFSRef(bridge<CFURLRef>(url), &ref)) return {};
    return ref;
  }

  fs::path folder_;
};

TEST_F(Files, ReturnThroughUrlParentAndSpec) {
  fs::create_directory(at("dir"));
  for (const char* name :
       {"plain", "with space #%", kComposed, kDecomposed, kNoUtf8, "dir", "a:b", "\xE6\x97\xA5\xE6\x9C\xAC"}) {
    SCOPED_TRACE(name);
    if (!fs::exists(at(name))) makeFile(name);
    const auto ref = refOf(at(name));
    ASSERT_TRUE(ref);
    EXPECT_EQ(pathOf(*ref), at(name));

    const auto sameByUrl = refOfUrl(urlTextOf(*ref));
    ASSERT_TRUE(sameByUrl);
    EXPECT_EQ(std::memcmp(&*sameByUrl, &*ref, sizeof(FSRef)), 0);

    FSSpec spec{};
    FSRef parent;
    EXPECT_EQ(FSGetCatalogInfo(&*ref, kFSCatInfoNone, nullptr, nullptr, nullptr, &parent), noErr);
    EXPECT_EQ(pathOf(parent), folder_);
    const bool fitsSpec = name != kDecomposed && name != kNoUtf8 && name[0] != '\xE6';
    EXPECT_EQ(FSGetCatalogInfo(&*ref, kFSCatInfoNone, nullptr, nullptr, &spec, nullptr), fitsSpec ? noErr : bdNamErr);
    FSRef sameBySpec;
    if (fitsSpec) {
      ASSERT_EQ(FSpMakeFSRef(&spec, &sameBySpec), noErr);
      EXPECT_EQ(pathOf(sameBySpec), at(name));
    }
    // The composed name's decomposed twin goes first as soon as it exists.
    const auto sameByName = refInside(parent, nameOf(*ref));
    ASSERT_TRUE(sameByName);
    EXPECT_EQ(pathOf(*sameByName), at(name));
  }
  EXPECT_EQ(urlTextOf(*refOf(at("dir"))), "file://" + at("dir").string() + "/");
  EXPECT_EQ(urlTextOf(*refOf(at(kNoUtf8))), "file://" + at("bad%FF%C3name").string());
}

TEST_F(Files, CrossUnderDecomposedNames) {
  const std::pair<const char*, std::u16string> cases[] = {
      {kComposed, u"cafe\u0301"},
      {"\xED\x95\x9C\xEA\xB8\x80", u"\u1112\u1161\u11AB\u1100\u1173\u11AF"},
      {"\xF0\x9F\x98\x80", u"\U0001F600"},
      {kNoUtf8, u"bad%FF%C3name"},
      {"\xE2\x84\xAA", u"K"}};
  const auto folder = refOf(folder_);
  for (const auto& [stored, crossing] : cases) {
    SCOPED_TRACE(stored);
    makeFile(stored);
    EXPECT_EQ(nameOf(*refOf(at(stored))), crossing);
    const auto found = refInside(*folder, crossing);
    ASSERT_TRUE(found);
    EXPECT_EQ(pathOf(*found), at(stored));
  }
  // Found by a path or URL in another form too, in folders on the way as well.
  fs::create_directory(at("d\xC3\xA9"));
  std::ofstream(at("d\xC3\xA9") / kComposed) << "x";
  EXPECT_TRUE(refOf(at("de\xCC\x81") / kDecomposed));
  EXPECT_EQ(pathOf(*refOfUrl("file://" + folder_.string() + "/de%CC%81/cafe%CC%81")), at("d\xC3\xA9") / kComposed);
  // The form that is asked for goes first.
  makeFile(kDecomposed);
  EXPECT_EQ(pathOf(*refInside(*folder, u"caf\u00E9")), at(kComposed));
  EXPECT_EQ(pathOf(*refInside(*folder, u"cafe\u0301")), at(kDecomposed));
}

TEST_F(Files, AreNotFoundWhereThereAreNone) {
  makeFile("file");
  fs::create_directory(at("dir"));
  const auto folder = refOf(folder_);
  for (const std::u16string& name : {u""s, u"."s, u".."s, u"missing"s, u"dir/../file"s, u"/"s, u"file\0"s, u"FILE"s,
                                     u"\xD800"s, std::u16string(300, u'x'), std::u16string(255, u'\u65E5')}) {
    EXPECT_FALSE(refInside(*folder, name));
  }
  EXPECT_FALSE(refInside(*refOf(at("file")), u"file"));
  const std::string tooLong(5000, 'x');
  for (const fs::path& path : {fs::path(), at("missing/../file"), at("file/file"), fs::path("/" + tooLong)}) {
    EXPECT_FALSE(refOf(path)) << path;
  }
  const std::string inFolder = "file://" + folder_.string();
  for (const std::string& url : {"http://localhost" + at("file").string(), inFolder + "/missing", "file:///" + tooLong,
                                 inFolder + "/dir%2Ffile", inFolder + "/file%00", "file"s}) {
    EXPECT_FALSE(refOfUrl(url)) << url;
  }
}

TEST_F(Files, OfASpecAreFoundOrRefused) {
  const auto ref = refOf(makeFile("file"));
  FSSpec good{};
  ASSERT_EQ(FSGetCatalogInfo(&*ref, kFSCatInfoNone, nullptr, nullptr, &good, nullptr), noErr);
  const std::pair<std::function<void(FSSpec&)>, OSErr> cases[] = {
      {[](FSSpec&) {}, noErr},
      {[](FSSpec& spec) { spec.vRefNum = 7; }, nsvErr},
      {[](FSSpec& spec) { spec.parID = 0; }, dirNFErr},
      {[](FSSpec& spec) { spec.parID = -1; }, dirNFErr},
      {[](FSSpec& spec) { spec.parID = 1; }, fnfErr},
      {[](FSSpec& spec) { spec.parID = 2; }, fnfErr},
      {[](FSSpec& spec) { spec.name[0] = 0; }, fnfErr},
      {[](FSSpec& spec) { spec.name[0] = 64; }, bdNamErr},
  };
  for (const auto& [change, expected] : cases) {
    FSSpec spec = good;
    change(spec);
    FSRef found;
    EXPECT_EQ(FSpMakeFSRef(&spec, &found), expected) << spec.vRefNum << " " << spec.parID << " " << +spec.name[0];
  }
}

TEST_F(Files, LeadThroughLinks) {
  makeFile("target");
  fs::create_symlink("target", at("link"));
  fs::create_symlink("missing", at("dangling"));
  fs::create_symlink("loop", at("loop"));
  fs::create_directory_symlink(".", at("self"));
  EXPECT_EQ(pathOf(*refOf(at("self/self/link"))), at("target"));
  for (const char* broken : {"dangling", "self/dangling", "loop"}) EXPECT_FALSE(refOf(at(broken))) << broken;
  // By its name in the folder a link is meant itself.
  const auto folder = refOf(folder_);
  EXPECT_EQ(pathOf(*refInside(*folder, u"link")), at("link"));
  EXPECT_EQ(nameOf(*refInside(*folder, u"link")), u"link");
  EXPECT_EQ(urlTextOf(*refInside(*folder, u"dangling")), "file://" + at("dangling").string());
  EXPECT_EQ(urlTextOf(*refInside(*folder, u"self")), "file://" + at("self").string());
}

TEST_F(Files, AreToldFromThoseThatCameAfter) {
  const fs::path file = makeFile("file");
  const auto ref = refOf(file);
  const auto folder = refOf(folder_);
  fs::rename(file, at("moved"));
  EXPECT_EQ(check(*ref), fnfErr);
  makeFile("file");
  EXPECT_EQ(check(*ref), fnfErr);
  fs::rename(at("moved"), file);
  EXPECT_EQ(pathOf(*ref), file);
  fs::remove_all(folder_);
  EXPECT_EQ(check(*ref), fnfErr);
  EXPECT_EQ(urlTextOf(*ref), "");
  FSRef none;
  EXPECT_EQ(FSMakeFSRefUnicode(&*folder, 4, u"file", 0, &none), fnfErr);
}

TEST_F(Files, RefuseWhatNoReferenceIs) {
  FSRef ref = *refOf(makeFile("file"));
  EXPECT_EQ(FSGetCatalogInfo(&ref, 0x20, nullptr, nullptr, nullptr, nullptr), paramErr);
  EXPECT_EQ(FSGetCatalogInfo(nullptr, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr), errFSBadFSRef);
  std::uint8_t small[8];
  EXPECT_EQ(FSRefMakePath(&ref, small, sizeof small), pathTooLongErr);
  for (std::size_t i = 0; i < sizeof ref; ++i) {
    FSRef broken = ref;
    broken.hidden[i] ^= 0x80;
    EXPECT_NE(check(broken), noErr) << i;
  }
}

}  // namespace
