#include "platform/contacts/address_book.h"
#include "host/arrays.h"
#include "host/memory_blocks.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Ref;
using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1", {"EMAIL;TYPE=HOME:Ada@Example.org"}),
                                  person("Grace", "Hopper", "p2", {"EMAIL:grace@example.org", "EMAIL:ADA@example.ORG"}),
                                  group("work", "g1"),
                                  group("Work", "g2"),
                                  group("Work", "g3"),
                                  Card{"g4", "UID:g4\nX-ADDRESSBOOKSERVER-KIND:group\n"}};

constexpr const char* kBook = "ABAddressBookVXR";

}  // namespace

TEST(AddressBook, FindsRecordsOfTheirKindAlone) {
  const Host host{.contacts = kContacts};
  const Value book = host.shared(kBook, "sharedAddressbook");
  EXPECT_TRUE(book.call("personForUniqueId", "g1:ABGroup").isNil());
  EXPECT_TRUE(book.call("groupForUniqueId", "p1:ABPerson").isNil());
  EXPECT_TRUE(book.call("recordForUniqueId", "nobody").isNil());
  EXPECT_TRUE(book.call("groupForName", "WORK").isNil());
  EXPECT_TRUE(book.call("groupForName", "").isNil());  // one has no name
  EXPECT_EQ(book.call("recordForUniqueId", "p1:ABPerson"), book.call("people").at(0));
  EXPECT_EQ(book.call("peopleForEmail", "nobody@example.org").size(), 0U);
}

TEST(AddressBook, MakesPeopleOfVCardsWithoutABook) {
  const Host host{.contacts = kContacts};
  const Value card = host::memoryBlock("BEGIN:VCARD\nVERSION:3.0\nN:Turing;Alan\nEND:VCARD\n");
  for (const Value& book : {host.shared(kBook, "sharedAddressbook"), emptyInstance(kBook)}) {
    const Value alan = book.call("NewPersonWithVCardRepresentation", card);
    EXPECT_EQ(alan.call("DisplayName"), "Alan Turing");
    EXPECT_TRUE(book.call("recordForUniqueId", alan.call("uniqueId")).isNil());
    EXPECT_TRUE(book.call("NewPersonWithVCardRepresentation", nullptr).isNil());
    EXPECT_TRUE(book.call("NewPersonWithVCardRepresentation", host::memoryBlock("no card")).isNil());
    EXPECT_EQ(thrownBy([&] {
                const Sends sends("dataWithBytes:length:", 1);
                book.call("NewPersonWithVCardRepresentation", card);
              }),
              kRefused);
  }
}

TEST(AddressBook, TranslatesLabelsWithoutABook) {
  const Host host{};
  const Value book = emptyInstance(kBook);
  EXPECT_EQ(book.call("LocalizedPropertyOrLabel", "_$!<HomeFAX>!$_"), "home fax");
  EXPECT_EQ(book.call("LocalizedPropertyOrLabel", "boat"), "boat");
  EXPECT_EQ(book.call("LocalizedPropertyOrLabel", ""), "");
}

TEST(AddressBook, ForgetsItsOwnerWhenToldNobody) {
  const Host host{.contacts = kContacts};
  const Value book = host.shared(kBook, "sharedAddressbook");
  for (const Value& nobody : {Value(), emptyInstance("ABPersonVXR")}) {
    book.call("setMe", book.call("people").at(1));
    EXPECT_EQ(told(book.call("owner")), "p2:ABPerson");
    book.call("setMe", nobody);
    EXPECT_TRUE(book.call("owner").isNil());
  }
}

namespace {

// One way to a by-reference error: a call that fails with an error object, or not.
struct Reporting {
  const char* member;
  const char* selector;
  const char* fallback;
};

constexpr Reporting kReporting[] = {{"addRecord", "addRecord:error:", "addRecord:"},
                                    {"removeRecord", "removeRecord:error:", "removeRecord:"},
                                    {"save", "saveAndReturnError:", "save"}};

bool takesRecord(const Reporting& reporting) { return reporting.member != std::string("save"); }

Value callReporting(const Value& book, const Reporting& reporting, const Value& record, Value& error) {
  return takesRecord(reporting) ? book.call(reporting.member, record, Ref(error))
                                : book.call(reporting.member, Ref(error));
}

// An error left from an earlier call.
Value someError(const Value& book) {
  Value error;
  book.call("removeRecord", host::newObject("ABPersonVXR"), Ref(error));
  EXPECT_EQ(error.get("Code"), host::constant(kBook, "ABRemoveRecordsError"));
  return error;
}

}  // namespace

