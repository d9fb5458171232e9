#pragma once

#include "platform/contacts/address_book.h"
#include "tests/contacts/contacts_folder.h"

#include <cstddef>
#include <filesystem>
#include <string>

// What the sweeps do to a folder again and again.
namespace store_scenarios {

struct Scenario {
  const char* name;
  void (*edit)(ABAddressBook book);  // what is then saved
  bool isSlow = false;
};

inline constexpr std::size_t kCount = 5;
extern const Scenario kScenarios[kCount];

// Whether everything is to be tried, however long it takes.
bool isTorture();

// Temporary folders are made in memory from now on where that can be: the sweeps make thousands.
void useMemory();

// Six persons and a group, in place of what was there.
void fill(const std::filesystem::path& folder);

// As fill, and then a process was killed when it had just committed the scenario's save.
void fillUnfinished(const std::filesystem::path& folder, const Scenario& scenario);

// A process opens, edits and saves, and is killed before that call. faultsFromStart: already the opening may be the end
// of it. Whether it was killed.
bool killedAt(int at, void (*edit)(ABAddressBook), bool faultsFromStart);

void addLater(ABAddressBook book);

// Names, notes, pictures, groups and owner, without ids, which differ each time.
std::string stateOf(ABAddressBook book);
// What a process sees that opens the folder now. A failure when none can.
std::string stateFound();

}  // namespace store_scenarios
