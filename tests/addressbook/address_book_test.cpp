#include "platform/contacts/address_book.h"
#include "host/classes.h"
#include "host/entries.h"
#include "host/objects.h"
#include "platform/foundation/exception.h"
#include "platform/objc/instrumentation.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

namespace {

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1"), person("Grace", "Hopper", "p2"),
                                  group("Work", "g1")};

constexpr const char* kBook = "ABAddressBookVXR";

// The next send of the selector raises.
std::string raisingSelector;

void raiseOn(const char* selector) {
  raisingSelector = selector;
  objc_setSendHook([](objc::Object*, objc::Selector sent) {
    if (sel_getName(sent) != raisingSelector) return;
    raisingSelector.clear();
    NSException::raise("Refused"_ns, "because"_ns);
  });
}

}  // namespace

TEST(SharedAddressbook, IsOneObject) {
  const Host host{.contacts = kContacts};
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
  const host::Value first = host.shared(kBook, "sharedAddressbook");
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), true);
  EXPECT_EQ(first.typeName(), kBook);
  EXPECT_EQ(host.shared(kBook, "sharedAddressbook"), first);
  EXPECT_EQ(host.shared(kBook, "sharedAddressbookMT"), first);
  EXPECT_EQ(host::liveCounts()[kBook], 1);
}

TEST(SharedAddressbook, IsOpenedOnAWorkerWhileTheHostGoesOn) {
  static int yields = 0;
  const Host host{.contacts = kContacts, .yield = [] { ++yields; }};
  const host::Value book = host.shared(kBook, "sharedAddressbookMT");
  EXPECT_GE(yields, 1);
  EXPECT_EQ(book.call("people").size(), 2U);
}

TEST(SharedAddressbook, MadeWhileTheWorkerRunsIsTheOnlyOne) {
  static host::Value made;
  const Host host{.contacts = kContacts, .yield = [] {
                    if (made.isNil()) made = host::callShared(kBook, "sharedAddressbook");
                  }};
  const host::Value book = host.shared(kBook, "sharedAddressbookMT");
  EXPECT_EQ(book, made);
  made = nullptr;
}

TEST(SharedAddressbook, IsNilAndAskedForAgainWhenItCannotBeHad) {
  const Host host{.contacts = kContacts};
  host::failNewInstance(1);
  EXPECT_TRUE(host.shared(kBook, "sharedAddressbook").isNil());
  raiseOn("sharedAddressBook");
  EXPECT_EQ(thrownBy([&] { host.shared(kBook, "sharedAddressbook"); }),
            "NSExceptionVXR: A Cocoa Refused was not handled: because");
  EXPECT_EQ(host::liveCounts()[kBook], 0);
  EXPECT_FALSE(host.shared(kBook, "sharedAddressbook").isNil());
}

TEST(SharedAddressbook, IsOpenedHereWhenTheWorkerCouldNot) {
  const Host host{.contacts = kContacts};
  raiseOn("sharedAddressBook");  // on the worker; here it answers
  EXPECT_EQ(thrownBy([&] { host.shared(kBook, "sharedAddressbookMT"); }),
            "NSExceptionVXR: A Cocoa Refused was not handled: because");
  EXPECT_EQ(host::liveCounts()[kBook], 1);
  EXPECT_EQ(host.shared(kBook, "sharedAddressbook").call("people").size(), 2U);
}

TEST(AddressBook, SaysWhyItsFolderCannotBeRead) {
  const Host host{};
  setenv("ADDRESSBOOK_FOLDER", "/dev/null", 1);
  const std::string thrown = thrownBy([&] { host.shared(kBook, "sharedAddressbook"); });
  EXPECT_NE(thrown.find("contacts folder /dev/null: "), std::string::npos) << thrown;
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
}

TEST(AddressBook, MadeByHostCodeSharesTheBook) {
  const Host host{.contacts = kContacts};
  const host::Value first = host.make(kBook);
  const host::Value second = host.make(kBook);
  EXPECT_NE(first, second);
  EXPECT_EQ(first.get("Handle"), second.get("Handle"));
  EXPECT_EQ(first.call("people").at(0), second.call("people").at(0));
}

