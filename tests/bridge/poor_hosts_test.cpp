#include "bridge/variants.h"

#include "host/arrays.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/entries.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

// The entries of a host that can't be without them: nothing would be given back, or no class be there.
std::vector<std::string> entriesToMiss() {
  constexpr std::array kNeeded{"REALLockObject",   "REALUnlockObject",        "REALLockString",
                               "REALUnlockString", "PluginDisposeStringData", "PluginRegisterClass"};
  std::vector<std::string> names = host::entryNames();
  std::erase_if(names, [&](const std::string& name) { return std::ranges::count(kNeeded, name) != 0; });
  return names;
}

class PoorHosts : public ::testing::TestWithParam<std::string> {};

host::Value everyKind() {
  const host::Value date = host::date(2012, 7, 14, 9, 5, 7);
  return host::dictionary(
      {{"scalars", host::objectArray({1, std::int64_t{1} << 40, 2.5F, 2.25, true, "text", nullptr})},
       {"typed", host::objectArray({host::array(host::ElementType::int32, {1, 2}), host::stringArray({"a", "", "b"}),
                                    host::array(host::ElementType::boolean, {true, false}),
                                    host::array(host::ElementType::date, {date, nullptr})})},
       {"objects", host::objectArray({date, host::memoryBlock("abc"), host::folderItem("/"),
                                      host::dictionary({{"in", host::dictionary({})}})})}});
}

// Without numbers and texts, which may be missing: how many values there are.
std::size_t valuesIn(const std::string& text) { return 1 + static_cast<std::size_t>(std::ranges::count(text, ' ')); }

}  // namespace

TEST_P(PoorHosts, LeaveNothingAndGiveNoMoreThanRichOnes) {
  const Host host{.without = {GetParam()}};
  const host::Value value = everyKind();
  const host::Value back = take(NewVariantFromNSObject(GetVariantAsNSObject(value.object())));
  host::takePendingException();  // of a Dictionary that is asked for what it doesn't have
  EXPECT_LE(valuesIn(shown(back)), valuesIn(shown(value)));
}

INSTANTIATE_TEST_SUITE_P(Without, PoorHosts, ::testing::ValuesIn(entriesToMiss()),
                         [](const auto& entry) { return entry.param; });
