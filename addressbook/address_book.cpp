#include "platform/contacts/address_book.h"

#include "addressbook/class_tables.h"
#include "addressbook/constants.h"
#include "addressbook/errors.h"
#include "addressbook/forward.h"
#include "addressbook/observer.h"
#include "addressbook/pool.h"
#include "addressbook/search_element.h"
#include "bridge/data.h"
#include "bridge/dictionaries.h"
#include "bridge/instance_registry.h"
#include "frame/host_ref.h"
#include "frame/member_table.h"
#include "frame/runtime_support.h"
#include "frame/worker_thread.h"
#include "platform/contacts/constants.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <array>

namespace {

// The object that all programs share; one reference of it is kept here until the process ends.
REALobject gsharedAddressbook = nullptr;
// Whether the framework has ever been asked for its shared address book and answered, be it with nil.
bool GotSharedAddressbook = false;

void ABAddressBookConstructor(REALobject self) {
  if (wrapped<ABAddressBook>(self)) {
    RaiseException("UnsupportedOperationException", "Constructor called too often. Object is already initialized.",
                   kEncodingASCII);
    return;
  }
  CocoaInit();
  guard([&] {
    auto book = ABAddressBook::sharedAddressBook();
    GotSharedAddressbook = true;
    if (!book) return;
    adoptWrapped(self, Retained<ABAddressBook>::share(book).leak());
    if (handlesDatabaseChanged(self)) InstallEvent(self);
  });
}

void ABAddressBookDestructor(REALobject self) {
  CocoaInit();
  guard([&] {
    UnregisterInstance(wrapped<ABAddressBook>(self));
    removeEvent(self);
  });
  guard([&] { releaseWrapped(self); });
}

REALobject addressBook() {
  REALobject result = nullptr;
  CocoaInit();
  guard([&] {
    auto book = ABAddressBook::addressBook();
    result = REALnewInstance("ABAddressBookVXR");
    if (result != nullptr) adoptWrapped(result, Retained<ABAddressBook>::share(book).leak());
  });
  return result;
}

// Opening the database may take long; the constructor finds it open then.
void MyThreadWork(void*) {
  SetThreadName("Addressbook");
  inPool([] { guard([] { ABAddressBook::sharedAddressBook(); }); });
}

REALobject sharedObject(bool openOnWorker) {
  CocoaInit();
  if (gsharedAddressbook == nullptr && openOnWorker) RunThreaded(nullptr, MyThreadWork, nullptr);
  // Host code that ran while the worker did may have made the object.
  if (gsharedAddressbook != nullptr) return HostRef<REALobject>::share(gsharedAddressbook).handOver();

  auto object = adoptHost(REALnewInstance("ABAddressBookVXR"));
  if (!object) return nullptr;
  ABAddressBookConstructor(object.get());
  if (!wrapped<ABAddressBook>(object.get())) return nullptr;
  gsharedAddressbook = HostRef<REALobject>::share(object.get()).handOver();
  return object.handOver();
}

REALobject sharedAddressbook() { return sharedObject(false); }

REALobject sharedAddressbookMT() { return sharedObject(true); }

bool getGotSharedAddressbook() { return GotSharedAddressbook; }

void EnableEvent(REALobject self) {
  guard([&] { InstallEvent(self); });
}

REALobject formattedAddressFromDictionary(REALobject self, REALdictionary address) {
  REALobject result = nullptr;
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    if (!book) return;
    NSDictionary converted = NewNSDictionary(address);
    if (converted) result = NewNSAttributedStringVXR(book.formattedAddressFromDictionary(converted));
  });
  return result;
}

REALobject NewPersonWithVCardRepresentation(REALobject, REALmemoryBlock data) {
  REALobject result = nullptr;
  guard([&] {
    NSData vCard = NewNSData(data);
    if (!vCard) return;
    const auto person = Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(vCard));
    result = NewABPersonVXR(person.get());
  });
  return result;
}

REALobjectArray recordsMatchingSearchElement(REALobject self, REALobject search) {
  auto result = adoptHost(REALCreateArrayObject(-1));
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    auto element = wrapped<ABSearchElement>(search);
    if (book && element) FillABRecordArray(result.get(), book.recordsMatchingSearchElement(element));
  });
  return result.handOver();
}

// Adds or removes the record, through the selector that reports errors where there is one.
bool changeWithError(REALobject self, REALobject record, REALobject* error, objc::Selector reportingSelector,
                     bool (ABAddressBook::*report)(ABRecord, NSError*) const,
                     bool (ABAddressBook::*plain)(ABRecord) const) {
  bool result = false;
  dropError(error);
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    auto changed = wrapped<ABRecord>(record);
    if (!book || !changed) return;
    callWithError(
        book, reportingSelector, error, result, [&](NSError* failure) { return (book.*report)(changed, failure); },
        [&] { return (book.*plain)(changed); });
  });
  return result;
}

