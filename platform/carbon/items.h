#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Items of the file system, as the file functions see them.
namespace carbon {

// The items that references were made to, each under a number of its own: a path doesn't fit into a reference, and an
// ordinary user can't get from the file system's own numbers back to an item. Grows with the number of different items
// and is never emptied.
class ItemTable {
 public:
  static ItemTable& shared();

  // The item's number: the root folder's is 2, others get the next that is free from 16 on. The path is absolute and
  // resolved, only its last component may be a symbolic link. Nothing when no item is there.
  std::optional<std::uint32_t> add(const std::string& path);
  // The path under which the item was added, if the same item is still there.
  std::optional<std::string> path(std::uint32_t number);

 private:
  // File systems give a deleted item's number to a new one; the time of birth, where there is one, tells them apart.
  struct Item {
    std::string path;
    std::uint64_t device;
    std::uint64_t inode;
    std::int64_t birthSeconds;
    std::uint32_t birthNanoseconds;

    friend auto operator<=>(const Item&, const Item&) = default;
  };

  ItemTable() = default;
  static std::optional<Item> look(const std::string& path);

  std::mutex lock_;
  std::map<Item, std::uint32_t> numbers_;
  std::vector<const Item*> items_;
};

// The folder of an absolute path, and the name after the last slash. The root folder's are "/" and "".
std::string parentOf(const std::string& path);
std::string_view nameOf(std::string_view path);

// A file's name in canonically decomposed form; bytes that are no UTF-8 as %XX.
std::u16string decomposedName(std::string_view bytes);

// The path of the item in the folder with that name, in whatever form and bytes it is stored; of a name's several
// forms, the one given goes first. Nothing when there is none, or the name is no item's: empty, longer than 255 units,
// "." or "..", with a zero or a slash.
std::optional<std::string> findInFolder(const std::string& folder, std::u16string_view name);

// The path with symbolic links followed, and each name found as findInFolder does.
std::optional<std::string> resolvePath(const std::string& path);

}  // namespace carbon
