#pragma once

#include "platform/contacts/address_book.h"
#include "platform/contacts/database.h"
#include "platform/contacts/links.h"
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

  [[nodiscard]] NSArray people() const { return arrayOf(persons_); }
  [[nodiscard]] NSArray groups() const { return arrayOf(groups_); }
  [[nodiscard]] ABRecord recordForUniqueId(NSString uniqueId) const;
  [[nodiscard]] NSString recordClassFromUniqueId(NSString uniqueId) const;
  [[nodiscard]] NSArray recordsMatchingSearchElement(ABSearchElement search) const;
  bool addRecord(ABRecord record) { return addRecordOrFail(record, nullptr); }
  bool addRecordOrFail(ABRecord record, NSError* error);
  bool removeRecord(ABRecord record) { return removeRecordOrFail(record, nullptr); }
  bool removeRecordOrFail(ABRecord record, NSError* error);
  [[nodiscard]] bool hasUnsavedChanges() const { return hasUnsavedChanges_; }
  bool save() { return saveOrFail(nullptr); }
  bool saveOrFail(NSError* error);
  [[nodiscard]] ABPerson me() const;
  void setMe(ABPerson person);

  [[nodiscard]] bool isReadOnly() const { return !database->isWritable(); }

  Database* database = nullptr;  // lives as long as the process

  void load(const StoredCardPointer& card);
  // The record is to be saved with the book.
  void noteChange(ABRecord record);
  // Takes over what became of cards.
  void absorb(const std::vector<CardChange>& changes);
  // Those that the record is a direct member of.
  [[nodiscard]] NSArray groupsWith(const RecordObject& record) const;
  // The person, which is in the book, and all that are linked with it.
  [[nodiscard]] NSArray linkedWith(ABRecord person) const;
  // Nil when there is none.
  [[nodiscard]] ABRecord find(const std::string& uniqueId) const;

 private:
  static NSArray arrayOf(const std::vector<ABRecord>& records);

  void insert(Retained<ABRecord> record);
  void take(ABRecord record);
  void absorb(const CardChange& change);
  [[nodiscard]] SaveRequest saveRequest() const;
  void finishSave(const SaveRequest& request, const SaveResult& result);
  [[nodiscard]] std::vector<ABRecord>& listOf(ABRecord record);

  // One entry a record; the lists below have the order.
  std::unordered_map<std::string, Retained<ABRecord>> records_;
  std::vector<ABRecord> persons_;
  std::vector<ABRecord> groups_;
  std::vector<Retained<ABRecord>> changed_;
  std::vector<Retained<ABRecord>> removed_;  // of those that the folder has
  std::optional<std::string> changedMe_;     // the UID; empty for none
  bool hasUnsavedChanges_ = false;
  mutable std::optional<Links> links_;  // from the people's cards, once somebody has asked
};

}  // namespace contacts
