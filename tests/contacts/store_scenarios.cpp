#include "tests/contacts/store_scenarios.h"

#include "tests/contacts/book_test.h"
#include "tests/contacts/file_faults.h"
#include "tests/contacts/in_child.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace store_scenarios {
namespace {

namespace fs = std::filesystem;

void add(ABAddressBook book, const char* last) {
  EXPECT_TRUE(newPerson(book)->setValue(NSString::stringWithUTF8(last), kABLastNameProperty));
}

void addOne(ABAddressBook book) { add(book, "Added"); }

void changeThree(ABAddressBook book) {
  for (const char* uid : {"p1", "p2", "p3"}) EXPECT_TRUE(personIn(book, uid).setValue("changed"_ns, kABNoteProperty));
}

void removeTwoAndAddTwo(ABAddressBook book) {
  EXPECT_TRUE(book.removeRecord(personIn(book, "p4")));
  EXPECT_TRUE(book.removeRecord(personIn(book, "p5")));
  add(book, "Added");
  add(book, "Also");
}

void addGroupAndOwner(ABAddressBook book) {
  const auto group = Retained<ABGroup>::adopt(ABGroup::alloc().initWithAddressBook(book));
  EXPECT_TRUE(group->setValue("New"_ns, kABGroupNameProperty));
  EXPECT_TRUE(group->addMember(personIn(book, "p1")));
  EXPECT_TRUE(group->addMember(personIn(book, "p6")));
  book.setMe(personIn(book, "p2"));
}

void setPicture(ABAddressBook book) {
  const std::string bytes = "GIF89a" + std::string(std::size_t{1} << 20, 'x');
  EXPECT_TRUE(personIn(book, "p1").setImageData(NSData::dataWithBytes(bytes.data(), bytes.size())));
}

std::string joined(std::vector<std::string> lines) {
  std::ranges::sort(lines);
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

std::string nameOf(ABRecord record) { return shown(record, "Last"); }

}  // namespace

const Scenario kScenarios[kCount] = {
    {"add one", addOne},
    {"change three", changeThree},
    {"remove two and add two", removeTwoAndAddTwo},
    {"add a group and set the owner", addGroupAndOwner},
    {"set a picture of 1 MB", setPicture, true},
};

bool isTorture() { return std::getenv("TORTURE") != nullptr; }

void useMemory() {
  if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 1);
}

void fill(const fs::path& folder) {
  fs::remove_all(folder);
  fs::create_directory(folder);
  for (const char digit : std::string("123456")) {
    std::ofstream(folder / (std::string("p") + digit + ".vcf"))
        << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:p" << digit << "\r\nN:Person " << digit
        << "\r\nX-KEPT:1\r\nEND:VCARD\r\n";
  }
  std::ofstream(folder / "g.vcf")
      << "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:g\r\nN:Group\r\nX-ADDRESSBOOKSERVER-KIND:group\r\n"
         "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:p1\r\n"
         "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:p4\r\nEND:VCARD\r\n";
}

void fillUnfinished(const fs::path& folder, const Scenario& scenario) {
  fill(folder);
  for (int at = 0; !fs::exists(folder / ".addressbook/journal"); ++at) {
    fill(folder);
    const int status = statusInChild([&] {
      const ABAddressBook book = ABAddressBook::addressBook();
      scenario.edit(book);
      file_faults::start(file_faults::Fault{file_faults::Fault::Effect::kKill, 0, false, at});
      book.save();
    });
    ASSERT_NE(status, 0) << scenario.name << " leaves no journal wherever it is killed";
  }
}

bool killedAt(int at, void (*edit)(ABAddressBook), bool faultsFromStart) {
  const auto [status, answer] = answerOfChild([&] {
    const file_faults::Fault fault{file_faults::Fault::Effect::kKill, 0, false, at};
    if (faultsFromStart) file_faults::start(fault);
    const ABAddressBook book = ABAddressBook::addressBook();
    edit(book);
    if (!faultsFromStart) file_faults::start(fault);
    const bool isSaved = book.save();
    file_faults::stop();
    return std::string(isSaved ? "saved" : "failed");
  });
  const bool isKilled = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  EXPECT_EQ(answer, isKilled ? "" : "saved");
  return isKilled;
}

void addLater(ABAddressBook book) { add(book, "Later"); }

std::string stateOf(ABAddressBook book) {
  std::vector<std::string> lines;
  for (const ABPerson one : each(book.people())) {
    const NSData picture = one.imageData();
    lines.push_back(nameOf(one) + ", " + shown(one, "Note") + ", " +
                    (picture ? std::to_string(picture.length()) : std::string("no")) + " bytes");
  }
  for (const ABGroup group : each<ABGroup>(book.groups())) {
    std::vector<std::string> members;
    for (const ABRecord member : each<ABRecord>(group.members())) members.push_back(nameOf(member));
    lines.push_back("group " + shown(group, "GroupName") + ":\n" + joined(std::move(members)));
  }
  if (const ABPerson me = book.me()) lines.push_back("owner " + nameOf(me));
  return joined(std::move(lines));
}

std::string stateFound() {
  auto [status, state] = answerOfChild([] { return stateOf(ABAddressBook::addressBook()); });
  EXPECT_EQ(status, 0);
  return state;
}

}  // namespace store_scenarios
