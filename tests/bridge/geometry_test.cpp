#include "bridge/geometry.h"

#include "bridge/variants.h"
#include "frame/host_ref.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<double> fields(const host::Value& object, const std::vector<const char*>& names) {
  std::vector<double> result;
  for (const char* name : names) result.push_back(object.get(name).number());
  return result;
}

// What comes back from the host object, as an NSValue.
NSValue valueOf(const host::Value& object) { return GetVariantAsNSObject(object.object()).as<NSValue>(); }

struct Odd {
  float first, second, third;
};

}  // namespace

TEST(Geometry, LiesInTheHostsObjects) {
  const Host host{};
  const NSRect rect{{1.5F, -2}, {3, 4.25F}};
  const auto rectObject = take(NewVariantFromNSObject(NSValue::valueWithRect(rect)));
  EXPECT_EQ(rectObject.typeName(), "NSRectVXR");
  EXPECT_EQ(fields(rectObject, {"X", "Y", "Width", "Height"}), (std::vector<double>{1.5, -2, 3, 4.25}));
  EXPECT_EQ(valueOf(rectObject).rectValue(), rect);

  const auto sizeObject = take(NewVariantFromNSObject(NSValue::valueWithSize(rect.size)));
  EXPECT_EQ(sizeObject.typeName(), "NSSizeVXR");
  EXPECT_EQ(fields(sizeObject, {"Width", "Height"}), (std::vector<double>{3, 4.25}));
  EXPECT_EQ(valueOf(sizeObject).sizeValue(), rect.size);

  const auto pointObject = take(NewVariantFromNSObject(NSValue::valueWithPoint(rect.origin)));
  EXPECT_EQ(pointObject.typeName(), "NSPointVXR");
  EXPECT_EQ(fields(pointObject, {"X", "Y"}), (std::vector<double>{1.5, -2}));
  EXPECT_EQ(valueOf(pointObject).pointValue(), rect.origin);

  const auto rangeObject = take(NewVariantFromNSObject(NSValue::valueWithRange(NSMakeRange(7, 4294967295U))));
  EXPECT_EQ(rangeObject.typeName(), "NSRangeVXR");
  EXPECT_EQ(fields(rangeObject, {"Location", "Length"}), (std::vector<double>{7, 4294967295.0}));
  EXPECT_EQ(valueOf(rangeObject).rangeValue().location, 7U);
  EXPECT_EQ(valueOf(rangeObject).rangeValue().length, 4294967295U);
}

TEST(Geometry, OfOtherStructuresIsNothing) {
  const Host host{};
  const Odd odd{1, 2, 3};
  EXPECT_EQ(NewVariantFromNSObject(NSValue::valueWithBytes(&odd, "{_Odd=fff}")), nullptr);
}

TEST(Geometry, IsNothingWithoutTheFamilysClasses) {
  const Host host{.foreignClasses = false};
  EXPECT_EQ(NewNSRectVXR({}), nullptr);
  EXPECT_EQ(NewNSSizeVXR({}), nullptr);
  EXPECT_EQ(NewNSPointVXR({}), nullptr);
  EXPECT_EQ(NewNSRangeVXR({}), nullptr);
  EXPECT_EQ(NewVariantFromNSObject(NSValue::valueWithPoint({1, 2})), nullptr);
}

TEST(Geometry, OfNullIsZero) {
  EXPECT_EQ(GetNSRect(nullptr), NSRect());
  EXPECT_EQ(GetNSSize(nullptr), NSSize());
  EXPECT_EQ(GetNSPoint(nullptr), NSPoint());
  EXPECT_EQ(GetNSRange(nullptr).location + GetNSRange(nullptr).length, 0U);
}