bool addRecord2(REALobject self, REALobject record, REALobject* error) {
  return changeWithError(self, record, error, "addRecord:error:"_sel, &ABAddressBook::addRecord,
                         &ABAddressBook::addRecord);
}

bool removeRecord2(REALobject self, REALobject record, REALobject* error) {
  return changeWithError(self, record, error, "removeRecord:error:"_sel, &ABAddressBook::removeRecord,
                         &ABAddressBook::removeRecord);
}

void setMe(REALobject self, REALobject moi) {
  guard([&] { wrapped<ABAddressBook>(self).setMe(wrapped<ABPerson>(moi)); });
}

REALobject owner(REALobject self) {
  REALobject result = nullptr;
  guard([&] { result = NewABPersonVXR(wrapped<ABAddressBook>(self).me()); });
  return result;
}

bool save2(REALobject self, REALobject* error) {
  bool result = false;
  dropError(error);
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    callWithError(
        book, "saveAndReturnError:"_sel, error, result, [&](NSError* failure) { return book.save(failure); },
        [&] { return book.save(); });
  });
  return result;
}

REALstring recordClassFromUniqueId(REALobject self, REALstring uniqueId) {
  REALstring result = nullptr;
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    NSString id = NewNSString(uniqueId);
    if (!id || !book.respondsToSelector("recordClassFromUniqueId:"_sel)) return;
    result = NSStringRB(book.recordClassFromUniqueId(id));
  });
  return result;
}

REALstring LocalizedPropertyOrLabel(REALobject, REALstring propertyOrLabel) {
  REALstring result = nullptr;
  if (!PLATFORM_HAS(ABLocalizedPropertyOrLabel)) return result;
  guard([&] { result = NSStringRB(NSString(ABLocalizedPropertyOrLabel(NewNSString(propertyOrLabel).get()))); });
  return result;
}

ABRecord recordOf(REALobject self, REALstring uniqueId) {
  NSString id = NewNSString(uniqueId);
  return id ? wrapped<ABAddressBook>(self).recordForUniqueId(id) : nullptr;
}

REALobject recordForUniqueId(REALobject self, REALstring uniqueId) {
  REALobject result = nullptr;
  guard([&] { result = NewABRecordVXR(recordOf(self, uniqueId)); });
  return result;
}

REALobject personForUniqueId(REALobject self, REALstring uniqueId) {
  REALobject result = nullptr;
  guard([&] {
    ABRecord record = recordOf(self, uniqueId);
    if (IsABPerson(record)) result = NewABPersonVXR(record.as<ABPerson>());
  });
  return result;
}

REALobject groupForUniqueId(REALobject self, REALstring uniqueId) {
  REALobject result = nullptr;
  guard([&] {
    ABRecord record = recordOf(self, uniqueId);
    if (IsABGroup(record)) result = NewABGroupVXR(record.as<ABGroup>());
  });
  return result;
}

REALobject groupForName(REALobject self, REALstring name) {
  REALobject result = nullptr;
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    if (!book) return;
    NSString wanted = NewNSString(name);
    NSArray all = book.groups();
    const NSUInteger count = all.count();
    for (NSUInteger index = 0; index < count; ++index) {
      auto group = all.objectAtIndex(index).as<ABGroup>();
      auto groupName = group.valueForProperty(kABGroupNameProperty).as<NSString>();
      if (groupName.isEqualToString(wanted)) {
        result = NewABGroupVXR(group);
        return;
      }
    }
  });
  return result;
}

REALobjectArray peopleForEmail(REALobject self, REALstring email) {
  auto result = adoptHost(REALCreateArrayObject(-1));
  guard([&] {
    auto book = wrapped<ABAddressBook>(self);
    const NSString address = NewNSString(email);
    if (!book || !address || !result) return;
    auto search = ABPerson::searchElement(kABEmailProperty, nullptr, nullptr, address, kABEqualCaseInsensitive);
    NSEnumerator records = book.recordsMatchingSearchElement(search).objectEnumerator();
    REALinteger index = 0;
    while (NSObject record = records.nextObject()) {
      if (!IsABPerson(record)) continue;
      const auto person = adoptHost(NewABPersonVXR(record.as<ABPerson>()));
      REALInsertArrayValue(result.get(), index++, person.get());
    }
  });
  return result.handOver();
}

// Of the framework's two forms, those that report no error.
constexpr bool (ABAddressBook::*kAddRecord)(ABRecord) const = &ABAddressBook::addRecord;
constexpr bool (ABAddressBook::*kRemoveRecord)(ABRecord) const = &ABAddressBook::removeRecord;
constexpr bool (ABAddressBook::*kSave)() const = &ABAddressBook::save;

