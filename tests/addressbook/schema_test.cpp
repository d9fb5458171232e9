#include "platform/foundation/number.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"

namespace {

// The type that the framework was given last.
std::int64_t givenType = 0;

NSInteger noteType(Class, NSDictionary properties) {
  givenType = properties.objectForKey("mine"_ns).as<NSNumber>().longLongValue();
  return -1;
}

}  // namespace

TEST(Schema, IsOfItsClass) {
  const Host host{};
  EXPECT_EQ(host.shared("ABGroupVXR", "properties").at(3), "GroupName");
  EXPECT_EQ(host.shared("ABPersonVXR", "properties").at(3), "First");
  EXPECT_EQ(host.shared("ABGroupVXR", "addProperty", "mine", 3), 1);
  EXPECT_EQ(host.shared("ABPersonVXR", "typeOfProperty", "mine"), 0);
}

TEST(Schema, ReadsTypesAsUnsigned) {
  objc::ClassBuilder(Class("ABPerson")).classMethod<&noteType>("addPropertiesAndTypes:");
  const Host host{};
  for (const auto& [type, expected] : {std::pair(-1, 4294967295), {257, 257}, {-2147483647 - 1, 2147483648}}) {
    EXPECT_EQ(host.shared("ABPersonVXR", "addProperty", "mine", type), -1);
    EXPECT_EQ(givenType, expected);
  }
}
