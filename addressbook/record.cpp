#include "platform/contacts/record.h"

#include "addressbook/class_tables.h"
#include "addressbook/errors.h"
#include "addressbook/forward.h"
#include "bridge/property_values.h"
#include "frame/member_table.h"
#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/number.h"
#include "platform/objc/class_builder.h"

namespace {

// The category MyABPersonAdditionVXR: what the framework's records answer to "displayNameVXR".

NSString displayNameOfGroup(ABGroup group) { return group.valueForProperty(kABGroupNameProperty).as<NSString>(); }

NSString displayNameOfPerson(ABPerson person) {
  const int flags = person.valueForProperty(kABPersonFlags).as<NSNumber>().intValue();
  if ((flags & kABShowAsMask) != 0) return person.valueForProperty(kABOrganizationProperty).as<NSString>();

  NSObject title = person.valueForProperty(kABTitleProperty);
  NSObject last = person.valueForProperty(kABLastNameProperty);
  NSObject first = person.valueForProperty(kABFirstNameProperty);
  NSObject middle = person.valueForProperty(kABMiddleNameProperty);
  NSObject suffix = person.valueForProperty(kABSuffixProperty);
  NSInteger ordering = flags & kABNameOrderingMask;
  if (ordering == kABDefaultNameOrdering) {
    // Older frameworks know no ordering but first names first.
    auto book = ABAddressBook::sharedAddressBook();
    if (book.respondsToSelector("defaultNameOrdering"_sel)) ordering = book.defaultNameOrdering();
  }
  const bool lastNameFirst = ordering == kABLastNameFirst;

  auto name = NSMutableString::string();
  for (NSObject part :
       {title, lastNameFirst ? last : NSObject(), first, middle, lastNameFirst ? NSObject() : last, suffix}) {
    if (part) name.appendFormat("%@ "_ns, part);
  }
  const NSUInteger length = name.length();
  if (length == 0) return "?"_ns;
  name.deleteCharactersInRange(NSMakeRange(length - 1, 1));
  return name;
}

[[maybe_unused]] const bool categoryAttached = [] {
  objc::ClassBuilder(Class("ABPerson")).method<&displayNameOfPerson>("displayNameVXR");
  objc::ClassBuilder(Class("ABGroup")).method<&displayNameOfGroup>("displayNameVXR");
  return true;
}();

void ABRecordConstructor(REALobject self) { constructWrapper(self); }

void ABRecordDestructor(REALobject self) { destroyWrapper(self); }

// The framework's type code of the property; 0 for one that the record's class lacks.
NSInteger typeOfProperty(ABRecord record, NSString property) {
  if (IsABPerson(record)) return ABPerson::typeOfProperty(property);
  if (IsABGroup(record)) return ABGroup::typeOfProperty(property);
  return 0;
}

NSObject newValueFor(ABRecord record, NSString property, REALvariant value) {
  return NewValue(value, static_cast<std::int32_t>(typeOfProperty(record, property)));
}

bool setValue2(REALobject self, REALvariant value, REALstring propertyName, REALobject* error) {
  bool result = false;
  dropError(error);
  guard([&] {
    auto record = wrapped<ABRecord>(self);
    NSString property = NewNSString(propertyName);
    if (!record || !property) return;
    NSObject converted = newValueFor(record, property, value);
    callWithError(
        record, "setValue:forProperty:error:"_sel, error, result,
        [&](NSError* failure) { return record.setValue(converted, property, failure); },
        [&] { return record.setValue(converted, property); });
  });
  return result;
}

bool setValue1(REALobject self, REALvariant value, REALstring propertyName) {
  bool result = false;
  guard([&] {
    auto record = wrapped<ABRecord>(self);
    NSString property = NewNSString(propertyName);
    if (record && property) result = record.setValue(newValueFor(record, property, value), property);
  });
  return result;
}

REALvariant valueForProperty(REALobject self, REALstring propertyName) {
  REALvariant result = nullptr;
  guard([&] {
    auto record = wrapped<ABRecord>(self);
    NSString property = NewNSString(propertyName);
    if (!record || !property) return;
    const NSInteger type = typeOfProperty(record, property);
    result = GetValue(record.valueForProperty(property), static_cast<std::int32_t>(type));
  });
  return result;
}

REALstring DisplayName(REALobject self) {
  REALstring result = nullptr;
  guard([&] { result = NSStringRB(send<NSString>(wrapped<ABRecord>(self), "displayNameVXR"_sel)); });
  return result;
}

bool removeValueForProperty(REALobject self, REALstring propertyName) {
  bool result = false;
  guard([&] {
    auto record = wrapped<ABRecord>(self);
    NSString property = NewNSString(propertyName);
    if (record && property) result = record.removeValueForProperty(property);
  });
  return result;
}

REALproperty properties[] = {handleProperty()};

REALmethodDefinition methods[] = {
    method<"Constructor">(DummyConstructor, kEmptyConstructorFlags),
    method<"setValue(value as variant, propertyName as string, byref error as NSErrorVXR) as boolean">(setValue2),
    method<"setValue(value as variant, propertyName as string) as boolean">(setValue1),
    method<"valueForProperty(PropertyName as string) as variant">(valueForProperty),
    method<"uniqueId as string">(forward<&ABRecord::uniqueId>),
    method<"isReadOnly as boolean">(forwardIfKnown<"isReadOnly", &ABRecord::isReadOnly>),
    method<"DisplayName as string">(DisplayName),
    method<"Description as string">(forward<&ABRecord::description>),
    method<"removeValueForProperty(propertyName as string) as boolean">(removeValueForProperty),
};
static_assert(std::size(methods) == 9);

}  // namespace

REALclassDefinition ABRecordVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABRecordVXR",
    .dataSize = sizeof(Word),
    .constructor = ABRecordConstructor,
    .destructor = ABRecordDestructor,
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
    .flags = kClassFlags,
};
