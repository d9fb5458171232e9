#include "host/arrays.h"
#include "platform/contacts/group.h"
#include "platform/foundation/number.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/member_rows.h"

namespace {

using host::Value;

constexpr const char* kClasses[] = {"ABPersonVXR", "ABGroupVXR"};

Value strings(const std::vector<Value>& texts) { return host::stringArray(texts); }

// In an order in which each row finds what it needs.
MemberRows rows(const char* sharedBy) {
  return {
      {"addProperty", {"mine", 257}, "addPropertiesAndTypes:", "Integer 1", "Integer 0", {}, sharedBy},
      {"typeOfProperty", {"mine"}, "typeOfProperty:", "Integer 257", "Integer 0", {}, sharedBy},
      {"properties", {}, "properties", kAnything, "[]", {}, sharedBy},
      {"removeProperty", {"mine"}, "removeProperties:", "Integer 1", "Integer 0", {}, sharedBy},
      {"removeProperties", {strings({"mine", ""})}, "removeProperties:", "Integer 0", "Integer 0", {}, sharedBy},
      {"searchElementForProperty",
       {"UID", "", "", "x", 0},
       "searchElementForProperty:label:key:value:comparison:",
       "ABSearchElementVXR",
       "Nil",
       {1, 2},
       sharedBy},
  };
}

// The type that the framework was given last.
std::int64_t givenType = 0;

NSInteger noteType(Class, NSDictionary properties) {
  givenType = properties.objectForKey("mine"_ns).as<NSNumber>().longLongValue();
  return -1;
}

}  // namespace

TEST(Schema, SendsAndConverts) {
  const Host host{};
  for (const char* sharedBy : kClasses) {
    SCOPED_TRACE(sharedBy);
    expectResults(nullptr, rows(sharedBy));
    EXPECT_EQ(host.shared(sharedBy, "typeOfProperty", "Creation"), 4);
    EXPECT_EQ(host.shared(sharedBy, "typeOfProperty", "mine"), 0);
  }
  EXPECT_EQ(host.shared("ABGroupVXR", "properties").at(3), "GroupName");
  EXPECT_EQ(host.shared("ABPersonVXR", "properties").at(3), "First");
}

TEST(Schema, AnswersNeutrallyWhereSomethingIsMissing) {
  const Host host{};
  for (const char* sharedBy : kClasses) expectNeutralWithoutArguments(nullptr, rows(sharedBy));
}

TEST(Schema, AnswersNeutrallyWhenTheFrameworkRaises) {
  const Host host{.without = {"RuntimeRaiseException"}};
  for (const char* sharedBy : kClasses) {
    expectNeutralWhenRaising(nullptr, rows(sharedBy));
    const MemberRow properties{"properties", {}, "nextObject", "", "", {}, sharedBy};
    EXPECT_EQ(properties.outcome(nullptr, {}, 2).first, "['UID']");
  }
}

TEST(Schema, HandsAnEmptyListOn) {
  const Host host{};
  for (const char* sharedBy : kClasses) {
    const MemberRow row{"removeProperties", {}, "removeProperties:", "", "", {}, sharedBy};
    EXPECT_EQ(row.outcome(nullptr, {strings({})}), std::pair(std::string("Integer 0"), 1));
  }
}

TEST(Schema, ReadsTypesAsUnsigned) {
  for (const char* name : {"ABPerson", "ABGroup"}) {
    objc::ClassBuilder(Class(name)).classMethod<&noteType>("addPropertiesAndTypes:");
  }
  const Host host{};
  for (const char* sharedBy : kClasses) {
    for (const auto& [type, expected] : {std::pair(-1, 4294967295), {257, 257}, {-2147483647 - 1, 2147483648}}) {
      EXPECT_EQ(host.shared(sharedBy, "addProperty", "mine", type), -1);
      EXPECT_EQ(givenType, expected);
    }
  }
}
