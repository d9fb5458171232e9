#include "platform/contacts/database.h"
#include "platform/contacts/parallel.h"

#include <algorithm>
#include <exception>
#include <utility>

// The folder's cards where the cache has most of them.
namespace contacts {

void Database::Cached::add(FoundFile file) {
  const bool isInOrder = files.empty() || files.rbegin()->first < file.name();
  if (!isInOrder) return;
  names.add(file.name());
  for (const StoredCardPointer& card : file.contents().cards) hasDoubles = !byId.insert(card).second || hasDoubles;
  files.insert(files.end(), std::move(file.file));
}

std::vector<std::string> Database::Cached::compare(const NameList& listed) {
  std::vector<std::string> others;
  if (names == listed.sum()) return others;
  auto file = files.begin();
  const auto drop = [&] {
    for (const StoredCardPointer& card : file->second.cards) byId.erase(card);
    file = files.erase(file);
  };
  for (std::string& name : listed.sorted()) {
    while (file != files.end() && file->first < name) drop();
    if (file != files.end() && file->first == name) {
      ++file;
    } else {
      others.push_back(std::move(name));
    }
  }
  while (file != files.end()) drop();
  return others;
}

// What the cache has is looked at while the folder is listed, and taken over at once.
std::vector<Database::FoundFile> Database::lookWithCache() {
  const CardCache cache(folder_);
  std::vector<std::vector<FoundFile>> blocks(cache.blockCount());
  ParallelWork work(blocks.size(), [&](std::size_t block) { blocks[block] = lookAtCached(cache, block); });
  const NameList listed = folder_.cardFileNames();
  Cached cached;
  cached.byId.reserve(listed.count());
  for (std::size_t block = 0; block < blocks.size(); ++block) {
    work.finish(block);
    for (FoundFile& file : blocks[block]) cached.add(std::move(file));
  }
  std::vector<FoundFile> found = lookAt(cached.compare(listed));

  if (cached.files.empty()) return found;
  CardSet others;
  for (FoundFile& file : found) {
    for (const StoredCardPointer& card : file.contents().cards) {
      cached.hasDoubles = cached.byId.contains(card) || !others.insert(card).second || cached.hasDoubles;
    }
  }
  if (!cached.hasDoubles) {
    files_ = std::move(cached.files);
    byId_ = std::move(cached.byId);
    return found;
  }
  // Which of several cards keeps their id depends on all files.
  while (!cached.files.empty()) {
    found.emplace_back(FoundFile::State::kCached, cached.files.extract(cached.files.begin()));
  }
  std::ranges::sort(found, {}, &FoundFile::name);
  return found;
}

// Those that are as the cache has them. It is of use, but not needed.
std::vector<Database::FoundFile> Database::lookAtCached(const CardCache& cache, std::size_t block) const try {
  const FileDescriptor own = folder_.ownCards();
  const int folder = own.isOpen() ? own.number() : folder_.cards();
  std::vector<FoundFile> found;
  found.reserve(CardCache::kBlockFiles);
  cache.read(block, *this, [&](std::string name, CardFile contents) {
    const bool isFileName = isCardFileName(name) && name.find('/') == std::string::npos;
    if (isFileName && stamp(name, folder) == contents.stamp) {
      found.emplace_back(FoundFile::State::kCached, std::move(name), std::move(contents));
    }
  });
  return found;
} catch (const std::exception&) {
  return {};
}

}  // namespace contacts
