#include "host/entries.h"
#include "host/foreign_classes.h"
#include "host/loader.h"
#include "host/options.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/sweeps/sweep.h"

#include <gtest/gtest.h>

#include <filesystem>

// The plug-in as it is loaded, in a program that links no more of the platform than its host does.
namespace {

namespace fs = std::filesystem;

class MembersWithoutFramework : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(The, MembersWithoutFramework, testing::Values("AppKit", "AddressBook"),
                         [](const auto& tested) { return tested.param; });

}  // namespace

TEST_P(MembersWithoutFramework, LeaveNothingAndAnswerNoMoreThanThereIs) {
  const ContactsFolder folder;
  for (const Card& card : sweptCards()) folder.writeCard(card.uid + ".vcf", card.lines);
  const fs::path build = fs::read_symlink("/proc/self/exe").parent_path().parent_path();
  const ContactsFolder frameworks;
  for (const std::string name : {"Foundation", "Carbon", "AppKit", "AddressBook"}) {
    const std::string bundle = name + ".framework";
    if (name != GetParam()) fs::create_directory_symlink(build / "Frameworks" / bundle, frameworks.path() / bundle);
  }
  ASSERT_EQ(host::loadFrameworks(frameworks.path()).size(), 1U);
  setenv("ADDRESSBOOK_FOLDER", folder.path().c_str(), 1);
  setenv("TERM", "unknown", 1);
  setenv("PATH", "", 1);
  host::options().runtime = false;  // in a built application the plug-in opens the contacts framework by itself
  host::registerForeignClasses();
  host::loadPlugin(build / "Plugins" / "addressbook-plugin.so");
  ASSERT_EQ(host::pluginClasses().size(), 8U);

  const std::vector<Outcome> poor = outcomesOfAll();
  // Classes may come later; the functions and constants of the contacts framework have been missed by then. Its picker
  // is there anyway, books are empty, and whether it was asked for one is known.
  const bool hasContacts = host::loadFrameworks(build / "Frameworks").empty() && std::string("AppKit") == GetParam();
  std::vector<Outcome> rich = hasContacts ? outcomesOfAll() : std::vector<Outcome>(poor.size());
  for (std::size_t i = 0; i < poor.size() && !hasContacts; ++i) {
    for (const char* row : {"Available", "addressBook as", "GotSharedAddressbook"}) {
      if (callsOfAll()[i].is(row)) rich[i] = poor[i];
    }
  }
  expectPartOf(poor, rich, true);
}
