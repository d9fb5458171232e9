#include "platform/contacts/address_book.h"
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

}  // namespace

TEST(AddressBook, FindsRecordsOfTheirKindAlone) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  EXPECT_TRUE(book.call("personForUniqueId", "g1:ABGroup").isNil());
  EXPECT_TRUE(book.call("groupForUniqueId", "p1:ABPerson").isNil());
  EXPECT_TRUE(book.call("recordForUniqueId", "nobody").isNil());
  EXPECT_TRUE(book.call("groupForName", "WORK").isNil());
  EXPECT_TRUE(book.call("groupForName", "").isNil());  // one has no name
  EXPECT_EQ(book.call("recordForUniqueId", "p1:ABPerson"), book.call("people").at(0));
  EXPECT_EQ(book.call("peopleForEmail", "nobody@example.org").size(), 0U);
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
  const Value book = bookOf(host);
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

// What the call answers, after an error left from an earlier one; Nil in its place is an error that is still there.
Value callReporting(const Value& book, const Reporting& reporting, const Value& record) {
  Value error = host::newObject("NSErrorVXR");
  const bool takesRecord = reporting.member != std::string("save");
  const Value answer =
      takesRecord ? book.call(reporting.member, record, Ref(error)) : book.call(reporting.member, Ref(error));
  return error.isNil() ? answer : Value();
}

}  // namespace

TEST(ByReferenceErrors, AreDroppedOnEachPathWithoutOne) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  for (const Reporting& reporting : kReporting) {
    SCOPED_TRACE(reporting.member);
    const Value ada = host.make("ABPersonVXR", book);
    EXPECT_EQ(callReporting(book, reporting, ada), true);
    EXPECT_EQ(callReporting(emptyInstance(kBook), reporting, ada), false);
    if (reporting.member != std::string("save")) {
      for (const Value& missing : {Value(), emptyInstance("ABRecordVXR")}) {
        EXPECT_EQ(callReporting(book, reporting, missing), false);
      }
    }
    const Sends sends(reporting.selector, 1);
    EXPECT_EQ(thrownBy([&] { callReporting(book, reporting, ada); }), kRefused);
  }
}

TEST(ByReferenceErrors, TakeTheFallbackWhereTheFrameworkIsOld) {
  const Host host{.contacts = kContacts,
                  .withoutSelectors = {
                      "addRecord:error:", "removeRecord:error:", "saveAndReturnError:", "setValue:forProperty:error:"}};
  const Value book = bookOf(host);
  const Value ada = adaOf(host);
  Value error = host.make("NSErrorVXR");
  EXPECT_EQ(ada.call("setValue", "Augusta", "First", Ref(error)), true);
  EXPECT_TRUE(error.isNil());
  for (const Reporting& reporting : kReporting) {
    const Sends sends(reporting.fallback);
    EXPECT_EQ(callReporting(book, reporting, ada), true) << reporting.member;
    EXPECT_EQ(sends.count(), 1);
  }
  EXPECT_EQ(callReporting(book, kReporting[1], host.make("ABPersonVXR")), false);
}

namespace {

// A framework that reports the same error each time.
NSError sameError;

bool failAgain(ABRecord, NSObject, NSString, NSError* error) {
  *error = sameError;
  return false;
}

}  // namespace

TEST(ByReferenceErrors, SayWhatFailed) {
  const Host host{.contacts = kContacts};
  const Value book = bookOf(host);
  const Value ada = adaOf(host);
  Value error;
  EXPECT_EQ(book.call("addRecord", host.shared(kBook, "addressBook").call("people").at(0), Ref(error)), false);
  EXPECT_EQ(error.get("Code"), host::constant(kBook, "ABAddRecordsError"));
  EXPECT_EQ(error.get("Domain"), host.shared(kBook, "ABAddressBookErrorDomain"));
  EXPECT_NE(error.get("LocalizedDescription"), "");
  EXPECT_EQ(book.call("removeRecord", host.make("ABPersonVXR"), Ref(error)), false);
  EXPECT_EQ(error.get("Code"), host::constant(kBook, "ABRemoveRecordsError"));
  const Value other = error;
  EXPECT_EQ(ada.call("setValue", 7, "NoSuchProperty", Ref(error)), false);
  EXPECT_EQ(error.get("Code"), host::constant(kBook, "ABPropertyUnsupportedBySourceError"));
  EXPECT_NE(error, other);

  // An error that is seen twice is one host object.
  objc::ClassBuilder(Class("ABRecord")).method<&failAgain>("setValue:forProperty:error:");
  sameError = NSError::errorWithDomain("Domain"_ns, 7, nullptr);
  Value first;
  Value second;
  for (Value* reported : {&first, &second}) EXPECT_EQ(ada.call("setValue", "x", "First", Ref(*reported)), false);
  EXPECT_EQ(first, second);
  EXPECT_EQ(first.get("Code"), 7);
}
