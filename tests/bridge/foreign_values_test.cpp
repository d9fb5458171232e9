#include "bridge/variants.h"

#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "host/classes.h"
#include "host/dictionaries.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/value.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"
#include "tests/bridge/shown_values.h"
#include "tests/foundation/raised.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <deque>
#include <sstream>
#include <string>
#include <vector>

// What other plug-ins of the family bring along, as far as values of theirs reach this one.
namespace {

struct ForeignTime {
  const char* className;  // of the host
  const char* encoding;   // of the structure
};
const std::vector<ForeignTime> kForeignTimes{
    {"QTKitTimeVXR", "{?=qll}"},
    {"QTKitTimeRangeVXR", "{?={?=qll}{?=qll}}"},
    {"CMTimeVXR", "{?=qiIq}"},
    {"CMTimeRangeVXR", "{?={?=qiIq}{?=qiIq}}"},
    {"CMTimeMappingVXR", "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}"},
};

void registerHostClass(const std::string& name, Word dataSize) {
  static std::deque<std::string> names;
  static std::deque<REALclassDefinition> definitions;
  const char* kept = names.emplace_back(name).c_str();
  host::registerClass(definitions.emplace_back(REALclassDefinition{.name = kept, .dataSize = dataSize}));
}

template <std::size_t Index>
NSValue valueFromHost(Class, void* object) {
  return NSValue::valueWithBytes(dataBlock(static_cast<REALobject>(object)), kForeignTimes[Index].encoding);
}

template <std::size_t Index>
void* hostFromValue(NSValue value) {
  REALobject object = REALnewInstance(kForeignTimes[Index].className);
  if (object != nullptr) value.getValue(dataBlock(object));
  return object;
}

struct ObjectWrapper : objc::Object {
  host::ObjectRef held;

  void* unwrap() { return host::ObjectRef(held).leak(); }
};

NSObject wrap(Class wrapperClass, void* object) {
  auto* wrapper = objc::createInstance<ObjectWrapper>(wrapperClass);
  wrapper->held = host::ObjectRef::share(static_cast<REALobject>(object));
  return Retained<NSObject>::adopt(NSObject(wrapper)).autorelease();
}

// The host classes, each with a data block that holds any of the structures, and their conversions on NSValue.
void registerForeignTimes(bool withConversions = true) {
  constexpr Word kLargestStructure = 96;
  for (const ForeignTime& time : kForeignTimes) registerHostClass(time.className, kLargestStructure);
  if (!withConversions) return;
  objc::ClassBuilder("NSValue"_class)
      .classMethod<&valueFromHost<0>>("valueWithQTTimeVXR:")
      .classMethod<&valueFromHost<1>>("valueWithQTTimeRangeVXR:")
      .classMethod<&valueFromHost<2>>("valueWithCMTimeVXR:")
      .classMethod<&valueFromHost<3>>("valueWithCMTimeRangeVXR:")
      .classMethod<&valueFromHost<4>>("valueWithCMTimeMappingVXR:")
      .method<&hostFromValue<0>>("QTTimeValueVXR")
      .method<&hostFromValue<1>>("QTTimeRangeValueVXR")
      .method<&hostFromValue<2>>("CMTimeValueVXR")
      .method<&hostFromValue<3>>("CMTimeRangeValueVXR")
      .method<&hostFromValue<4>>("CMTimeMappingValueVXR");
}

void registerObjectWrapper() {
  objc::ClassBuilder::define<ObjectWrapper>("VXRREALobjectWrapper", "NSObject")
      .classMethod<&wrap>("wrap:")
      .method<&ObjectWrapper::unwrap>("unwrap");
}

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
  for (const ForeignTime& time : kForeignTimes) {
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
  for (const ForeignTime& time : kForeignTimes) {
    EXPECT_EQ(NewVariantFromNSObject(NSValue::valueWithBytes(bytes.data(), time.encoding)), nullptr) << time.className;
    EXPECT_EQ(raised([&] { GetObjectAsNSObject(newObject(time.className).object()); }), "NSInvalidArgumentException");
  }
}

TEST(ForeignWrappers, LendTheObjectInTheirFirstWord) {
  const Host host{.foreignClasses = false};
  const NSObject held = NSNumber::numberWithInt(5);
  std::istringstream names(
      "QuartzFilterVXR NSImageVXR NSImageRepVXR NSFontVXR NSResponderVXR NSAttributedStringVXR "
      "NSIndexSetVXR NSColorVXR NSToolbarItemVXR NSToolbarVXR NSURLRequestVXR NSCharacterSetVXR "
      "NSParagraphStyleVXR NSTextContainerVXR WebUIDelegateVXR WebResourceLoadDelegateVXR "
      "WebFrameLoadDelegateVXR WebDownloadDelegateVXR DRBurnVXR PDFAnnotationVXR PDFActionVXR "
      "WebPolicyDelegateVXR");
  for (std::string name; names >> name;) {
    registerHostClass(name, sizeof(Word));
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
