#include "addressbook/observer.h"

#include "addressbook/class_tables.h"
#include "bridge/exceptions.h"
#include "bridge/strings.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/contacts/address_book.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/notification.h"
#include "platform/foundation/object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

namespace {

// The second word of an address book's data block: its observer, owned.
constexpr std::size_t kObserverWord = 1;

using Handler = void(REALobject, bool externally, REALstringArray inserted, REALstringArray updated,
                     REALstringArray deleted);

Handler* handlerOf(REALobject hostObject) {
  return reinterpret_cast<Handler*>(REALGetEventInstance(hostObject, ABAddressBookVXR.events));
}

HostRef<REALstringArray> hostStrings(NSArray strings) {
  auto array = adoptHost(REALCreateArrayString(-1));
  FillStringArray(array.get(), strings);
  return array;
}

// Calls the object's handler, if it has one, with the ids of the records that changed.
void CallEvent(REALobject hostObject, bool externally, NSDictionary userInfo) {
  if (hostObject == nullptr) return;
  Handler* handler = handlerOf(hostObject);
  if (handler == nullptr) return;
  const auto inserted = userInfo.objectForKey(kABInsertedRecords).as<NSArray>();
  const auto updated = userInfo.objectForKey(kABUpdatedRecords).as<NSArray>();
  const auto deleted = userInfo.objectForKey(kABDeletedRecords).as<NSArray>();
  const auto insertedIds = hostStrings(inserted);
  const auto updatedIds = hostStrings(updated);
  const auto deletedIds = hostStrings(deleted);
  const auto kept = HostRef<REALobject>::share(hostObject);
  handler(hostObject, externally, insertedIds.get(), updatedIds.get(), deletedIds.get());
}

// The class AddressbookObserverVXR.
struct Observer : objc::Object {
  REALobject target = nullptr;  // not counted: the host object owns its observer
  ABAddressBook sender;         // whose notifications it gets, not retained

  void databaseChanged(NSNotification notification) {
    guard([&] { CallEvent(target, false, notification.userInfo()); });
  }
  void databaseChangedExternally(NSNotification notification) {
    guard([&] { CallEvent(target, true, notification.userInfo()); });
  }
};

Class observerClass() {
  static const Class defined =
      objc::ClassBuilder::define<Observer>("AddressbookObserverVXR", "NSObject")
          .method<&Observer::databaseChanged>("DatabaseChangedNotification:")
          .method<&Observer::databaseChangedExternally>("DatabaseChangedExternallyNotification:")
          .built();
  return defined;
}

NSObject observerOf(REALobject hostObject) {
  return NSObject(reinterpret_cast<objc::Object*>(dataBlock(hostObject)[kObserverWord]));
}

Observer& implementationOf(NSObject observer) { return *static_cast<Observer*>(observer.get()); }

void setObserver(REALobject hostObject, NSObject observer) {
  dataBlock(hostObject)[kObserverWord] = reinterpret_cast<Word>(observer.get());
}

}  // namespace

bool handlesDatabaseChanged(REALobject hostObject) { return handlerOf(hostObject) != nullptr; }

void InstallEvent(REALobject hostObject) {
  // Without the framework there is nothing to subscribe to.
  if (observerOf(hostObject) || !"ABAddressBook"_class) return;
  auto observer = send<NSObject>(alloc<NSObject>(observerClass()), "init"_sel);
  if (!observer) return;
  setObserver(hostObject, observer);
  implementationOf(observer).target = hostObject;
  auto center = NSNotificationCenter::defaultCenter();
  auto sender = implementationOf(observer).sender = ABAddressBook::sharedAddressBook();
  center.addObserver(observer, "DatabaseChangedNotification:"_sel, kABDatabaseChangedNotification, sender);
  center.addObserver(observer, "DatabaseChangedExternallyNotification:"_sel, kABDatabaseChangedExternallyNotification,
                     sender);
}

void removeEvent(REALobject hostObject) {
  NSObject observer = observerOf(hostObject);
  if (!observer) return;
  // From here on nothing is delivered, even if the framework should fail to let go of the observer.
  implementationOf(observer).target = nullptr;
  auto center = NSNotificationCenter::defaultCenter();
  auto sender = implementationOf(observer).sender;
  center.removeObserver(observer, kABDatabaseChangedNotification, sender);
  center.removeObserver(observer, kABDatabaseChangedExternallyNotification, sender);
  Retained<NSObject>::adopt(observer);
  setObserver(hostObject, nullptr);
}
