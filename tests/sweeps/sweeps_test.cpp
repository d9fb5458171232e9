#include "bridge/variants.h"
#include "frame/host_interface.h"
#include "host/entries.h"
#include "host/error.h"
#include "host/events.h"
#include "host/options.h"
#include "platform/appkit/workspace.h"
#include "platform/foundation/log.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/instrumentation.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"
#include "tests/sweeps/sweep.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

// Stands before the plug-in's own; the linker's option "wrap" names them.
#define ALLOCATE_CLEAR_MEMORY "_Z19AllocateClearMemory" SIZE_LETTER
#if defined(__i386__)
#define SIZE_LETTER "x"
#else
#define SIZE_LETTER "l"
#endif
void* allocateClearMemory(std::int64_t size) __asm__("__real_" ALLOCATE_CLEAR_MEMORY);
void* failingAllocateClearMemory(std::int64_t size) __asm__("__wrap_" ALLOCATE_CLEAR_MEMORY);

static int allocationsToFailure = 0;

void* failingAllocateClearMemory(std::int64_t size) {
  if (allocationsToFailure > 0 && --allocationsToFailure == 0) return nullptr;
  return allocateClearMemory(size);
}

namespace {

bool openNothing(NSWorkspace, NSURL) { return true; }

// No windows, and no disk where there is memory to hold the cards.
struct Surroundings {
  Surroundings() {
    setenv("TERM", "unknown", 1);
    if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 1);
  }
};

// A host without logs and programs, and with host code for the book's event.
struct Sweeping : Surroundings {
  explicit Sweeping(const std::vector<std::string>& without = {})
      : host{.contacts = sweptCards(), .without = without, .yield = [] {}} {
    NSSetLogHook([](NSString) {});
    objc::ClassBuilder(Class("NSWorkspace")).method<&openNothing>("openURL:");
    host::handleClassEvent("ABAddressBookVXR", "DatabaseChanged", [](const auto&...) {});
  }

  Host host;
};

// Entries that a host can't be without: nothing would be given back, or no class be there. All else it may lack.
std::vector<std::string> namesToMiss() {
  constexpr std::array kNeeded{"REALLockObject",   "REALUnlockObject",        "REALLockString",
                               "REALUnlockString", "PluginDisposeStringData", "PluginRegisterClass"};
  std::vector<std::string> names = host::entryNames();
  std::erase_if(names, [&](const std::string& name) { return std::ranges::count(kNeeded, name) != 0; });
  for (const char* name :
       {"VarType", "LenB", "Date", "Dictionary", "FolderItem", "NSErrorVXR", "NSImageVXR", "NSAttributedStringVXR"}) {
    names.emplace_back(name);
  }
  return names;
}

// A letter or digit for each that a name of a test can't have.
std::string testName(std::string name) {
  std::ranges::replace_if(
      name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
  return name;
}

const Failure kAllocationFails{"allocation", [](int nth) { allocationsToFailure = nth; },
                               [] { return std::exchange(allocationsToFailure, 0) == 0; }};

// What no member answers, there and back, as the number of its entries; none on a host that can't have it.
std::ptrdiff_t entriesCrossed() {
  try {
    const host::Value there = dictionaryOfEveryKind();
    const host::Value back = take(NewVariantFromNSObject(GetVariantAsNSObject(there.object())));
    host::takePendingException();  // of a Dictionary that is asked for what it doesn't have
    return std::ranges::count(shown(back), '=');
  } catch (const host::Error&) {
    return 0;
  }
}

class Sweeps : public testing::TestWithParam<const Failure*> {};
INSTANTIATE_TEST_SUITE_P(Of, Sweeps,
                         testing::Values(&kNewInstanceFails, &kMemoryBlockFails, &kAllocationFails, &kSendRaises,
                                         &kSendThrows),
                         [](const auto& tested) { return testName(tested.param->name); });

class MembersWithout : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(TheHosts, MembersWithout, testing::ValuesIn(namesToMiss()),
                         [](const auto& tested) { return tested.param; });

class MembersWithoutSelector : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(TheFrameworks, MembersWithoutSelector,
                         testing::Values("addRecord:error:", "callStackSymbols", "defaultCountryCode",
                                         "defaultNameOrdering", "isReadOnly", "recordClassFromUniqueId:",
                                         "removeRecord:error:", "saveAndReturnError:", "setValue:forProperty:error:"),
                         [](const auto& tested) { return testName(tested.param); });

}  // namespace

TEST_P(Sweeps, LeaveNothingAndAnswerNoMoreThanThereIs) {
  const Sweeping sweeping;
  sweep(*GetParam());
}

TEST_P(MembersWithout, LeaveNothingAndAnswerNoMoreThanThereIs) {
  const Sweeping sweeping({GetParam()});
  const std::vector<Outcome> poor = outcomesOfAll();
  const std::ptrdiff_t entries = entriesCrossed();
  host::options().without.clear();
  expectPartOf(poor, outcomesOfAll(), true);
  EXPECT_LE(entries, entriesCrossed());
}

TEST_P(MembersWithoutSelector, DoWithoutIt) {
  const Sweeping sweeping;
  const std::vector<Outcome> rich = outcomesOfAll();
  objc_hideSelector(GetParam().c_str());
  expectPartOf(outcomesOfAll(), rich);
}

TEST(Members, AnswerAlikeToHostsOfAllVersions) {
  const Sweeping sweeping({"REALGetStringCFString"});  // as old ones, whose strings are read in place
  outcomesOfAll();
  const std::vector<Outcome> newest = outcomesOfAll();
  for (const double version : {0.0, 2011.0, 2012.0, 2013.0}) {
    rbversion_rbversion = version;
    const std::vector<Outcome> outcomes = outcomesOfAll();
    expectPartOf(outcomes, newest);
    expectPartOf(newest, outcomes);
  }
}
