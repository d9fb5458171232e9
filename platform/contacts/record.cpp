#include "platform/contacts/record.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/card_values.h"
#include "platform/contacts/custom_properties.h"
#include "platform/contacts/errors.h"
#include "platform/contacts/group_object.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/load.h"
#include "platform/contacts/property_views.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/text_properties.h"
#include "platform/contacts/value_check.h"
#include "platform/foundation/date.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

namespace contacts {
namespace {

bool isSetByTheFramework(const Property& property) {
  return property.name == "UID" || property.name == "Creation" || property.name == "Modification";
}

}  // namespace

NSString RecordObject::uniqueId() const { return makeString(card_->uniqueId()); }

NSObject RecordObject::valueForProperty(NSString name) {
  if (!name) NSException::raise(NSInvalidArgumentException, "valueForProperty: the property is nil");
  const Property* property = findProperty(*schema_, name);
  if (property == nullptr) return nullptr;
  // The caller may still look at it after the property was given another.
  return Retained<NSObject>::share(value(*property)).autorelease();
}

bool RecordObject::isReadOnly() const { return book_ != nullptr && book_->isReadOnly(); }

bool RecordObject::setValueOrFail(NSObject value, NSString name, NSError* error) {
  if (!name) NSException::raise(NSInvalidArgumentException, "setValue:forProperty: the property is nil");
  const Property* property = findProperty(*schema_, name);
  if (property == nullptr) {
    return fail(error, ABPropertyUnsupportedBySourceError, utf8Of(name) + ": there is no such property");
  }
  if (isSetByTheFramework(*property) || isReadOnly()) {
    return fail(error, ABPropertyReadOnlyError, utf8Of(name) + ": the property can't be set");
  }
  std::optional<Retained<NSObject>> checked = checkedValue(*property, value, error);
  if (!checked) return false;
  if (const PropertyView* view = property->view) {
    property = schema_->find(view->source);
    const Retained<NSObject> written = view->write(*view, this->value(*property), checked->get());
    checked = checkedValue(*property, written.get(), error);
    if (!checked) return false;
  }
  store(*property, *std::move(checked));
  return true;
}

const RecordObject::HeldValue* RecordObject::held(const Property& property) const {
  auto known = std::ranges::find(values_, &property, &HeldValue::property);
  return known == values_.end() ? nullptr : &*known;
}

NSObject RecordObject::value(const Property& property) {
  if (const HeldValue* known = held(property)) return known->value.get();
  constexpr std::size_t kUsualCount = 8;  // most who ask for one ask for several
  if (values_.empty()) values_.reserve(kUsualCount);
  if (isNameField(property)) {
    readNames();
    return held(property)->value.get();
  }
  Retained<NSObject> found = read(property);
  values_.push_back({&property, std::move(found), false});
  return values_.back().value.get();
}

std::array<Retained<NSObject>, kNameFields> RecordObject::names() const {
  if (const auto [begin, size] = card_->kept.name(); size > 0) {
    if (const std::optional<SharedText> text = card_->kept.read()) {
      return namesFromFields(text->view().substr(begin, size));
    }
  }
  return namesFromCard(lines());
}

void RecordObject::readNames() {
  static const auto properties = [] {
    std::array<const Property*, kNameFields> found;
    for (std::size_t i = 0; i < found.size(); ++i) found[i] = personSchema().find(kTextProperties[i].property);
    return found;
  }();
  std::array<Retained<NSObject>, kNameFields> names = this->names();
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (held(*properties[i]) == nullptr) values_.push_back({properties[i], std::move(names[i]), false});
  }
}

Retained<NSObject> RecordObject::read(const Property& property) {
  if (const PropertyView* view = property.view) return view->read(*view, valueFor(view->source));
  if (property.name == "UID") return Retained<NSObject>::share(uniqueId());
  Retained<NSObject> found = valueFromCard(property, lines(), card_->uid);
  if (found || property.text != nullptr) return found;
  // A card that doesn't say when it was made or changed is as old as its file.
  if (property.name == "Creation") return Retained<NSObject>::share(valueFor("Modification"));
  if (property.name != "Modification" || !card_->fileTime) return {};
  return Retained<NSObject>::share(
      NSDate::dateWithTimeIntervalSinceReferenceDate(*card_->fileTime - NSTimeIntervalSince1970));
}

void RecordObject::store(const Property& property, Retained<NSObject> value) {
  std::erase_if(values_, [&](const HeldValue& held) {
    const PropertyView* view = held.property->view;
    return held.property == &property || (view != nullptr && view->source == property.name);
  });
  values_.push_back({&property, std::move(value), true});
  noteChange();
}

