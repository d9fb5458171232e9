#include "platform/contacts/multi_value.h"

#include "platform/contacts/identifier.h"
#include "platform/contacts/load.h"
#include "platform/contacts/localization.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/number.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace contacts {
namespace {

void requireArgument(NSObject argument, const char* message) {
  if (!argument) NSException::raise(NSInvalidArgumentException, message);
}

// A copy where there are mutable ones, so that nobody changes an entry from outside, and no multi-value holds itself.
Retained<NSObject> ownValue(NSObject value) {
  if (value.isKindOfClass("NSString"_class)) return Retained<NSObject>::adopt(value.as<NSString>().copy());
  if (value.isKindOfClass("ABMultiValue"_class)) return Retained<NSObject>::adopt(value.as<ABMultiValue>().copy());
  return Retained<NSObject>::share(value);
}

template <class Object>
Retained<NSObject> duplicate(const MultiValueObject& source, Class objectClass) {
  auto* made = objc::createInstance<Object>(objectClass);
  made->entries = source.entries;
  made->primary = source.primary;
  return Retained<NSObject>::adopt(NSObject(made));
}

}  // namespace

const MultiValueEntry& MultiValueObject::entryAt(NSUInteger index) const {
  if (index >= entries.size()) {
    NSException::raise(NSRangeException, "ABMultiValue: index " + std::to_string(index) + " is beyond the " +
                                             std::to_string(entries.size()) + " entries");
  }
  return entries[index];
}

NSUInteger MultiValueObject::indexForIdentifier(NSString identifier) const {
  auto found = std::ranges::find_if(entries, [identifier](const MultiValueEntry& entry) {
    return identifier && entry.identifier->isEqualToString(identifier);
  });
  return found == entries.end() ? NSNotFound : static_cast<NSUInteger>(found - entries.begin());
}

NSString MultiValueObject::primaryIdentifier() const {
  if (primary && indexForIdentifier(primary.get()) != NSNotFound) return primary.get();
  return entries.empty() ? NSString() : entries.front().identifier.get();
}

ABPropertyType MultiValueObject::propertyType() const {
  if (entries.empty()) return kABErrorInProperty;
  if (declaredType != kABErrorInProperty) return declaredType;
  const ABPropertyType type = elementTypeOf(entries.front().value.get());
  const bool isUniform = std::ranges::all_of(
      entries, [type](const MultiValueEntry& entry) { return elementTypeOf(entry.value.get()) == type; });
  return isUniform && type != kABErrorInProperty ? type | kABMultiValueMask : kABErrorInProperty;
}

NSString MultiValueObject::description() const {
  std::string text = "{\n";
  for (const MultiValueEntry& entry : entries) {
    text += "    " + utf8Of(localizedPropertyOrLabel(entry.label.get())) + "  " + utf8Of(entry.value->description()) +
            "  " + utf8Of(entry.identifier.get()) + "\n";
  }
  return makeString(text + "}");
}

bool MultiValueObject::isEqual(NSObject other) const {
  if (!other || !other.isKindOfClass("ABMultiValue"_class)) return false;
  const MultiValueObject& theirs = objectOf(other.as<ABMultiValue>());
  auto isSame = [](NSObject a, NSObject b) { return send<bool>(a, "isEqual:"_sel, b); };
  auto isSameEntry = [&](const MultiValueEntry& a, const MultiValueEntry& b) {
    return isSame(a.value.get(), b.value.get()) && isSame(a.label.get(), b.label.get()) &&
           isSame(a.identifier.get(), b.identifier.get());
  };
  return std::ranges::equal(entries, theirs.entries, isSameEntry) &&
         (entries.empty() || isSame(primaryIdentifier(), theirs.primaryIdentifier()));
}

NSUInteger MultiValueObject::hash() const { return entries.size(); }

ABMultiValue MultiValueObject::copy() { return ABMultiValue(objc_retain(this)); }

ABMutableMultiValue MultiValueObject::mutableCopy() const {
  return duplicate<MutableMultiValueObject>(*this, "ABMutableMultiValue"_class).leak().as<ABMutableMultiValue>();
}

ABMultiValue MutableMultiValueObject::copy() const {
  return duplicate<MultiValueObject>(*this, "ABMultiValue"_class).leak().as<ABMultiValue>();
}