TEST(AddressBook, OfItsOwnIsNewAtEachCall) {
  const Host host{.contacts = kContacts};
  const host::Value first = host.shared(kBook, "addressBook");
  const host::Value second = host.shared(kBook, "addressBook");
  EXPECT_NE(first, second);
  EXPECT_NE(first.get("Handle"), second.get("Handle"));
  EXPECT_EQ(host.shared(kBook, "GotSharedAddressbook"), false);
  EXPECT_EQ(first.call("people").size(), 2U);
}

TEST(AddressBook, CannotBeConstructedTwice) {
  const Host host{.contacts = kContacts};
  const host::Value book = host.make(kBook);
  const host::Value handle = book.get("Handle");
  host::requireClass(kBook).definition->constructor(book.object());
  EXPECT_STREQ(host::takePendingException()->what(),
               "UnsupportedOperationException: Constructor called too often. Object is already initialized.");
  EXPECT_EQ(book.get("Handle"), handle);
}

TEST(AddressBook, ListsEachPersonAsOneObject) {
  const Host host{.contacts = kContacts};
  const host::Value book = host.shared(kBook, "sharedAddressbook");
  const host::Value people = book.call("people");
  ASSERT_EQ(people.size(), 2U);
  EXPECT_EQ(people.at(0).call("uniqueId"), "p1:ABPerson");
  EXPECT_EQ(people.at(0).call("valueForProperty", "First"), "Ada");
  EXPECT_EQ(book.call("people").at(0), people.at(0));
  EXPECT_EQ(book.call("groups").at(0).typeName(), "ABGroupVXR");
}

TEST(AddressBook, AnswersWhatItHadWhenTheFrameworkRaises) {
  const Host host{.contacts = kContacts};
  const host::Value book = host.shared(kBook, "sharedAddressbook");
  raiseOn("people");
  EXPECT_EQ(thrownBy([&] { book.call("people"); }), "NSExceptionVXR: A Cocoa Refused was not handled: because");
  raiseOn("nextObject");
  EXPECT_EQ(thrownBy([&] { book.call("people"); }), "NSExceptionVXR: A Cocoa Refused was not handled: because");
  EXPECT_EQ(book.call("people").size(), 2U);
}

TEST(Records, AnswerNeutrallyWhenEmptyOrUnasked) {
  const Host host{.contacts = kContacts};
  const host::Value empty = host.make("ABRecordVXR");
  EXPECT_TRUE(empty.call("valueForProperty", "First").isNil());
  EXPECT_EQ(empty.call("uniqueId"), "");
  EXPECT_EQ(empty.call("isReadOnly"), false);
  EXPECT_EQ(empty.call("DisplayName"), "");

  const host::Value ada = host.shared(kBook, "sharedAddressbook").call("people").at(0);
  EXPECT_TRUE(ada.call("valueForProperty", "").isNil());
  EXPECT_TRUE(ada.call("valueForProperty", "Nickname").isNil());
  EXPECT_EQ(thrownBy([&] { ada.call("valueForProperty", 7); }),
            "host: ABRecordVXR.valueForProperty: argument 1 is Integer, declared string");
}

TEST(Records, ShowTheirNamesInTheUsersOrder) {
  const Host host{.contacts = {person("Ada", "Lovelace", "p1"), Card{"p2", "UID:p2\nFN:x\nN:Tolen;Mira;;Dr.;\n"},
                               Card{"p3", "UID:p3\nFN:\nN:;;;;\n"}, group("Work", "g1")}};
  const host::Value book = host.shared(kBook, "sharedAddressbook");
  const host::Value people = book.call("people");
  EXPECT_EQ(people.at(0).call("DisplayName"), "Ada Lovelace");
  EXPECT_EQ(people.at(1).call("DisplayName"), "Dr. Mira Tolen");
  EXPECT_EQ(people.at(2).call("DisplayName"), "?");
  EXPECT_EQ(book.call("groups").at(0).call("DisplayName"), "Work");
}
