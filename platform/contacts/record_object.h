#pragma once

#include "platform/contacts/record.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/stored_card.h"
#include "platform/objc/retained.h"

#include <vector>

namespace contacts {

// What persons and groups have in common: a card and the values read from it so far.
struct RecordObject : objc::Object {
  [[nodiscard]] NSString uniqueId() const;
  [[nodiscard]] NSObject valueForProperty(NSString name);

  // Makes an allocated record the record of the card.
  ABRecord initialized(const Schema& schema, StoredCardPointer card);

 private:
  struct ReadValue {
    const Property* property;
    Retained<NSObject> value;
  };

  // A value is read once: whoever asks again gets the same object.
  NSObject value(const Property& property);

  const Schema* schema_ = nullptr;
  StoredCardPointer card_;
  std::vector<ReadValue> values_;
};

// A new record of the class that the card's kind asks for.
Retained<ABRecord> newRecord(StoredCardPointer card);

}  // namespace contacts
