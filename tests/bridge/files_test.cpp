#include "bridge/files.h"

#include "frame/host_ref.h"
#include "host/folder_items.h"
#include "platform/carbon/files.h"
#include "platform/foundation/cf_url.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* kComposed = "Zo\u00EB.txt";
constexpr const char* kDecomposed = "Zoe\u0308.txt";

NSURL urlOf(const host::Value& item) { return NewNSURLfile(static_cast<REALfolderItem>(item.object())); }

std::string urlText(const std::filesystem::path& path) { return shown(urlOf(host::folderItem(path))); }

NSURL url(const std::string& text) { return NSURL::URLWithString(NSString::stringWithUTF8(text)); }

std::filesystem::path pathBack(NSURL url) { return host::pathOf(host::Value::adopt(NSURLRBFile(url))); }

void touch(const std::filesystem::path& path) { std::ofstream(path) << "text"; }

// And how they are escaped in a URL.
const std::vector<std::pair<std::string, std::string>> kNames{
    {"plain.txt", "plain.txt"},
    {"a b%20#?.txt", "a%20b%2520%23%3F.txt"},
    {kDecomposed, "Zoe%CC%88.txt"},
    {"😀", "%F0%9F%98%80"},
    {"a:b", "a:b"},
    {std::string(200, 'n'), std::string(200, 'n')},
    {"\u1112\u1161\u11AB", "%E1%84%92%E1%85%A1%E1%86%AB"},
};

}  // namespace

TEST(Files, KeepTheirNamesBothWaysWhetherOrNotTheyExist) {
  const Host host{};
  const std::string folder = "file://" + host.folder().native() + "/";
  for (const bool exists : {false, true}) {
    for (const auto& [name, escaped] : kNames) {
      const auto path = host.folder() / name;
      if (exists) touch(path);
      const NSURL converted = urlOf(host::folderItem(path));
      EXPECT_EQ(shown(converted), folder + escaped);
      EXPECT_EQ(pathBack(converted), path);
    }
  }
  std::filesystem::remove(host.folder() / kDecomposed);
  EXPECT_EQ(urlText(host.folder() / kComposed), folder + "Zoe%CC%88.txt");
  EXPECT_EQ(pathBack(url(folder + "Zo%C3%AB.txt")), host.folder() / kDecomposed);
  // Written composed on disk, and found again there.
  touch(host.folder() / kComposed);
  EXPECT_EQ(pathBack(urlOf(host::folderItem(host.folder() / kComposed))), host.folder() / kComposed);
}

TEST(Files, ThatAreFoldersOrTheRootEndInASlash) {
  const Host host{};
  std::filesystem::create_directory(host.folder() / "folder");
  const std::string text = "file://" + host.folder().native() + "/folder";
  EXPECT_EQ(urlText(host.folder() / "folder"), text + "/");
  EXPECT_EQ(pathBack(url(text + "/")), host.folder() / "folder");
  EXPECT_EQ(pathBack(url(text)), host.folder() / "folder");
  for (const auto& [path, root] : {std::pair("/", "file:///"), std::pair("/no-such-item", "file:///no-such-item")}) {
    EXPECT_EQ(urlText(path), root);
    EXPECT_EQ(pathBack(url(root)), path);
  }
}

TEST(Files, WithLongNamesAreCutTo255UnitsOfTheDecomposedName) {
  const Host host{};
  const std::string folder = "file://" + host.folder().native() + "/";
  const auto nameBack = [&](const std::string& name) { return pathBack(url(folder + name)).filename().native(); };
  EXPECT_EQ(nameBack(std::string(255, 'a')), std::string(255, 'a'));
  EXPECT_EQ(nameBack(std::string(300, 'a')), std::string(255, 'a'));
  std::string composed;
  std::string cut;
  for (int i = 0; i < 200; ++i) composed += "%C3%AB";
  for (int i = 0; i < 127; ++i) cut += "e\u0308";
  EXPECT_EQ(nameBack(composed), cut + "e");
  EXPECT_FALSE(urlOf(host::folderItem(host.folder() / std::string(300, 'a'))));  // no host can name it
}

TEST(Files, WithoutAFolderAreNothing) {
  const Host host{};
  EXPECT_EQ(MakeCFURLfromFolderItem(nullptr), nullptr);
  EXPECT_FALSE(NewNSURLfile(nullptr));
  EXPECT_FALSE(urlOf(host::folderItem(host.folder() / "missing" / "file")));
  EXPECT_FALSE(urlOf(host::Value::adopt(REALnewInstance("FolderItem"))));  // is nowhere
  EXPECT_EQ(CFURL2RBFile(nullptr), nullptr);
  EXPECT_EQ(NSURLRBFile(nullptr), nullptr);
  EXPECT_EQ(NSURLRB(nullptr), nullptr);
  EXPECT_EQ(NSURLRBFile(url("http://example.com/a%20b?c#d")), nullptr);
  EXPECT_EQ(REALFolderItemFromFSRef(FSRef{}), nullptr);
  // Names stay in their folder.
  const std::string folder = "file://" + host.folder().native() + "/";
  for (const char* name : {"missing/file", "%00b", "a%00", "%2E%2E%2Fx", "a%2Fb"}) {
    EXPECT_EQ(NSURLRBFile(url(folder + name)), nullptr) << name;
  }
  EXPECT_FALSE(urlOf(host::folderItem(host.folder() / std::string("\0b", 2))));
}

TEST(Files, NeedTheSpecificationForTheRootFolderAlone) {
  const Host host{.without = {"FolderItemFromFSSpec"}};
  EXPECT_EQ(NSURLRBFile(url("file:///")), nullptr);
  EXPECT_EQ(pathBack(url("file://" + host.folder().native())), host.folder());
}

TEST(Files, FallBackToTheSpecificationWithoutReferences) {
  const Host host{.without = {"REALFSRefFromFolderItem"}};
  touch(host.folder() / "here");
  EXPECT_EQ(urlText(host.folder() / "here"), "file://" + host.folder().native() + "/here");
  EXPECT_FALSE(urlOf(host::folderItem(host.folder() / "missing")));
}
