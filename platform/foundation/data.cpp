#include "platform/foundation/data.h"

#include "platform/foundation/data_dump.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <functional>
#include <string_view>
#include <utility>

namespace foundation {
namespace {

struct DataObject : objc::Object {
  std::vector<std::uint8_t> buffer;

  const void* bytes() const { return buffer.data(); }
  NSUInteger length() const { return buffer.size(); }

  bool isEqual(NSObject other) const {
    if (!other || !other.isKindOfClass("NSData"_class)) return false;
    return buffer == static_cast<const DataObject*>(other.get())->buffer;
  }

  NSUInteger hash() const {
    return std::hash<std::string_view>{}({reinterpret_cast<const char*>(buffer.data()), buffer.size()});
  }

  NSString description() const { return makeString(hexDump(buffer)); }
};

NSData makeData(Class dataClass, std::vector<std::uint8_t>&& buffer) {
  auto* data = objc::createInstance<DataObject>(dataClass);
  data->buffer = std::move(buffer);
  return Retained<NSData>::adopt(NSData(data)).autorelease();
}

NSData dataWithBytes(Class dataClass, const void* bytes, NSUInteger length) {
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  return makeData(dataClass, std::vector<std::uint8_t>(first, first + length));
}

NSData dataByTakingBuffer(Class dataClass, void* buffer) {
  return makeData(dataClass, std::move(*static_cast<std::vector<std::uint8_t>*>(buffer)));
}

}  // namespace

std::string hexDump(std::span<const std::uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "<";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i != 0 && i % 4 == 0) text += ' ';
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text + '>';
}

void registerData() {
  objc::ClassBuilder::define<DataObject>("NSData", "NSObject")
      .classMethod<&dataWithBytes>("dataWithBytes:length:")
      .classMethod<&dataByTakingBuffer>("dataByTakingBuffer:")
      .method<&DataObject::bytes>("bytes")
      .method<&DataObject::length>("length")
      .method<&DataObject::isEqual>("isEqual:")
      .method<&DataObject::hash>("hash")
      .method<&DataObject::description>("description");
}

}  // namespace foundation
