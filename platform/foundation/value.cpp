#include "platform/foundation/value.h"

#include "platform/foundation/data_dump.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/foundation/value_encoding.h"
#include "platform/foundation/value_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace foundation {
namespace {

// Any value but a number.
struct ConcreteValueObject : ValueObject {
  std::string type;
  std::vector<std::uint8_t> bytes;

  const char* objCType() const { return type.c_str(); }

  void getValue(void* buffer) const {
    if (!bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
  }

  bool isEqual(NSObject other) const {
    if (!other || !other.isKindOfClass("NSConcreteValue"_class)) return false;
    const auto& value = *static_cast<const ConcreteValueObject*>(other.get());
    return type == value.type && bytes == value.bytes;
  }

  NSUInteger hash() const {
    return std::hash<std::string_view>{}({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }

  NSString description() const { return makeString(hexDump(bytes)); }
};

NSValue valueWithBytes(Class, const void* bytes, const char* encoding) {
  const auto size = sizeOfEncoding(encoding);
  if (!size) {
    NSException::raise(NSInvalidArgumentException, std::string("+[NSValue valueWithBytes:objCType:]: type is ") +
                                                       encoding + ", expected the encoding of a scalar or structure");
  }
  auto* value = objc::createInstance<ConcreteValueObject>("NSConcreteValue"_class);
  auto owned = Retained<NSValue>::adopt(NSValue(value));
  value->type = encoding;
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  value->bytes.assign(first, first + *size);
  return owned.autorelease();
}

template <class Structure>
NSValue boxed(Class valueClass, Structure structure) {
  return valueWithBytes(valueClass, &structure, std::string(objc::encoding<Structure>).c_str());
}

template <class Structure>
Structure unboxed(NSValue self) {
  if (objc::encoding<Structure> != self.objCType()) {
    NSException::raise(NSInvalidArgumentException, "NSValue: type is " + std::string(self.objCType()) + ", expected " +
                                                       std::string(objc::encoding<Structure>));
  }
  Structure structure;
  self.getValue(&structure);
  return structure;
}

}  // namespace

void registerValue() {
  objc::ClassBuilder::define<ValueObject>("NSValue", "NSObject")
      .classMethod<&valueWithBytes>("valueWithBytes:objCType:")
      .classMethod<&boxed<NSRect>>("valueWithRect:")
      .classMethod<&boxed<NSSize>>("valueWithSize:")
      .classMethod<&boxed<NSPoint>>("valueWithPoint:")
      .classMethod<&boxed<NSRange>>("valueWithRange:")
      .method<&unboxed<NSRect>>("rectValue")
      .method<&unboxed<NSSize>>("sizeValue")
      .method<&unboxed<NSPoint>>("pointValue")
      .method<&unboxed<NSRange>>("rangeValue");
  objc::ClassBuilder::define<ConcreteValueObject>("NSConcreteValue", "NSValue")
      .method<&ConcreteValueObject::objCType>("objCType")
      .method<&ConcreteValueObject::getValue>("getValue:")
      .method<&ConcreteValueObject::isEqual>("isEqual:")
      .method<&ConcreteValueObject::hash>("hash")
      .method<&ConcreteValueObject::description>("description");
}

}  // namespace foundation
