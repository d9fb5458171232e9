#include "platform/contacts/record.h"

#include "platform/contacts/card_values.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/load.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/card.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <utility>

namespace contacts {
namespace {

StoredCardPointer newCard(bool isGroup) {
  auto card = std::make_shared<StoredCard>();
  card->uid = newIdentifier();
  card->isGroup = isGroup;
  return card;
}

struct PersonObject : RecordObject {
  ABRecord init() { return initialized(personSchema(), newCard(false)); }
};

struct GroupObject : RecordObject {
  ABRecord init() { return initialized(groupSchema(), newCard(true)); }
};

ABPropertyType typeOf(const Schema& schema, NSString name) {
  const Property* property = schema.find(utf8Of(name));
  return property == nullptr ? kABErrorInProperty : property->type;
}

ABPropertyType typeOfPersonProperty(Class, NSString name) { return typeOf(personSchema(), name); }
ABPropertyType typeOfGroupProperty(Class, NSString name) { return typeOf(groupSchema(), name); }

}  // namespace

NSString RecordObject::uniqueId() const { return makeString(card_->uniqueId()); }

NSObject RecordObject::valueForProperty(NSString name) {
  if (!name) NSException::raise(NSInvalidArgumentException, "valueForProperty: the property is nil");
  const Property* property = schema_->find(utf8Of(name));
  return property == nullptr ? NSObject() : value(*property);
}

NSObject RecordObject::value(const Property& property) {
  auto known = std::ranges::find(values_, &property, &ReadValue::property);
  if (known != values_.end()) return known->value.get();
  Retained<NSObject> read = property.name == "UID" ? Retained<NSObject>::share(uniqueId())
                                                   : valueFromCard(property, vcard::parseCard(card_->text));
  values_.push_back({&property, std::move(read)});
  return values_.back().value.get();
}

ABRecord RecordObject::initialized(const Schema& schema, StoredCardPointer card) {
  schema_ = &schema;
  card_ = std::move(card);
  return ABRecord(this);
}

Retained<ABRecord> newRecord(StoredCardPointer card) {
  const bool isGroup = card->isGroup;
  auto* record = objc::createInstance<RecordObject>(isGroup ? "ABGroup"_class : "ABPerson"_class);
  return Retained<ABRecord>::adopt(record->initialized(isGroup ? groupSchema() : personSchema(), std::move(card)));
}

void registerRecords() {
  objc::ClassBuilder::define<RecordObject>("ABRecord", "NSObject")
      .method<&RecordObject::uniqueId>("uniqueId")
      .method<&RecordObject::valueForProperty>("valueForProperty:");
  objc::ClassBuilder::define<PersonObject>("ABPerson", "ABRecord")
      .classMethod<&typeOfPersonProperty>("typeOfProperty:")
      .method<&PersonObject::init>("init");
  objc::ClassBuilder::define<GroupObject>("ABGroup", "ABRecord")
      .classMethod<&typeOfGroupProperty>("typeOfProperty:")
      .method<&GroupObject::init>("init");
}

}  // namespace contacts
