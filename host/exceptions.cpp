#include "host/exceptions.h"

#include "host/built_in_classes.h"
#include "host/class_records.h"
#include "host/classes.h"
#include "host/properties.h"
#include "host/strings.h"
#include "platform/objc/runtime.h"

#include <cstddef>
#include <iterator>

namespace host {

namespace {

struct ExceptionData {
  REALstring message;
};

Value& pending() {
  static auto* value = new Value;
  return *value;
}

void destroyException(REALobject self) { unlock(dataOf<ExceptionData>(self, runtimeExceptionDefinition()).message); }

REALproperty properties[] = {storedProperty("Message", "String", offsetof(ExceptionData, message))};

}  // namespace

REALclassDefinition& runtimeExceptionDefinition() {
  static REALclassDefinition definition{.name = "RuntimeException",
                                        .dataSize = sizeof(ExceptionData),
                                        .destructor = destroyException,
                                        .properties = properties,
                                        .propertyCount = std::size(properties)};
  return definition;
}

std::span<REALclassDefinition> runtimeExceptionSubclasses() {
  static REALclassDefinition definitions[] = {
      {.name = "UnsupportedOperationException", .superName = "RuntimeException"},
      {.name = "OutOfMemoryException", .superName = "RuntimeException"},
      {.name = "OutOfBoundsException", .superName = "RuntimeException"},
      {.name = "KeyNotFoundException", .superName = "RuntimeException"},
  };
  return definitions;
}

HostException::HostException(Value object) : object_(std::move(object)), text_(object_.typeName()) {
  if (const auto message = readProperty(object_.object(), "Message")) text_ += ": " + message->text();
}

void raise(REALobject exception) { pending() = Value::share(exception); }

void raise(const char* className, const char* message) {
  const auto exception = ObjectRef::adopt(newInstance(requireClass(className)));
  writeProperty(exception.get(), "Message", message);
  raise(exception.get());
}

std::optional<HostException> takePendingException() {
  if (pending().isNil()) return std::nullopt;
  return HostException(std::exchange(pending(), nullptr));
}

PluginScope::PluginScope() : pool_(objc_autoreleasePoolPush()) {}

PluginScope::~PluginScope() { objc_autoreleasePoolPop(pool_); }

}  // namespace host
