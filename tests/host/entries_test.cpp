#include "host/entries.h"

#include "tests/host/entry.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

namespace {

TEST(Entries, CanBeTakenAndGivenBack) {
  Host host{.without = {"RuntimeUBound", "VarType"}, .plugin = false};
  EXPECT_EQ(host::resolver()("RuntimeUBound"), nullptr);
  EXPECT_EQ(host::resolver()("NoSuchService"), nullptr);
  auto* loadGlobal = entry<void*(void*, const char*)>("REALLoadGlobalMethod");
  EXPECT_EQ(loadGlobal(nullptr, "VarType(value As Variant) As Int32"), nullptr);
  host::options().without = {"Date"};
  EXPECT_NE(host::resolver()("RuntimeUBound"), nullptr);
  EXPECT_EQ(host::timesAsked("RuntimeUBound"), 2U);
  EXPECT_NE(loadGlobal(nullptr, "VarType(value As Variant) As Int32"), nullptr);
  EXPECT_EQ(entry<REALclassRef(const char*)>("pluginObjectType")("Date"), nullptr);
}

}  // namespace
