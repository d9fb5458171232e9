#include "platform/carbon/items.h"

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/byte_text.h"
#include "platform/foundation/cf_string.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace carbon {

namespace {

constexpr std::uint32_t kRootNumber = 2;
constexpr std::uint32_t kFirstNumber = 16;  // those below are the volume's own
constexpr std::size_t kLongestName = 255;

bool exists(const std::string& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0;
}

std::optional<std::string> realPath(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
  return real ? std::optional<std::string>(real.get()) : std::nullopt;
}

std::string joined(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

// Nothing for units that have no UTF-8 form.
std::optional<std::string> utf8Of(std::u16string_view units) {
  const AutoreleasePool pool;
  const NSString text = NSString::stringWithCharacters(units.data(), units.size());
  std::string bytes(units.size() * 3 + 1, '\0');
  const auto size = static_cast<CFIndex>(bytes.size());
  if (!CFStringGetCString(bridge<CFStringRef>(text), bytes.data(), size, kCFStringEncodingUTF8)) return std::nullopt;
  return bytes.c_str();
}

std::u16string decomposed(NSString text) {
  CFMutableStringRef copy = CFStringCreateMutableCopy(kCFAllocatorDefault, 0, bridge<CFStringRef>(text));
  CFStringNormalize(copy, kCFStringNormalizationFormD);
  std::u16string units(static_cast<std::size_t>(CFStringGetLength(copy)), u'\0');
  CFStringGetCharacters(copy, CFRangeMake(0, CFStringGetLength(copy)), units.data());
  CFRelease(copy);
  return units;
}

}  // namespace

ItemTable& ItemTable::shared() {
  // Never destroyed: references are good until the very end of the process.
  static auto* table = new ItemTable;
  return *table;
}

std::optional<ItemTable::Item> ItemTable::look(const std::string& path) {
  struct statx info {};
  if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_INO | STATX_BTIME, &info) != 0) return std::nullopt;
  const std::uint64_t device = std::uint64_t{info.stx_dev_major} << 32 | info.stx_dev_minor;
  return Item{path, device, info.stx_ino, info.stx_btime.tv_sec, info.stx_btime.tv_nsec};
}

std::optional<std::uint32_t> ItemTable::add(const std::string& path) {
  std::optional<Item> item = look(path);
  if (!item) return std::nullopt;
  if (path == "/") return kRootNumber;
  const std::scoped_lock guard(lock_);
  const auto next = static_cast<std::uint32_t>(kFirstNumber + items_.size());
  const auto [entry, isNew] = numbers_.try_emplace(std::move(*item), next);
  if (isNew) items_.push_back(&entry->first);
  return entry->second;
}

std::optional<std::string> ItemTable::path(std::uint32_t number) {
  if (number == kRootNumber) return "/";
  const Item* item = nullptr;
  {
    const std::scoped_lock guard(lock_);
    if (number < kFirstNumber || number - kFirstNumber >= items_.size()) return std::nullopt;
    item = items_[number - kFirstNumber];
  }
  if (look(item->path) != *item) return std::nullopt;
  return item->path;
}

std::string parentOf(const std::string& path) { return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1)); }

std::string_view nameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::u16string decomposedName(std::string_view bytes) {
  const bool isAscii = std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (isAscii) return {bytes.begin(), bytes.end()};
  const AutoreleasePool pool;
  return decomposed(foundation::textOfBytes(bytes));
}

std::optional<std::string> findInFolder(const std::string& folder, std::u16string_view name) {
  if (name.empty() || name.size() > kLongestName || name == u"." || name == u"..") return std::nullopt;
  if (name.find(u'/') != std::u16string_view::npos || name.find(u'\0') != std::u16string_view::npos) {
    return std::nullopt;
  }
  const std::optional<std::string> asGiven = utf8Of(name);
  if (!asGiven) return std::nullopt;
  if (std::string path = joined(folder, *asGiven); exists(path)) return path;

  const std::u16string wanted = decomposedName(*asGiven);
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
  if (!entries) return std::nullopt;
  while (const dirent* entry = readdir(entries.get())) {
    if (decomposedName(entry->d_name) == wanted) return joined(folder, entry->d_name);
  }
  return std::nullopt;
}

std::optional<std::string> resolvePath(const std::string& path) {
  std::optional<std::string> real = realPath(path);
  if (real || errno != ENOENT || !path.starts_with('/')) return real;
  const std::optional<std::string> folder = resolvePath(parentOf(path));
  if (!folder) return std::nullopt;
  const std::optional<std::string> found = findInFolder(*folder, decomposedName(nameOf(path)));
  return found ? realPath(*found) : std::nullopt;
}

}  // namespace carbon
