#include "bridge/variants.h"

#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "host/classes.h"
#include "host/dictionaries.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/value.h"
#include "tests/bridge/foreign_plugin.h"
#include "tests/bridge/shown_values.h"
#include "tests/foundation/raised.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace {

// A new object of a class that the plug-in doesn't know how to make.
host::Value newObject(const std::string& className) {
  return host::Value::adopt(host::newInstance(host::requireClass(className)));
}

}  // namespace

TEST(ForeignTimes, CrossByTheirOwnersMethods) {
  const Host host{};
  registerForeignTimes();
  std::array<char, 16> bytes{};  // as many as the smallest structure has
  std::memcpy(bytes.data(), "0123456789abcde", bytes.size());
  for (const ForeignTime& time : foreignTimes()) {
    const host::Value object = newObject(time.className);
    std::memcpy(dataBlock(object.object()), bytes.data(), bytes.size());
    const NSObject value = GetObjectAsNSObject(object.object());
    ASSERT_TRUE(value.isKindOfClass("NSValue"_class)) << time.className;
    EXPECT_STREQ(value.as<NSValue>().objCType(), time.encoding);
    const host::Value back = take(NewVariantFromNSObject(value));
    EXPECT_EQ(back.typeName(), time.className);
    EXPECT_EQ(std::memcmp(dataBlock(back.object()), bytes.data(), bytes.size()), 0) << time.className;
  }
}

TEST(ForeignTimes, WithoutTheirMethodsRaiseOrAreNothing) {
  const Host host{};
  registerForeignTimes(false);
  const std::array<char, 96> bytes{};
  for (const ForeignTime& time : foreignTimes()) {
    EXPECT_EQ(NewVariantFromNSObject(NSValue::valueWithBytes(bytes.data(), time.encoding)), nullptr) << time.className;
    EXPECT_EQ(raised([&] { GetObjectAsNSObject(newObject(time.className).object()); }), "NSInvalidArgumentException");
  }
}

TEST(ForeignWrappers, LendTheObjectInTheirFirstWord) {
  const Host host{.foreignClasses = false};
  const NSObject held = NSNumber::numberWithInt(5);
  for (const char* name : {"QuartzFilterVXR",
                           "NSImageVXR",
                           "NSImageRepVXR",
                           "NSFontVXR",
                           "NSResponderVXR",
                           "NSAttributedStringVXR",
                           "NSIndexSetVXR",
                           "NSColorVXR",
                           "NSToolbarItemVXR",
                           "NSToolbarVXR",
                           "NSURLRequestVXR",
                           "NSCharacterSetVXR",
                           "NSParagraphStyleVXR",
                           "NSTextContainerVXR",
                           "WebUIDelegateVXR",
                           "WebResourceLoadDelegateVXR",
                           "WebFrameLoadDelegateVXR",
                           "WebDownloadDelegateVXR",
                           "DRBurnVXR",
                           "PDFAnnotationVXR",
                           "PDFActionVXR",
                           "WebPolicyDelegateVXR"}) {
    registerHoldingClass(name);
    const host::Value object = newObject(name);
    EXPECT_FALSE(GetVariantAsNSObject(object.object())) << name;
    *dataBlock(object.object()) = reinterpret_cast<Word>(held.get());
    EXPECT_EQ(GetVariantAsNSObject(object.object()), held) << name;
  }
}

TEST(ObjectWrappers, CarryAnyHostObjectThroughFoundation) {
  const Host host{};
  registerObjectWrapper();
  const host::Value person = host.make("ABPersonVXR");
  const NSObject wrapped = GetVariantAsNSObject(person.object());
  EXPECT_EQ(shown(wrapped), "VXRREALobjectWrapper");
  EXPECT_EQ(take(NewVariantFromNSObject(wrapped)).object(), person.object());

  const host::Value entries = host::dictionary({{person, "name"}, {"person", person}});
  const host::Value back = take(NewVariantFromNSObject(GetVariantAsNSObject(entries.object())));
  EXPECT_EQ(back.call("Value", "person").object(), person.object());
  EXPECT_EQ(back.call("Key", 0).object(), person.object());
}
