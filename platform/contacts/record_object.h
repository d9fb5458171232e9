#pragma once

#include "platform/contacts/card_changes.h"
#include "platform/contacts/record.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/stored_card.h"
#include "platform/contacts/text_properties.h"
#include "platform/contacts/vcard/card.h"
#include "platform/foundation/array.h"
#include "platform/objc/retained.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

struct AddressBookObject;

// What persons and groups have in common: a card as it was last read, and the values read from it or changed since.
struct RecordObject : objc::Object {
  [[nodiscard]] NSString uniqueId() const;
  [[nodiscard]] bool isReadOnly() const;
  [[nodiscard]] NSObject valueForProperty(NSString name);
  bool setValue(NSObject value, NSString name) { return setValueOrFail(value, name, nullptr); }
  bool setValueOrFail(NSObject value, NSString name, NSError* error);
  bool removeValueForProperty(NSString name) { return setValueOrFail(nullptr, name, nullptr); }
  [[nodiscard]] NSString description();
  [[nodiscard]] NSArray parentGroups() const;

  // Makes an allocated record the record of the card.
  ABRecord initialized(const Schema& schema, StoredCardPointer card);
  // As initialized, of a card that is nowhere yet, pending in the book; nil for none.
  ABRecord initializedNew(bool isGroup, NSObject book);

  // Since the card was read.
  [[nodiscard]] bool isChanged() const;
  [[nodiscard]] CardChanges changes(double time);
  // The card as it would be saved now.
  [[nodiscard]] std::string changedText();

  // Whether all values are the card's.
  [[nodiscard]] bool isAsRead() const;
  // Whether one of the texts that digests are of (stored_card.h) may contain what the part was made of.
  [[nodiscard]] bool mayHave(const TextDigest& part) const;

  // The card was read anew. What was changed in the record stays changed, unless the card has it since a save.
  void adopt(StoredCardPointer card, bool isSaved);

  [[nodiscard]] const StoredCard& card() const { return *card_; }
  [[nodiscard]] std::string uid() const { return std::string(card_->uid); }
  [[nodiscard]] const StoredCardPointer& sharedCard() const { return card_; }
  [[nodiscard]] bool isGroup() const { return card_->isGroup; }
  [[nodiscard]] AddressBookObject* book() const { return book_; }
  void setBook(AddressBookObject* book) {
    book_ = book;
    isNoted_ = false;
  }
  // Tells the book, once until it may note again.
  void noteChange();
  void noteAgain() { isNoted_ = false; }

 protected:
  // The card's lines, until another card's are asked for on this thread.
  [[nodiscard]] const vcard::Card& lines() const;
  // Drops what views showed of the old value.
  void store(const Property& property, Retained<NSObject> value);

  struct HeldValue {
    const Property* property;
    Retained<NSObject> value;
    bool isChanged;
  };
  // Null when the property was neither read nor changed so far.
  [[nodiscard]] const HeldValue* held(const Property& property) const;

 private:
  // A value is read once: whoever asks again gets the same object.
  NSObject value(const Property& property);
  [[nodiscard]] bool isToBeSaved(const HeldValue& held) const;
  NSObject valueFor(std::string_view property) { return value(*schema_->find(property)); }
  [[nodiscard]] Retained<NSObject> read(const Property& property);
  // All fields of a name at once: whoever asks for one asks for the others.
  [[nodiscard]] std::array<Retained<NSObject>, kNameFields> names() const;
  void readNames();

  const Schema* schema_ = nullptr;
  StoredCardPointer card_;
  AddressBookObject* book_ = nullptr;  // the book goes first: it takes itself out of its records
  bool isNoted_ = false;
  std::vector<HeldValue> values_;
};

// A new record of the class that the card's kind asks for.
Retained<ABRecord> newRecord(StoredCardPointer card);

inline RecordObject& objectOf(ABRecord record) { return *static_cast<RecordObject*>(record.get()); }

}  // namespace contacts
