#pragma once

#include "platform/contacts/record_object.h"
#include "platform/contacts/stored_card.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace contacts {

// The records of one kind that a book has, in order. There is the card alone until somebody asks for the record.
class RecordList {
 public:
  struct Entry {
    StoredCardPointer unread;  // null once there is the record
    Retained<ABRecord> record;

    [[nodiscard]] const StoredCard& card() const { return record ? objectOf(record.get()).card() : *unread; }
    [[nodiscard]] bool isGone() const { return !unread && !record; }
  };

  void reserve(std::size_t count) { entries_.reserve(count); }
  void add(Entry entry);
  // References to entries end here.
  void remove(Entry& entry);
  // Null when there is none.
  [[nodiscard]] Entry* find(std::string_view uid);

  template <class Work>
  void forEach(Work work) {
    for (Entry& entry : entries_) {
      if (!entry.isGone()) work(entry);
    }
  }
  [[nodiscard]] std::size_t count() const { return entries_.size() - goneCount_; }

 private:
  std::vector<Entry> entries_;
  std::size_t goneCount_ = 0;
  std::optional<std::unordered_map<std::string, std::size_t>> places_;  // by UID, once somebody has looked for one
};

}  // namespace contacts
