#include "host/entries.h"
#include "host/events.h"
#include "host/memory_blocks.h"
#include "platform/contacts/address_book.h"
#include "platform/foundation/notification.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"
#include "tests/contacts/in_child.h"

#include <chrono>
#include <thread>

namespace {

using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1"), person("Grace", "Hopper", "p2")};

constexpr const char* kEvent = "DatabaseChanged";

// What handlers were told since the test looked last.
std::vector<std::string> heard;

std::vector<std::string> heardNow() { return std::exchange(heard, {}); }

void listen(const Value&, std::span<const Value> arguments) {
  std::string text = static_cast<bool>(arguments[0]) ? "external" : "own";
  for (const Value& ids : arguments.subspan(1)) text += " " + shown(ids);
  heard.push_back(text);
}

// Changes the first person's note. Another book's object may save it as well: the book is one.
void change(const Value& book) {
  static int times = 0;
  book.call("people").at(0).call("setValue", std::to_string(++times), "Note");
  book.call("save");
}

// Idles as a host does, until a handler was called.
std::vector<std::string> heardWhileIdle() {
  for (int i = 0; i < 500 && heard.empty(); ++i) {
    host::idle();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return heardNow();
}

const std::vector<std::string> kFirstUpdated{"own [] ['p1:ABPerson'] []"};
const std::vector<std::string> kNothing;

}  // namespace

TEST(DatabaseChanged, IsToldOnceInEachOrderOfPreparations) {
  // C: the class's handler, N: construction, O: the object's handler, E: EnableEvent
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"CN", kFirstUpdated},
      {"CNE", kFirstUpdated},
      {"CNEE", kFirstUpdated},
      {"NOE", kFirstUpdated},
      {"NEOE", kFirstUpdated},
      {"NEO", kFirstUpdated},
      {"CNO", kFirstUpdated},
      {"NO", {}},  // not enabled
      {"NC", {}},  // the class's handler too late
      {"NE", {}},  // no handler
  };
  for (const auto& [order, expected] : cases) {
    // Handlers of a class stay: each in a process of its own.
    inChild([&, &order = order, &expected = expected] {
      const Host host{.contacts = kContacts};
      Value book;
      for (const char step : std::string_view(order)) {
        if (step == 'C') host::handleClassEvent(kBook, kEvent, listen);
        if (step == 'N') book = host.make(kBook);
        if (step == 'O') host::handleEvent(book, kEvent, listen);
        if (step == 'E') book.call("EnableEvent");
      }
      change(book);
      EXPECT_EQ(heardNow(), expected) << order;
    });
  }
}

TEST(DatabaseChanged, SaysWhatThisProcessSaved) {
  const Host host{.contacts = kContacts};
  // Of the shared book's changes, whatever book the object wraps.
  const Value other = host.shared(kBook, "addressBook");
  host::handleEvent(other, kEvent, listen);
  other.call("EnableEvent");
  const Value book = bookOf(host);
  const Value alan = host.make("ABPersonVXR", book);
  book.call("removeRecord", book.call("people").at(0));
  book.call("people").at(0).call("setValue", "x", "Note");
  book.call("save");
  EXPECT_EQ(heardNow(),
            std::vector<std::string>{"own ['" + alan.call("uniqueId").text() + "'] ['p2:ABPerson'] ['p1:ABPerson']"});
  book.call("save");
  EXPECT_EQ(heardNow(), kNothing);
}

TEST(DatabaseChanged, SaysWhatAnotherProcessSaved) {
  const Host host{.contacts = kContacts};
  host::handleClassEvent(kBook, kEvent, listen);
  const Value book = host.make(kBook);
  std::ofstream(host.folder() / "p3.vcf") << "BEGIN:VCARD\nUID:p3\nN:Turing;Alan\nEND:VCARD\n";
  EXPECT_EQ(heardWhileIdle(), std::vector<std::string>{"external ['p3:ABPerson'] [] []"});
  EXPECT_EQ(book.call("personForUniqueId", "p3:ABPerson").call("DisplayName"), "Alan Turing");
  std::filesystem::remove(host.folder() / "p3.vcf");
  // A plug-in that yields lets it through as well.
  const Value shared = host.shared(kBook, "sharedAddressbookMT");
  EXPECT_EQ(heardNow(), std::vector<std::string>{"external [] [] ['p3:ABPerson']"});
}

