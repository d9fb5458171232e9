#include "host/entries.h"
#include "platform/carbon/gestalt.h"
#include "platform/contacts/address_book.h"
#include "platform/foundation/cf_dictionary.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"
#include "tests/contacts/in_child.h"
#include "tests/objc/failing_threads.h"

namespace {

using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1"), person("Grace", "Hopper", "p2")};

constexpr const char* kShared[] = {"sharedAddressbook", "sharedAddressbookMT"};

// The host object that the family's registry has for the framework's shared book.
REALobject registered() {
  std::intptr_t registry = 0;
  if (Gestalt(0x56585269, &registry) != noErr) return nullptr;
  const void* key = ABAddressBook::sharedAddressBook().get();
  return static_cast<REALobject>(
      const_cast<void*>(CFDictionaryGetValue(reinterpret_cast<CFMutableDictionaryRef>(registry), key)));
}

long liveBooks() { return host::liveCounts()[kBook]; }

}  // namespace

TEST(SharedAddressbook, IsOneObjectInEachOrder) {
  for (const char* first : kShared) {
    for (const char* second : kShared) {
      // Each in a process of its own: the object stays for good.
      inChild([&] {
        const Host host{.contacts = kContacts};
        EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
        const Value book = host.shared(kBook, first);
        EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), true);
        const Sends sends("sharedAddressBook");
        EXPECT_EQ(host.shared(kBook, second), book) << first << ", " << second;
        EXPECT_EQ(sends.count(), 0);  // no worker either
        EXPECT_EQ(liveBooks(), 1);
      });
    }
  }
}

TEST(SharedAddressbook, IsOpenedOnAWorkerWhileTheHostGoesOn) {
  static int yields = 0;
  const Host host{.contacts = kContacts, .yield = [] { ++yields; }};
  const Sends sends("sharedAddressBook");
  const Value book = host.shared(kBook, "sharedAddressbookMT");
  EXPECT_EQ(sends.count(), 2);  // there, and again here
  EXPECT_GE(yields, 1);
  EXPECT_EQ(book.call("people").size(), 2U);
}

TEST(SharedAddressbook, MadeWhileTheWorkerRunsIsTheOnlyOne) {
  static Value made;
  const Host host{.contacts = kContacts, .yield = [] {
                    if (made.isNil()) made = host::callShared(kBook, "sharedAddressbook");
                  }};
  EXPECT_EQ(host.shared(kBook, "sharedAddressbookMT"), made);
  made = nullptr;
}

TEST(SharedAddressbook, IsAskedForAgainWhenItCouldNotBeHad) {
  const Host host{.contacts = kContacts, .yield = [] {}};
  const struct {
    const char* member;
    const char* selector;
    int raiseAt;
    long books;
  } cases[] = {{"addressBook", "addressBook", 1, 0},
               {kShared[0], "sharedAddressBook", 1, 0},
               {kShared[1], "sharedAddressBook", 2, 0},
               {kShared[1], "sharedAddressBook", 1, 1}};  // on the worker alone
  for (const auto& [member, selector, raiseAt, books] : cases) {
    host::failNewInstance(1);
    EXPECT_TRUE(host.shared(kBook, member).isNil());
    EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
    const Sends sends(selector, raiseAt);
    EXPECT_EQ(thrownBy([&, name = member] { host.shared(kBook, name); }), kRefused);
    EXPECT_EQ(liveBooks(), books);
  }
  EXPECT_EQ(bookOf(host).call("people").size(), 2U);
}

TEST(SharedAddressbook, IsOpenedWhereThereIsNoThreadToBeHad) {
  const Host host{.contacts = kContacts};
  threadsFail = true;
  EXPECT_EQ(host.shared(kBook, "sharedAddressbookMT").call("people").size(), 2U);
}

namespace {

ABAddressBook noBook(Class) { return nullptr; }

}  // namespace

TEST(SharedAddressbook, IsNilWhereTheFrameworkHasNone) {
  objc::ClassBuilder(Class("ABAddressBook"))
      .classMethod<&noBook>("sharedAddressBook")
      .classMethod<&noBook>("addressBook");
  const Host host{.contacts = kContacts};
  for (const char* shared : kShared) EXPECT_TRUE(host.shared(kBook, shared).isNil());
  EXPECT_EQ(liveBooks(), 0);
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), true);  // it has been asked
  for (const Value& empty : {host.make(kBook), host.shared(kBook, "addressBook")}) {
    EXPECT_EQ(empty.get("Handle"), 0);
    EXPECT_EQ(empty.call("people").size(), 0U);
  }
}

TEST(AddressBook, MadeByHostCodeSharesTheBook) {
  const Host host{.contacts = kContacts};
  Value first = host.make(kBook);
  EXPECT_EQ(registered(), first.object());
  const Value second = host.make(kBook);
  const Value shared = bookOf(host);
  for (const Value& other : {second, shared}) {
    EXPECT_NE(other, first);
    EXPECT_EQ(other.get("Handle"), first.get("Handle"));
    EXPECT_EQ(other.call("people").at(0), first.call("people").at(0));
  }
  // The last one to register is found, until any of them goes.
  EXPECT_EQ(registered(), shared.object());
  first = nullptr;
  EXPECT_EQ(registered(), nullptr);
  EXPECT_EQ(second.call("people").size(), 2U);
}

TEST(AddressBook, OfItsOwnIsNewAtEachCall) {
  const Host host{.contacts = kContacts};
  const Value first = host.shared(kBook, "addressBook");
  const Value second = host.shared(kBook, "addressBook");
  EXPECT_NE(first, second);
  EXPECT_NE(first.get("Handle"), second.get("Handle"));
  EXPECT_NE(first.call("people").at(0), second.call("people").at(0));
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
}

TEST(AddressBook, CannotBeConstructedTwice) {
  const Host host{.contacts = kContacts};
  const Value book = host.make(kBook);
  const Value handle = book.get("Handle");
  host::requireClass(kBook).definition->constructor(book.object());
  EXPECT_STREQ(host::takePendingException()->what(),
               "UnsupportedOperationException: Constructor called too often. Object is already initialized.");
  EXPECT_EQ(book.get("Handle"), handle);
  EXPECT_EQ(registered(), book.object());
}

TEST(AddressBook, IsEmptyWhenItsConstructorIsStopped) {
  const Host host{.without = {"RuntimeRaiseException"}};
  const Sends sends("sharedAddressBook", 1);
  const Value book = host.make(kBook);
  EXPECT_EQ(book.get("Handle"), 0);
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
}
