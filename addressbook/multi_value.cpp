#include "platform/contacts/multi_value.h"

#include "addressbook/class_tables.h"
#include "addressbook/forward.h"
#include "addressbook/property_type.h"
#include "bridge/property_values.h"
#include "frame/host_ref.h"
#include "frame/member_table.h"
#include "platform/objc/retained.h"

namespace {

// What host code sees for an identifier that isn't there, at either width.
constexpr std::uint32_t kIndexNotFound = 0x7FFFFFFF;

void ABMultiValueConstructor(REALobject self) { constructWrapper(self); }

void ABMultiValueDestructor(REALobject self) { destroyWrapper(self); }

REALvariant valueAt(ABMultiValue multiValue, NSUInteger index) {
  NSObject value = multiValue.valueAtIndex(index);
  return GetValue(value, GetDataPropertyType(multiValue.propertyType()));
}

REALobject edit(REALobject self) {
  REALobject result = nullptr;
  guard([&] {
    auto copy = Retained<ABMutableMultiValue>::adopt(wrapped<ABMultiValue>(self).mutableCopy());
    result = NewABMutableMultiValueVXR(copy.autorelease());
  });
  return result;
}

REALobject copy(REALobject self) {
  REALobject result = nullptr;
  guard([&] {
    auto copied = Retained<ABMultiValue>::adopt(wrapped<ABMultiValue>(self).copy());
    result = NewABMultiValueVXR(copied.autorelease());
  });
  return result;
}

std::uint32_t indexForIdentifier(REALobject self, REALstring identifier) {
  std::uint32_t result = 0;
  guard([&] {
    auto multiValue = wrapped<ABMultiValue>(self);
    if (!multiValue) return;
    const NSUInteger index = multiValue.indexForIdentifier(NewNSString(identifier));
    result = index == NSNotFound ? kIndexNotFound : static_cast<std::uint32_t>(index);
  });
  return result;
}

REALvariant valueAtIndex(REALobject self, std::uint32_t index) {
  REALvariant result = nullptr;
  guard([&] {
    if (auto multiValue = wrapped<ABMultiValue>(self)) result = valueAt(multiValue, index);
  });
  return result;
}

// An identifier that isn't there reaches the framework as an index out of range.
REALstring labelForIdentifier(REALobject self, REALstring identifier) {
  REALstring result = nullptr;
  guard([&] {
    auto multiValue = wrapped<ABMultiValue>(self);
    if (!multiValue) return;
    result = NSStringRB(multiValue.labelAtIndex(multiValue.indexForIdentifier(NewNSString(identifier))));
  });
  return result;
}

REALvariant valueForIdentifier(REALobject self, REALstring identifier) {
  REALvariant result = nullptr;
  guard([&] {
    auto multiValue = wrapped<ABMultiValue>(self);
    if (multiValue) result = valueAt(multiValue, multiValue.indexForIdentifier(NewNSString(identifier)));
  });
  return result;
}

// Of several entries with the label, the last one's value.
REALvariant valueForLabel(REALobject self, REALstring label) {
  HostRef<REALvariant> result;
  guard([&] {
    auto multiValue = wrapped<ABMultiValue>(self);
    NSString wanted = NewNSString(label);
    if (!multiValue || !wanted) return;
    const NSUInteger count = multiValue.count();
    for (NSUInteger index = 0; index < count; ++index) {
      NSString entryLabel = multiValue.labelAtIndex(index);
      if (!entryLabel || wanted.compare(entryLabel) != NSOrderedSame) continue;
      result = adoptHost(valueAt(multiValue, index));
    }
  });
  return result.handOver();
}

REALproperty properties[] = {handleProperty()};

REALmethodDefinition methods[] = {
    method<"Constructor">(DummyConstructor, kEmptyConstructorFlags),
    method<"edit as ABMutableMultiValueVXR">(edit),
    method<"copy as ABMultiValueVXR">(copy),
    method<"count as integer">(forward<&ABMultiValue::count>),
    method<"propertyType as integer">(forward<&ABMultiValue::propertyType>),
    method<"primaryIdentifier as string">(forward<&ABMultiValue::primaryIdentifier>),
    method<"indexForIdentifier(identifier as string) as UInt32">(indexForIdentifier),
    method<"identifierAtIndex(index as UInt32) as string">(forward<&ABMultiValue::identifierAtIndex>),
    method<"labelAtIndex(index as UInt32) as string">(forward<&ABMultiValue::labelAtIndex>),
    method<"valueAtIndex(index as UInt32) as variant">(valueAtIndex),
    method<"labelForIdentifier(identifier as string) as string">(labelForIdentifier),
    method<"valueForIdentifier(identifier as string) as variant">(valueForIdentifier),
    method<"valueForLabel(label as string) as variant">(valueForLabel),
    method<"Description as string">(forward<&ABMultiValue::description>),
};
static_assert(std::size(methods) == 14);

}  // namespace

REALclassDefinition ABMultiValueVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABMultiValueVXR",
    .dataSize = sizeof(Word),
    .constructor = ABMultiValueConstructor,
    .destructor = ABMultiValueDestructor,
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
    .flags = kClassFlags,
};
