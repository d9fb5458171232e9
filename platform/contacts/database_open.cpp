#include "platform/contacts/database.h"
#include "platform/contacts/parallel.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

// The folder's cards where the cache has most of them.
namespace contacts {
namespace {

// Takes out what isn't listed, and answers what is listed besides, sorted.
std::vector<std::string> compare(CardFiles& files, const NameList& listed) {
  std::vector<std::string> others;
  std::vector<std::string> gone;
  std::vector<std::string> names = listed.sorted();
  auto name = names.begin();
  files.forEachName([&](std::string_view known) {
    while (name != names.end() && *name < known) others.push_back(std::move(*name++));
    if (name != names.end() && *name == known) {
      ++name;
    } else {
      gone.emplace_back(known);
    }
  });
  std::move(name, names.end(), std::back_inserter(others));
  for (const std::string& each : gone) {
    for (const StoredCardPointer& card : files.find(each)->cards) files.removeCard(card);
    files.remove(each);
  }
  return others;
}

}  // namespace

// What the cache has is looked at while the folder is listed, and taken over as it is.
std::vector<Database::FoundFile> Database::lookWithCache() {
  const CardCache cache(folder_);
  std::vector<Unchanged> blocks(cache.blockCount());
  const auto lookAtBlock = [&](std::size_t block) { blocks[block] = lookAtCached(cache, block); };
  ParallelWork work(blocks.size(), lookAtBlock, CachedBlock::kWorthAThread);
  const NameList listed = folder_.cardFileNames();
  work.finish();
  CardFiles cached(*this);
  NameSum names;
  for (const Unchanged& unchanged : blocks) {
    if (cached.append(unchanged.block)) names.add(unchanged.names);
  }
  std::vector<std::string> others;
  if (names != listed.sum()) others = compare(cached, listed);
  std::vector<FoundFile> found = lookAt(std::move(others));

  if (cached.count() == 0) return found;
  CardSet cards;
  bool hasDoubles = false;
  for (const FoundFile& each : found) {
    for (const StoredCardPointer& card : each.file.cards) {
      hasDoubles = hasDoubles || !cards.insert(card).second || cached.findCard(*card);
    }
  }
  if (!hasDoubles) {
    files_ = std::move(cached);
    return found;
  }
  // Which of several cards keeps their id depends on all files.
  cached.forEach([&found](const CardFile& file) { found.push_back({FoundFile::State::kCached, file}); });
  std::ranges::sort(found, {}, [](const FoundFile& each) -> const std::string& { return each.file.name; });
  return found;
}

// Those that are as the cache has them. It is of use, but not needed.
Database::Unchanged Database::lookAtCached(const CardCache& cache, std::size_t block) const try {
  const FileDescriptor own = folder_.ownCards();
  const int folder = own.isOpen() ? own.number() : folder_.cards();
  std::shared_ptr<CachedBlock> files = cache.read(block);
  if (!files) return {};
  NameSum names;
  std::string name;
  files->keepIf([&](const CachedBlock::FileRecord& file) {
    name = files->nameOf(file);
    const bool isFileName = isCardFileName(name) && name.find('/') == std::string::npos;
    if (!isFileName || stamp(name, folder) != file.stamp) return false;
    names.add(name);
    return true;
  });
  return {std::move(files), names};
} catch (const std::exception&) {
  return {};
}

}  // namespace contacts
