#pragma once

#include "platform/contacts/address_book.h"
#include "platform/contacts/database.h"
#include "platform/contacts/links.h"
#include "platform/contacts/record_list.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/stored_card.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace contacts {

struct AddressBookObject : objc::Object {
  AddressBookObject() = default;
  AddressBookObject(const AddressBookObject&) = delete;
  AddressBookObject& operator=(const AddressBookObject&) = delete;
  ~AddressBookObject();

  [[nodiscard]] NSArray people() { return arrayOf(records().persons); }
  [[nodiscard]] NSArray groups() { return arrayOf(records().groups); }
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

  // Lists all records now, rather than when somebody asks for them.
  void loadRecords() { records(); }
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
  struct Records {
    [[nodiscard]] RecordList& listOf(const CardOutline& card) { return card.isGroup ? groups : persons; }
    // Null when there is none.
    [[nodiscard]] RecordList::Entry* find(const CardOutline& card) { return listOf(card).find(card.uid); }

    RecordList persons;
    RecordList groups;
  };

  // All of them; from the database's cards when they are first asked for.
  Records& records();
  NSArray arrayOf(RecordList& records);
  // That of a card that the database has, while they aren't listed.
  ABRecord earlyRecord(const StoredCardPointer& card);
  ABRecord recordOf(RecordList::Entry& entry);
  void take(RecordList::Entry& entry);
  // It is in the book no more, and lives as long as the pool.
  void letGo(Retained<ABRecord> record);
  void absorb(const CardChange& change);
  [[nodiscard]] std::vector<Retained<ABRecord>> changedRecords() const;
  [[nodiscard]] SaveRequest saveRequest(const std::vector<Retained<ABRecord>>& changed) const;
  void finishSave(const std::vector<Retained<ABRecord>>& changed, const SaveResult& result);

  std::optional<Records> records_;
  std::unordered_map<std::string, Retained<ABRecord>> early_;  // those there are before the list, by unique id
  std::vector<Retained<ABRecord>> changed_;
  std::vector<Retained<ABRecord>> removed_;  // of those that the folder has
  std::optional<std::string> changedMe_;     // the UID; empty for none
  bool hasUnsavedChanges_ = false;
  std::optional<Links> links_;  // from the people's cards, once somebody has asked
};

}  // namespace contacts
