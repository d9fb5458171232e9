#include "platform/contacts/record_list.h"

#include <utility>

namespace contacts {

// The places are there whole or not at all, whatever memory there is.
void RecordList::add(Entry entry) {
  if (!places_) {
    entries_.push_back(std::move(entry));
    return;
  }
  auto places = std::exchange(places_, std::nullopt);
  entries_.push_back(std::move(entry));
  places->emplace(std::string(entries_.back().card().uid), entries_.size() - 1);
  places_ = std::move(places);
}

// The places of the others stay, as long as there are more of them than empty ones.
void RecordList::remove(Entry& entry) {
  if (places_) places_->erase(std::string(entry.card().uid));
  entry = {};
  if (++goneCount_ <= entries_.size() / 2) return;
  std::erase_if(entries_, [](const Entry& each) { return each.isGone(); });
  goneCount_ = 0;
  places_.reset();
}

RecordList::Entry* RecordList::find(std::string_view uid) {
  if (!places_) {
    std::unordered_map<std::string, std::size_t> places;
    places.reserve(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      if (!entries_[i].isGone()) places.emplace(entries_[i].card().uid, i);
    }
    places_ = std::move(places);
  }
  auto found = places_->find(std::string(uid));
  return found == places_->end() ? nullptr : &entries_[found->second];
}

}  // namespace contacts