TEST(ByReferenceErrors, AreDroppedOnEachPathWithoutOne) {
  const Host host{.contacts = kContacts};
  const Value book = host.shared(kBook, "sharedAddressbook");
  const Value ada = book.call("people").at(0);
  for (const Reporting& reporting : kReporting) {
    SCOPED_TRACE(reporting.member);
    Value error = someError(book);
    EXPECT_EQ(callReporting(book, reporting, ada, error), true);
    EXPECT_TRUE(error.isNil());
    error = someError(book);
    EXPECT_EQ(callReporting(emptyInstance(kBook), reporting, ada, error), false);
    EXPECT_TRUE(error.isNil());
    for (const Value& missing : {Value(), emptyInstance("ABRecordVXR")}) {
      if (!takesRecord(reporting)) break;
      error = someError(book);
      EXPECT_EQ(callReporting(book, reporting, missing, error), false);
      EXPECT_TRUE(error.isNil());
    }
    if (takesRecord(reporting)) book.call("addRecord", ada);
    error = someError(book);
    EXPECT_EQ(thrownBy([&] {
                const Sends sends(reporting.selector, 1);
                callReporting(book, reporting, ada, error);
              }),
              kRefused);
  }
}

TEST(ByReferenceErrors, TakeTheFallbackWhereTheFrameworkIsOld) {
  const Host host{.contacts = kContacts,
                  .withoutSelectors = {
                      "addRecord:error:", "removeRecord:error:", "saveAndReturnError:", "setValue:forProperty:error:"}};
  const Value book = host.shared(kBook, "sharedAddressbook");
  const Value ada = book.call("people").at(0);
  Value error = host.make("NSErrorVXR");
  EXPECT_EQ(ada.call("setValue", "Augusta", "First", Ref(error)), true);
  EXPECT_TRUE(error.isNil());
  for (const Reporting& reporting : kReporting) {
    const Sends sends(reporting.fallback);
    error = host.make("NSErrorVXR");
    EXPECT_EQ(callReporting(book, reporting, ada, error), true) << reporting.member;
    EXPECT_TRUE(error.isNil());
    EXPECT_EQ(sends.count(), 1);
  }
  error = host.make("NSErrorVXR");
  EXPECT_EQ(book.call("removeRecord", host.make("ABPersonVXR"), Ref(error)), false);
  EXPECT_TRUE(error.isNil());
}

TEST(ByReferenceErrors, SayWhatFailed) {
  const Host host{.contacts = kContacts};
  const Value book = host.shared(kBook, "sharedAddressbook");
  const Value other = host.shared(kBook, "addressBook");
  Value error;
  EXPECT_EQ(book.call("addRecord", other.call("people").at(0), Ref(error)), false);
  EXPECT_EQ(error.get("Code"), host::constant(kBook, "ABAddRecordsError"));
  EXPECT_EQ(error.get("Domain"), host.shared(kBook, "ABAddressBookErrorDomain"));
  EXPECT_NE(error.get("LocalizedDescription"), "");

  Value second;
  EXPECT_EQ(book.call("people").at(0).call("setValue", 7, "NoSuchProperty", Ref(second)), false);
  EXPECT_EQ(second.get("Code"), host::constant(kBook, "ABPropertyUnsupportedBySourceError"));
  EXPECT_NE(second, error);
}

namespace {

// A framework that reports the same error each time.
NSError sameError;

bool failAgain(ABRecord, NSObject, NSString, NSError* error) {
  *error = sameError;
  return false;
}

}  // namespace

TEST(ByReferenceErrors, SeenTwiceAreOneHostObject) {
  objc::ClassBuilder(Class("ABRecord")).method<&failAgain>("setValue:forProperty:error:");
  const Host host{.contacts = kContacts};
  const Value ada = host.shared(kBook, "sharedAddressbook").call("people").at(0);
  sameError = NSError::errorWithDomain("Domain"_ns, 7, nullptr);
  Value first;
  Value second;
  EXPECT_EQ(ada.call("setValue", "x", "First", Ref(first)), false);
  EXPECT_EQ(ada.call("setValue", "x", "First", Ref(second)), false);
  EXPECT_EQ(first, second);
  EXPECT_EQ(first.get("Code"), 7);
  EXPECT_EQ(host::liveCounts()["NSErrorVXR"], 1);
}