const vcard::Card& RecordObject::lines() const {
  struct Parsed {
    StoredCardPointer source;
    SharedText text;
    vcard::Card card;
  };
  thread_local Parsed onThisThread;
  Parsed& parsed = onThisThread;
  if (parsed.source != card_) {
    parsed.source.reset();
    parsed.text = card_->text();
    vcard::parseCard(parsed.text.view(), parsed.card);
    parsed.source = card_;
  }
  return parsed.card;
}

// A custom property may have gone since.
bool RecordObject::isToBeSaved(const HeldValue& held) const {
  return held.isChanged && (!held.property->isCustom || schema_->find(held.property->name) == held.property);
}

bool RecordObject::isChanged() const {
  return std::ranges::any_of(values_, [this](const HeldValue& held) { return isToBeSaved(held); }) ||
         (isGroup() && static_cast<const GroupObject*>(this)->hasChangedMembers());
}

bool RecordObject::isAsRead() const { return std::ranges::none_of(values_, &HeldValue::isChanged); }

bool RecordObject::mayHave(const TextDigest& part) const { return card_->digest->mayHave(part) || !isAsRead(); }

CardChanges RecordObject::changes(double time) {
  CardChanges changes{uid(), isGroup(), time, {}, {}, {}, {}};
  const NSObject created = valueFor("Creation");
  changes.created = time;
  if (created) changes.created = created.as<NSDate>().timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970;
  for (const HeldValue& held : values_) {
    if (isToBeSaved(held)) changes.values.push_back({held.property, held.value});
  }
  if (isGroup()) static_cast<const GroupObject*>(this)->addChangesTo(changes);
  return changes;
}

NSArray RecordObject::parentGroups() const { return book_ == nullptr ? NSArray::array() : book_->groupsWith(*this); }

std::string RecordObject::changedText() {
  return changedCard(card_->fullText(),
                     changes(NSDate::date().timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970));
}

void RecordObject::noteChange() {
  if (book_ == nullptr || isNoted_) return;
  book_->noteChange(ABRecord(this));
  isNoted_ = true;
}

void RecordObject::adopt(StoredCardPointer card, bool isSaved) {
  card_ = std::move(card);
  if (isSaved) {
    for (HeldValue& held : values_) held.isChanged = false;
  }
  if (isGroup()) static_cast<GroupObject*>(this)->dropMembers(isSaved);
  std::erase_if(values_, [](const HeldValue& held) {
    return !held.isChanged && (held.property == &imageProperty() || isSetByTheFramework(*held.property));
  });
  // A value that is still the same stays the same object. Views come last: they are read from others, which may be
  // added to the list on the way.
  for (const bool areViews : {false, true}) {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      const Property& property = *values_[i].property;
      if (values_[i].isChanged || (property.view != nullptr) != areViews) continue;
      Retained<NSObject> fresh = read(property);
      NSObject old = values_[i].value.get();
      if (!old || !fresh || !send<bool>(old, "isEqual:"_sel, fresh.get())) values_[i].value = std::move(fresh);
    }
  }
}

ABRecord RecordObject::initialized(const Schema& schema, StoredCardPointer card) {
  schema_ = &schema;
  card_ = std::move(card);
  return ABRecord(this);
}

ABRecord RecordObject::initializedNew(bool isGroup, NSObject book) {
  auto card = std::make_shared<SingleCard>();
  card->setUid(newIdentifier());
  card->isGroup = isGroup;
  // Given up where the book raises.
  auto owned = Retained<ABRecord>::adopt(initialized(isGroup ? groupSchema() : personSchema(), std::move(card)));
  if (book) book.as<ABAddressBook>().addRecord(owned.get());
  return owned.leak();
}

Retained<ABRecord> newRecord(StoredCardPointer card) {
  const bool isGroup = card->isGroup;
  auto* record = objc::createInstance<RecordObject>(isGroup ? "ABGroup"_class : "ABPerson"_class);
  return Retained<ABRecord>::adopt(record->initialized(isGroup ? groupSchema() : personSchema(), std::move(card)));
}

void registerRecord() {
  objc::ClassBuilder::define<RecordObject>("ABRecord", "NSObject")
      .method<&RecordObject::uniqueId>("uniqueId")
      .method<&RecordObject::isReadOnly>("isReadOnly")
      .method<&RecordObject::valueForProperty>("valueForProperty:")
      .method<&RecordObject::setValue>("setValue:forProperty:")
      .method<&RecordObject::setValueOrFail>("setValue:forProperty:error:")
      .method<&RecordObject::removeValueForProperty>("removeValueForProperty:")
      .method<&RecordObject::description>("description");
}

}  // namespace contacts
