// Folder items as file URLs, and URLs as folder items: a path that has crossed once stays as it is, and a URL of
// anything but files is text alone.

#include "bridge/files.h"

#include "frame/host_ref.h"
#include "fuzz/samples.h"
#include "fuzz/started_host.h"
#include "fuzz/target.h"
#include "host/folder_items.h"
#include "platform/contacts/vcard/charset.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace {

// A few items of each kind, for as long as the process runs.
class Folder {
 public:
  Folder() {
    std::string pattern = std::filesystem::temp_directory_path() / "file-url-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    path_ = std::filesystem::canonical(pattern);
    for (const char* name : {"plain", "Zo\u00EB.txt", "a b%20#?.txt"}) std::ofstream(path_ / name) << name;
    std::filesystem::create_directory(path_ / "folder");
    std::filesystem::create_symlink("folder", path_ / "link");
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { std::filesystem::remove_all(path_); }

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

NSURL urlOf(const host::Value& item) {
  return item.isNil() ? NSURL() : NewNSURLfile(static_cast<REALfolderItem>(item.object()));
}

host::Value itemOf(NSURL url) { return host::Value::adopt(NSURLRBFile(url)); }

std::string textOf(NSURL url) { return url ? url.absoluteString().UTF8String() : "nil"; }

std::string pathText(const host::Value& item) { return item.isNil() ? "nil" : host::pathOf(item).native(); }

// A name without anything that a file system may write in another way.
bool isPlainName(std::string_view name) {
  return name.size() <= 255 && name != "." && name != ".." && !name.empty() &&
         std::ranges::all_of(name, [](char c) { return c > 0 && c != '/'; });
}

void tryPath(const std::filesystem::path& folder, std::string_view name) {
  const host::Value item = host::folderItem(folder / name);
  const NSURL url = urlOf(item);
  const host::Value back = itemOf(url);
  if (isPlainName(name) && name != "link") expectEqual(pathText(back), pathText(item), "a path by way of a URL");
  // Decomposed, a long name may have more than 255 units and be cut.
  constexpr std::size_t kSafeSize = 170;
  if (url && name.size() <= kSafeSize) expectEqual(textOf(urlOf(back)), textOf(url), "a URL by way of a path");
}

void tryUrl(const std::string& text) {
  if (!vcard::isValidUtf8(text)) return;
  const NSURL url = NSURL::URLWithString(NSString::stringWithUTF8(text));
  if (!url) return;
  expectEqual(textOf(url), text, "a URL's text");
  expectEqual(host::Value::adopt(NSURLRB(url)).text(), text, "a URL's text in the host");
  const host::Value item = itemOf(url);
  if (item.isNil()) return;
  expect(url.isFileURL(), "only a file's URL is a folder item");
  // The name may have been cut; what is left has a URL of its own or can't be one, and that doesn't change.
  const NSURL again = urlOf(item);
  if (again) expectEqual(pathText(itemOf(again)), pathText(item), "a path the second time around");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const StartedHost kHost;
  static const Folder kFolder;
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto outcome = kHost.run([&] {
    tryPath(kFolder.path(), text);
    tryUrl(text);
    tryUrl("file://" + kFolder.path().native() + "/" + text);
    return "";
  });
  expect(!outcome.hasRaised, "files raise nothing");
  return 0;
}
