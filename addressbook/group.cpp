#include "platform/contacts/group.h"

#include "addressbook/class_tables.h"
#include "addressbook/forward.h"
#include "addressbook/schema.h"
#include "addressbook/search_element.h"
#include "frame/member_table.h"

namespace {

void Constructor1(REALobject self) {
  guard([&] { adoptWrapped(self, ABGroup::alloc().init()); });
}

void Constructor2(REALobject self, REALobject addressBook) {
  guard([&] { adoptWrapped(self, ABGroup::alloc().initWithAddressBook(wrapped<NSObject>(addressBook))); });
}

REALstring distributionIdentifier(REALobject self, REALstring propertyName, REALobject person) {
  REALstring result = nullptr;
  guard([&] {
    auto group = wrapped<ABGroup>(self);
    auto member = wrapped<ABPerson>(person);
    NSString property = NewNSString(propertyName);
    if (group && member && property) result = NSStringRB(group.distributionIdentifier(property, member));
  });
  return result;
}

void assignDistributionIdentifier(REALobject self, REALstring propertyName, REALobject person, REALstring assigned) {
  guard([&] {
    auto group = wrapped<ABGroup>(self);
    auto member = wrapped<ABPerson>(person);
    NSString property = NewNSString(propertyName);
    NSString identifier = NewNSString(assigned);
    if (group && member && identifier) group.setDistributionIdentifier(identifier, property, member);
  });
}

REALmethodDefinition methods[] = {
    method<"Constructor">(Constructor1),
    method<"Constructor(addressBook as ABAddressBookVXR)">(Constructor2),
    method<"members as ABPersonVXR()">(forwardList<&ABGroup::members, FillABPersonArray>),
    method<"addMember(group as ABPersonVXR) as boolean">(forward<&ABGroup::addMember>),
    method<"removeMember(group as ABPersonVXR) as boolean">(forward<&ABGroup::removeMember>),
    method<"subgroups as ABGroupVXR()">(forwardList<&ABGroup::subgroups, FillABGroupArray>),
    method<"parentGroups as ABGroupVXR()">(forwardList<&ABGroup::parentGroups, FillABGroupArray>),
    method<"addSubgroup(group as ABGroupVXR) as boolean">(forward<&ABGroup::addSubgroup>),
    method<"removeSubgroup(group as ABGroupVXR) as boolean">(forward<&ABGroup::removeSubgroup>),
    assignableMethod<"distributionIdentifierForProperty(propertyName as string, person as ABPersonVXR) as String">(
        distributionIdentifier, assignDistributionIdentifier),
};
static_assert(std::size(methods) == 10);

using Groups = Schema<ABGroup>;

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"searchElementForProperty(PropertyName as string, Label as string, Key as string, value as variant, "
                 "comparison as integer) as ABSearchElementVXR">(GroupSearchElementForProperty),
    sharedMethod<"removeProperties(properties() as string) as integer">(Groups::removeProperties),
    sharedMethod<"removeProperty(propertyName as string) as integer">(Groups::removeProperty),
    sharedMethod<"typeOfProperty(propertyName as string) as integer">(Groups::typeOfProperty),
    sharedMethod<"addProperty(propertyName as string, type as integer) as integer">(Groups::addProperty),
    sharedMethod<"properties as string()">(Groups::properties),
};
static_assert(std::size(sharedMethods) == 6);

}  // namespace

REALclassDefinition ABGroupVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABGroupVXR",
    .superName = "ABRecordVXR",
    .methods = methods,
    .methodCount = std::size(methods),
    .flags = kClassFlags,
    .sharedMethods = sharedMethods,
    .sharedMethodCount = std::size(sharedMethods),
};
