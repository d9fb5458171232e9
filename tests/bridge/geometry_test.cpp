#include "bridge/geometry.h"

#include "bridge/variants.h"
#include "frame/host_ref.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

TEST(Geometry, LiesInTheHostsObjects) {
  const Host host{};
  struct Case {
    NSValue value;
    std::string className;
    std::vector<std::pair<const char*, double>> fields;
  };
  const NSRect rect{{1.5F, -2}, {3, 4.25F}};
  for (const Case& given : std::vector<Case>{
           {NSValue::valueWithRect(rect), "NSRectVXR", {{"X", 1.5}, {"Y", -2}, {"Width", 3}, {"Height", 4.25}}},
           {NSValue::valueWithSize(rect.size), "NSSizeVXR", {{"Width", 3}, {"Height", 4.25}}},
           {NSValue::valueWithPoint(rect.origin), "NSPointVXR", {{"X", 1.5}, {"Y", -2}}},
           {NSValue::valueWithRange({7, 4294967295U}), "NSRangeVXR", {{"Location", 7}, {"Length", 4294967295.0}}},
       }) {
    const host::Value object = take(NewVariantFromNSObject(given.value));
    EXPECT_EQ(object.typeName(), given.className);
    for (const auto& [name, number] : given.fields) EXPECT_EQ(object.get(name).number(), number) << name;
    EXPECT_TRUE(GetVariantAsNSObject(object.object()).as<NSValue>().isEqual(given.value)) << given.className;
  }
  const float odd[] = {1, 2, 3};
  EXPECT_EQ(NewVariantFromNSObject(NSValue::valueWithBytes(odd, "{_Odd=fff}")), nullptr);
}

TEST(Geometry, IsNothingWithoutTheFamilysClasses) {
  const Host host{.foreignClasses = false};
  for (const NSValue value : {NSValue::valueWithRect({}), NSValue::valueWithSize({}), NSValue::valueWithPoint({}),
                              NSValue::valueWithRange({})}) {
    EXPECT_EQ(NewVariantFromNSObject(value), nullptr);
  }
}
