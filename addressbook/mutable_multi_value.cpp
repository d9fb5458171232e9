#include "addressbook/class_tables.h"
#include "addressbook/forward.h"
#include "addressbook/property_type.h"
#include "bridge/property_values.h"
#include "frame/member_table.h"
#include "platform/contacts/multi_value.h"

namespace {

void ABMutableMultiValueClass(REALobject) {}

void Constructor(REALobject self) {
  guard([&] { adoptWrapped(self, ABMutableMultiValue::alloc().init()); });
}

NSObject newEntryValue(ABMutableMultiValue multiValue, REALvariant value) {
  return NewValue(value, GetDataPropertyType(multiValue.propertyType()));
}

bool replaceLabelAtIndex(REALobject self, std::uint32_t index, REALstring label) {
  bool result = false;
  guard([&] {
    auto multiValue = wrapped<ABMutableMultiValue>(self);
    NSString newLabel = NewNSString(label);
    if (multiValue && newLabel) result = multiValue.replaceLabelAtIndex(index, newLabel);
  });
  return result;
}

bool setPrimaryIdentifier(REALobject self, REALstring identifier) {
  bool result = false;
  guard([&] {
    auto multiValue = wrapped<ABMutableMultiValue>(self);
    NSString wanted = NewNSString(identifier);
    if (multiValue && wanted) result = multiValue.setPrimaryIdentifier(wanted);
  });
  return result;
}

// Adds through the given call; the new entry's identifier.
template <class Add>
REALstring addEntry(REALobject self, REALvariant value, REALstring label, Add add) {
  REALstring result = nullptr;
  guard([&] {
    auto multiValue = wrapped<ABMutableMultiValue>(self);
    NSString entryLabel = NewNSString(label);
    if (!multiValue || !entryLabel) return;
    if (NSObject converted = newEntryValue(multiValue, value)) {
      result = NSStringRB(add(multiValue, converted, entryLabel));
    }
  });
  return result;
}

REALstring addValue(REALobject self, REALvariant value, REALstring label) {
  return addEntry(self, value, label, [](ABMutableMultiValue multiValue, NSObject converted, NSString entryLabel) {
    return multiValue.addValue(converted, entryLabel);
  });
}

REALstring insertValue(REALobject self, REALvariant value, REALstring label, std::uint32_t index) {
  return addEntry(self, value, label, [index](ABMutableMultiValue multiValue, NSObject converted, NSString entryLabel) {
    return multiValue.insertValue(converted, entryLabel, index);
  });
}

bool replaceValueAtIndex(REALobject self, std::uint32_t index, REALvariant value) {
  bool result = false;
  guard([&] {
    auto multiValue = wrapped<ABMutableMultiValue>(self);
    if (!multiValue) return;
    if (NSObject converted = newEntryValue(multiValue, value)) {
      result = multiValue.replaceValueAtIndex(index, converted);
    }
  });
  return result;
}

REALmethodDefinition methods[] = {
    method<"_ABMutableMultiValueClass">(ABMutableMultiValueClass),
    method<"Constructor">(Constructor),
    method<"removeValueAndLabelAtIndex(index as UInt32) as boolean">(
        forward<&ABMutableMultiValue::removeValueAndLabelAtIndex>),
    method<"replaceLabelAtIndex(index as UInt32, label as string) as boolean">(replaceLabelAtIndex),
    method<"setPrimaryIdentifier(identifier as string) as boolean">(setPrimaryIdentifier),
    method<"addValue(value as Variant, label as string) as string">(addValue),
    method<"insertValue(value as Variant, label as string, index as UInt32) as string">(insertValue),
    method<"replaceValueAtIndex(index as UInt32, value as Variant) as boolean">(replaceValueAtIndex),
};
static_assert(std::size(methods) == 8);

}  // namespace

REALclassDefinition ABMutableMultiValueVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABMutableMultiValueVXR",
    .superName = "ABMultiValueVXR",
    .methods = methods,
    .methodCount = std::size(methods),
    .flags = kClassFlags,
};
