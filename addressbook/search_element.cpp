#include "addressbook/search_element.h"

#include "addressbook/class_tables.h"
#include "addressbook/forward.h"
#include "addressbook/property_type.h"
#include "bridge/instance_registry.h"
#include "bridge/property_values.h"
#include "frame/member_table.h"
#include "platform/contacts/group.h"
#include "platform/contacts/person.h"

namespace {

void ABSearchElementConstructor(REALobject self) { constructWrapper(self); }

void ABSearchElementDestructor(REALobject self) { destroyWrapper(self); }

template <class Record>
REALobject searchElementForProperty(REALstring propertyName, REALstring label, REALstring key, REALvariant value,
                                    REALinteger comparison) {
  REALobject result = nullptr;
  CocoaInit();
  guard([&] {
    NSString property = NewNSString(propertyName);
    NSString entryLabel = NewNSString(label);
    NSString valueKey = NewNSString(key);
    if (!property) return;
    NSObject converted = NewValue(value, GetDataPropertyType(Record::typeOfProperty(property)));
    if (!converted) return;
    result = NewABSearchElementVXR(Record::searchElement(property, entryLabel, valueKey, converted, comparison));
  });
  return result;
}

}  // namespace

REALobject PersonSearchElementForProperty(REALstring propertyName, REALstring label, REALstring key, REALvariant value,
                                          REALinteger comparison) {
  return searchElementForProperty<ABPerson>(propertyName, label, key, value, comparison);
}

REALobject GroupSearchElementForProperty(REALstring propertyName, REALstring label, REALstring key, REALvariant value,
                                         REALinteger comparison) {
  return searchElementForProperty<ABGroup>(propertyName, label, key, value, comparison);
}

REALobject searchElementForConjunction(REALinteger conjunction, REALobjectArray children) {
  REALobject result = nullptr;
  CocoaInit();
  guard([&] {
    if (NSArray elements = CreateNSObjectArray(children, false)) {
      result = NewABSearchElementVXR(ABSearchElement::searchElementForConjunction(conjunction, elements));
    }
  });
  return result;
}

namespace {

REALproperty properties[] = {handleProperty()};

REALmethodDefinition methods[] = {
    method<"Constructor">(DummyConstructor, kEmptyConstructorFlags),
    method<"matchesRecord(record as ABRecordVXR) as boolean">(forward<&ABSearchElement::matchesRecord>),
    method<"Description as string">(forward<&ABSearchElement::description>),
};
static_assert(std::size(methods) == 3);

REALconstant constants[] = {
    {"kABSearchAnd = 0"},
    {"kABSearchOr = 1"},
};

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"searchElementForConjunction(conjunction as integer, children() as ABSearchElementVXR) as "
                 "ABSearchElementVXR">(searchElementForConjunction),
};

}  // namespace

REALclassDefinition ABSearchElementVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABSearchElementVXR",
    .dataSize = sizeof(Word),
    .constructor = ABSearchElementConstructor,
    .destructor = ABSearchElementDestructor,
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
    .constants = constants,
    .constantCount = std::size(constants),
    .flags = kClassFlags,
    .sharedMethods = sharedMethods,
    .sharedMethodCount = std::size(sharedMethods),
};