REALproperty properties[] = {handleProperty()};

REALmethodDefinition methods[] = {
    method<"EnableEvent">(EnableEvent),
    method<"formattedAddressFromDictionary(address as Dictionary) as NSAttributedStringVXR">(
        formattedAddressFromDictionary),
    method<"NewPersonWithVCardRepresentation(data as memoryblock) as ABPersonVXR">(NewPersonWithVCardRepresentation),
    method<"recordsMatchingSearchElement(search as ABSearchElementVXR) as ABRecordVXR()">(recordsMatchingSearchElement),
    method<"removeRecord(record as ABRecordVXR) as boolean">(forward<kRemoveRecord>),
    method<"addRecord(record as ABRecordVXR) as boolean">(forward<kAddRecord>),
    method<"addRecord(record as ABRecordVXR, byref error as NSErrorVXR) as boolean">(addRecord2),
    method<"removeRecord(record as ABRecordVXR, byref error as NSErrorVXR) as boolean">(removeRecord2),
    method<"groups as ABGroupVXR()">(forwardList<&ABAddressBook::groups, FillABGroupArray>),
    method<"people as ABPersonVXR()">(forwardList<&ABAddressBook::people, FillABPersonArray>),
    method<"setMe(moi as ABPersonVXR)">(setMe),
    method<"owner as ABPersonVXR">(owner),
    method<"save as boolean">(forward<kSave>),
    method<"save(byref error as NSErrorVXR) as boolean">(save2),
    method<"hasUnsavedChanges as boolean">(forward<&ABAddressBook::hasUnsavedChanges>),
    method<"defaultCountryCode as string">(forwardIfKnown<"defaultCountryCode", &ABAddressBook::defaultCountryCode>),
    method<"defaultNameOrdering as integer">(
        forwardIfKnown<"defaultNameOrdering", &ABAddressBook::defaultNameOrdering>),
    method<"recordClassFromUniqueId(uniqueid as string) as string">(recordClassFromUniqueId),
    method<"LocalizedPropertyOrLabel(propertyOrLabel as string) as string">(LocalizedPropertyOrLabel),
    method<"recordForUniqueId(uniqueid as string) as ABRecordVXR">(recordForUniqueId),
    method<"personForUniqueId(uniqueid as string) as ABPersonVXR">(personForUniqueId),
    method<"groupForUniqueId(uniqueid as string) as ABGroupVXR">(groupForUniqueId),
    method<"groupForName(name as string) as ABGroupVXR">(groupForName),
    method<"peopleForEmail(email as string) as ABPersonVXR()">(peopleForEmail),
};
static_assert(std::size(methods) == 24);

REALevent events[] = {
    {"DatabaseChanged(Externally as boolean, InsertedRecords() as string, UpdatedRecords() as string, "
     "DeletedRecords() as string)"},
};

constexpr std::size_t kOwnSharedMethodCount = 7;

using SharedMethods = std::array<REALmethodDefinition, kOwnSharedMethodCount + kStringConstantCount>;

SharedMethods sharedMethods = [] {
  SharedMethods rows{
      sharedMethod<"addressBook as ABAddressBookVXR">(addressBook),
      sharedMethod<"sharedAddressbook as ABAddressBookVXR">(sharedAddressbook),
      sharedMethod<"sharedAddressbookMT as ABAddressBookVXR">(sharedAddressbookMT),
      sharedMethod<"GotSharedAddressbook as boolean">(getGotSharedAddressbook),
      sharedMethod<"searchElementForPersonProperty(PropertyName as string, Label as string, Key as string, value as "
                   "variant, comparison as integer) as ABSearchElementVXR">(PersonSearchElementForProperty),
      sharedMethod<"searchElementForGroupProperty(PropertyName as string, Label as string, Key as string, value as "
                   "variant, comparison as integer) as ABSearchElementVXR">(GroupSearchElementForProperty),
      sharedMethod<"searchElementForConjunction(conjunction as integer, children() as ABSearchElementVXR) as "
                   "ABSearchElementVXR">(searchElementForConjunction),
  };
  std::ranges::copy(stringConstantMethods(), rows.begin() + kOwnSharedMethodCount);
  return rows;
}();
static_assert(std::tuple_size_v<SharedMethods> == 120);

}  // namespace

REALclassDefinition ABAddressBookVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABAddressBookVXR",
    .dataSize = 2 * sizeof(Word),
    .constructor = ABAddressBookConstructor,
    .destructor = ABAddressBookDestructor,
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
    .events = events,
    .eventCount = std::size(events),
    .constants = integerConstants.data(),
    .constantCount = std::size(integerConstants),
    .flags = kClassFlags,
    .sharedMethods = sharedMethods.data(),
    .sharedMethodCount = std::size(sharedMethods),
};