TEST(DatabaseChanged, HasEmptyListsForWhatTheFrameworkLeavesOut) {
  const Host host{.contacts = kContacts};
  host::handleClassEvent(kBook, kEvent, listen);
  const Value book = host.make(kBook);
  const auto center = NSNotificationCenter::defaultCenter();
  const NSString name = kABDatabaseChangedExternallyNotification;
  center.postNotification(name, ABAddressBook::addressBook(), nullptr);
  EXPECT_EQ(heardNow(), kNothing);
  center.postNotification(name, ABAddressBook::sharedAddressBook(), nullptr);
  EXPECT_EQ(heardNow(), std::vector<std::string>{"external [] [] []"});
}

namespace {

ABAddressBook sharedNow;

ABAddressBook sharedAtTheMoment(Class) { return sharedNow; }

}  // namespace

TEST(DatabaseChanged, EndsWithTheObjectThoughTheSharedBookIsAnother) {
  const Host host{.contacts = kContacts};
  host::handleClassEvent(kBook, kEvent, listen);
  objc::ClassBuilder(Class("ABAddressBook")).classMethod<&sharedAtTheMoment>("sharedAddressBook");
  const Value books[] = {host.shared(kBook, "addressBook"), host.shared(kBook, "addressBook")};
  const auto share = [&books](int index) {
    sharedNow = ABAddressBook(reinterpret_cast<objc::Object*>(books[index].get("Handle").integer()));
  };
  share(0);
  Value listening = host.make(kBook);
  share(1);
  listening = nullptr;
  share(0);
  NSNotificationCenter::defaultCenter().postNotification(kABDatabaseChangedNotification, sharedNow, nullptr);
  EXPECT_EQ(heardNow(), kNothing);
}

TEST(DatabaseChanged, MayDestroyTheObjectsThatAreTold) {
  static Value first;
  static Value second;
  const Host host{.contacts = kContacts};
  first = host.make(kBook);
  second = host.make(kBook);
  for (const Value& book : {first, second}) {
    host::handleEvent(book, kEvent, [](const Value&, std::span<const Value>) {
      heard.emplace_back("told");
      first = second = nullptr;
    });
    book.call("EnableEvent");
  }
  for (int i = 0; i < 2; ++i) change(host.make(kBook));
  EXPECT_EQ(heardNow().size(), 1U);
  EXPECT_EQ(host::liveCounts()[kBook], 0);
}

TEST(DatabaseChanged, MayUseAndChangeTheBook) {
  const Host host{.contacts = kContacts};
  const Value book = host.make(kBook);
  host::handleEvent(book, kEvent, [](const Value& self, std::span<const Value> arguments) {
    listen(self, arguments);
    self.call("EnableEvent");
    if (heard.size() == 3) return;
    self.call("people").at(1).call("setValue", static_cast<int>(heard.size()) == 1 ? "a" : "b", "Note");
    self.call("save");
  });
  book.call("EnableEvent");
  change(host.make(kBook));
  const std::string again = "own [] ['p2:ABPerson'] []";
  EXPECT_EQ(heardNow(), (std::vector<std::string>{kFirstUpdated[0], again, again}));
  EXPECT_EQ(book.call("hasUnsavedChanges"), false);
}

TEST(DatabaseChanged, LeavesWhatIsRaisedToTheSaver) {
  const Host host{.contacts = kContacts};
  Value book = host.make(kBook);
  const Value other = host.make(kBook);
  host::handleEvent(book, kEvent, [](const Value&, std::span<const Value>) {
    host::raise("OutOfBoundsException", "the handler's");
    throw *host::takePendingException();
  });
  host::handleEvent(other, kEvent, listen);
  for (const Value& told : {book, other}) told.call("EnableEvent");
  EXPECT_EQ(thrownBy([&] { change(book); }), "OutOfBoundsException: the handler's");
  EXPECT_EQ(heardNow(), kFirstUpdated);
  EXPECT_EQ(other.call("hasUnsavedChanges"), false);

  book = nullptr;
  {
    const Sends sends("userInfo", 1);
    EXPECT_EQ(thrownBy([&] { change(other); }), kRefused);
  }
  EXPECT_EQ(heardNow(), kNothing);
  EXPECT_EQ(other.call("hasUnsavedChanges"), false);
  book = host.make(kBook);
  host::handleEvent(book, kEvent, listen);
  const Sends sends("addObserver:selector:name:object:", 2);
  EXPECT_EQ(thrownBy([&] { book.call("EnableEvent"); }), kRefused);
}