NSString MutableMultiValueObject::insertValue(NSObject value, NSString label, NSUInteger index) {
  requireArgument(value, "ABMutableMultiValue: the value is nil");
  requireArgument(label, "ABMutableMultiValue: the label is nil");
  if (index != entries.size()) (void)entryAt(index);
  MultiValueEntry entry{ownValue(value), Retained<NSString>::adopt(label.copy()),
                        Retained<NSString>::share(makeString(newIdentifier()))};
  const auto place = entries.begin() + static_cast<std::ptrdiff_t>(index);
  return entries.insert(place, std::move(entry))->identifier.get();
}

bool MutableMultiValueObject::removeValueAndLabelAtIndex(NSUInteger index) {
  (void)entryAt(index);
  entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(index));
  return true;
}

bool MutableMultiValueObject::replaceValueAtIndex(NSUInteger index, NSObject value) {
  requireArgument(value, "ABMutableMultiValue: the value is nil");
  (void)entryAt(index);
  entries[index].value = ownValue(value);
  return true;
}

bool MutableMultiValueObject::replaceLabelAtIndex(NSUInteger index, NSString label) {
  requireArgument(label, "ABMutableMultiValue: the label is nil");
  (void)entryAt(index);
  entries[index].label = Retained<NSString>::adopt(label.copy());
  return true;
}

bool MutableMultiValueObject::setPrimaryIdentifier(NSString identifier) {
  requireArgument(identifier, "ABMutableMultiValue: the identifier is nil");
  const NSUInteger index = indexForIdentifier(identifier);
  if (index == NSNotFound) return false;
  primary = entries[index].identifier;
  return true;
}

ABPropertyType elementTypeOf(NSObject value) {
  const struct {
    Class kind;
    ABPropertyType type;
  } kinds[] = {
      {"NSString"_class, kABStringProperty}, {"NSDate"_class, kABDateProperty},
      {"NSArray"_class, kABArrayProperty},   {"NSDictionary"_class, kABDictionaryProperty},
      {"NSData"_class, kABDataProperty},     {"NSDateComponents"_class, kABDateComponentsProperty},
  };
  for (const auto& known : kinds) {
    if (value.isKindOfClass(known.kind)) return known.type;
  }
  if (!value.isKindOfClass("NSNumber"_class)) return kABErrorInProperty;
  const char* encoding = value.as<NSNumber>().objCType();
  const bool isReal = std::strcmp(encoding, "f") == 0 || std::strcmp(encoding, "d") == 0;
  return isReal ? kABRealProperty : kABIntegerProperty;
}

Retained<ABMultiValue> newMultiValue(std::vector<MultiValueEntry> entries, NSString primary, ABPropertyType type) {
  auto* made = objc::createInstance<MultiValueObject>("ABMultiValue"_class);
  made->entries = std::move(entries);
  made->primary = Retained<NSString>::share(primary);
  made->declaredType = type;
  return Retained<ABMultiValue>::adopt(ABMultiValue(made));
}

void registerMultiValues() {
  objc::ClassBuilder::define<MultiValueObject>("ABMultiValue", "NSObject")
      .method<&MultiValueObject::count>("count")
      .method<&MultiValueObject::valueAtIndex>("valueAtIndex:")
      .method<&MultiValueObject::labelAtIndex>("labelAtIndex:")
      .method<&MultiValueObject::identifierAtIndex>("identifierAtIndex:")
      .method<&MultiValueObject::indexForIdentifier>("indexForIdentifier:")
      .method<&MultiValueObject::primaryIdentifier>("primaryIdentifier")
      .method<&MultiValueObject::propertyType>("propertyType")
      .method<&MultiValueObject::isEqual>("isEqual:")
      .method<&MultiValueObject::hash>("hash")
      .method<&MultiValueObject::description>("description")
      .method<&MultiValueObject::copy>("copy")
      .method<&MultiValueObject::mutableCopy>("mutableCopy");
  objc::ClassBuilder::define<MutableMultiValueObject>("ABMutableMultiValue", "ABMultiValue")
      .method<&MutableMultiValueObject::addValue>("addValue:withLabel:")
      .method<&MutableMultiValueObject::insertValue>("insertValue:withLabel:atIndex:")
      .method<&MutableMultiValueObject::removeValueAndLabelAtIndex>("removeValueAndLabelAtIndex:")
      .method<&MutableMultiValueObject::replaceValueAtIndex>("replaceValueAtIndex:withValue:")
      .method<&MutableMultiValueObject::replaceLabelAtIndex>("replaceLabelAtIndex:withLabel:")
      .method<&MutableMultiValueObject::setPrimaryIdentifier>("setPrimaryIdentifier:")
      .method<&MutableMultiValueObject::copy>("copy");
}

}  // namespace contacts
