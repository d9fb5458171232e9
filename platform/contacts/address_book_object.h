#pragma once

#include "platform/contacts/address_book.h"
#include "platform/contacts/database.h"
#include "platform/contacts/links.h"
#include "platform/contacts/record_list.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/stored_card.h"

#include <optional>
#include <string>
#include <vector>

namespace contacts {

struct AddressBookObject : objc::Object {
  AddressBookObject() = default;
  AddressBookObject(const AddressBookObject&) = delete;
  AddressBookObject& operator=(const AddressBookObject&) = delete;
  ~AddressBookObject();

  [[nodiscard]] NSArray people() { return arrayOf(persons_); }
  [[nodiscard]] NSArray groups() { return arrayOf(groups_); }
  [[nodiscard]] ABRecord recordForUniqueId(NSString uniqueId);
  [[nodiscard]] NSString recordClassFromUniqueId(NSString uniqueId) const;
  [[nodiscard]] NSArray recordsMatchingSearchElement(ABSearchElement search);
  bool addRecord(ABRecord record) { return addRecordOrFail(record, nullptr); }
  bool addRecordOrFail(ABRecord record, NSError* error);
  bool removeRecord(ABRecord record) { return removeRecordOrFail(record, nullptr); }
  bool removeRecordOrFail(ABRecord record, NSError* error);
  [[nodiscard]] bool hasUnsavedChanges() const { return hasUnsavedChanges_; }
  bool save() { return saveOrFail(nullptr); }
  bool saveOrFail(NSError* error);
  [[nodiscard]] ABPerson me();
  void setMe(ABPerson person);

  [[nodiscard]] bool isReadOnly() const { return !database->isWritable(); }

  Database* database = nullptr;  // lives as long as the process

  // Of a book that is empty.
  void load(std::vector<StoredCardPointer> cards);
  // The record is to be saved with the book.
  void noteChange(ABRecord record);
  // Takes over what became of cards.
  void absorb(const std::vector<CardChange>& changes);
  // Those that the record is a direct member of.
  [[nodiscard]] NSArray groupsWith(const RecordObject& record);
  // The person, which is in the book, and all that are linked with it.
  [[nodiscard]] NSArray linkedWith(ABRecord person);
  // Nil when there is none.
  [[nodiscard]] ABRecord find(const std::string& uniqueId);

 private:
  NSArray arrayOf(RecordList& records);
  [[nodiscard]] RecordList& listOf(const StoredCard& card) { return card.isGroup ? groups_ : persons_; }
  // Null when there is none.
  [[nodiscard]] RecordList::Entry* entryOf(const StoredCard& card) { return listOf(card).find(card.uid); }
  ABRecord recordOf(RecordList::Entry& entry);
  void load(StoredCardPointer card);
  void take(RecordList::Entry& entry);
  void absorb(const CardChange& change);
  [[nodiscard]] std::vector<Retained<ABRecord>> changedRecords() const;
  [[nodiscard]] SaveRequest saveRequest(const std::vector<Retained<ABRecord>>& changed) const;
  void finishSave(const std::vector<Retained<ABRecord>>& changed, const SaveResult& result);

  RecordList persons_;
  RecordList groups_;
  std::vector<Retained<ABRecord>> changed_;
  std::vector<Retained<ABRecord>> removed_;  // of those that the folder has
  std::optional<std::string> changedMe_;     // the UID; empty for none
  bool hasUnsavedChanges_ = false;
  std::optional<Links> links_;  // from the people's cards, once somebody has asked
};

}  // namespace contacts
