#include "tests/bridge/foreign_plugin.h"

#include "bridge/wrappers.h"
#include "host/classes.h"
#include "platform/foundation/value.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <deque>

namespace {

void registerHostClass(const std::string& name, Word dataSize) {
  static std::deque<std::string> names;
  static std::deque<REALclassDefinition> definitions;
  const char* kept = names.emplace_back(name).c_str();
  host::registerClass(definitions.emplace_back(REALclassDefinition{.name = kept, .dataSize = dataSize}));
}

template <std::size_t Index>
NSValue valueFromHost(Class, void* object) {
  return NSValue::valueWithBytes(dataBlock(static_cast<REALobject>(object)), foreignTimes()[Index].encoding);
}

template <std::size_t Index>
void* hostFromValue(NSValue value) {
  REALobject object = REALnewInstance(foreignTimes()[Index].className);
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

}  // namespace

const std::vector<ForeignTime>& foreignTimes() {
  static const std::vector<ForeignTime> times{
      {"QTKitTimeVXR", "{?=qll}"},
      {"QTKitTimeRangeVXR", "{?={?=qll}{?=qll}}"},
      {"CMTimeVXR", "{?=qiIq}"},
      {"CMTimeRangeVXR", "{?={?=qiIq}{?=qiIq}}"},
      {"CMTimeMappingVXR", "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}"},
  };
  return times;
}

void registerForeignTimes(bool withConversions) {
  constexpr Word kLargestStructure = 96;
  for (const ForeignTime& time : foreignTimes()) registerHostClass(time.className, kLargestStructure);
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

void registerHoldingClass(const std::string& name) { registerHostClass(name, sizeof(Word)); }
