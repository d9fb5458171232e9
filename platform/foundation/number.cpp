#include "platform/foundation/number.h"

#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/foundation/value_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <charconv>
#include <cmath>
#include <concepts>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace foundation {
namespace {

struct NumberObject;

// What depends on the type that a number was made from.
struct NumberType {
  const char* encoding;
  void (*store)(const NumberObject& number, void* buffer);
};

// Out of the type's range, the nearest value.
template <std::integral Target>
Target truncated(double value) {
  using Limits = std::numeric_limits<Target>;
  if (std::isnan(value)) return 0;
  if (value >= std::ldexp(1.0, Limits::digits)) return Limits::max();
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  return static_cast<Target>(value);
}

template <class Target, class Source>
Target converted(Source value) {
  if constexpr (std::is_same_v<Target, bool>) {
    return value != 0;
  } else if constexpr (std::is_floating_point_v<Source> && std::is_integral_v<Target>) {
    return truncated<Target>(value);
  } else {
    return static_cast<Target>(value);
  }
}

struct NumberObject : ValueObject {
  const NumberType* type = nullptr;
  std::variant<long long, unsigned long long, double> value;

  template <class Target>
  Target as() const {
    return std::visit([](auto held) { return converted<Target>(held); }, value);
  }

  // Holds any of the three without loss, so that numbers of different types can be compared.
  using Exact = long double;
  static_assert(std::numeric_limits<Exact>::digits >= std::numeric_limits<unsigned long long>::digits);

  const char* objCType() const { return type->encoding; }

  void getValue(void* buffer) const { type->store(*this, buffer); }

  NSComparisonResult compareTo(const NumberObject& other) const {
    const auto left = as<Exact>();
    const auto right = other.as<Exact>();
    if (std::isnan(left) || std::isnan(right)) return NSComparisonResult{std::isnan(right)} - std::isnan(left);
    return NSComparisonResult{left > right} - NSComparisonResult{left < right};
  }

  NSComparisonResult compare(NSNumber other) const {
    if (!other) NSException::raise(NSInvalidArgumentException, "-[NSNumber compare:]: number is nil");
    return compareTo(*static_cast<const NumberObject*>(other.get()));
  }

  bool isEqual(NSObject other) const {
    if (!other || !other.isKindOfClass("NSNumber"_class)) return false;
    return compareTo(*static_cast<const NumberObject*>(other.get())) == NSOrderedSame;
  }

  NSUInteger hash() const {
    const double real = as<double>();
    // Equal numbers have equal nearest doubles, whatever they were made from.
    return std::isnan(real) ? 0 : std::hash<double>{}(real);
  }

  NSString description() const {
    char text[32];
    char* const end = std::end(text);
    const auto* real = std::get_if<double>(&value);
    if (real == nullptr) {
      const auto* negative = std::get_if<long long>(&value);
      const auto written = negative != nullptr ? std::to_chars(text, end, *negative)
                                               : std::to_chars(text, end, std::get<unsigned long long>(value));
      return makeString(std::string_view(text, written.ptr));
    }
    // As many digits as every number of the type keeps.
    const int digits = std::string_view(type->encoding) == "f" ? 7 : 16;
    return makeString(std::string_view(text, std::to_chars(text, end, *real, std::chars_format::general, digits).ptr));
  }
};

template <class Value>
constexpr NumberType kNumberType{std::is_same_v<Value, bool> ? "c" : objc::encoding<Value>.data(),
                                 [](const NumberObject& number, void* buffer) {
                                   const auto value = number.as<Value>();
                                   std::memcpy(buffer, &value, sizeof value);
                                 }};

template <class Value>
NSNumber numberWith(Class numberClass, Value value) {
  auto* number = objc::createInstance<NumberObject>(numberClass);
  number->type = &kNumberType<Value>;
  if constexpr (std::is_floating_point_v<Value>) {
    number->value = static_cast<double>(value);
  } else if constexpr (std::is_signed_v<Value> || std::is_same_v<Value, bool>) {
    number->value = static_cast<long long>(value);
  } else {
    number->value = static_cast<unsigned long long>(value);
  }
  return Retained<NSNumber>::adopt(NSNumber(number)).autorelease();
}

}  // namespace

void registerNumber() {
  objc::ClassBuilder::define<NumberObject>("NSNumber", "NSValue")
      .classMethod<&numberWith<bool>>("numberWithBool:")
      .classMethod<&numberWith<char>>("numberWithChar:")
      .classMethod<&numberWith<unsigned char>>("numberWithUnsignedChar:")
      .classMethod<&numberWith<short>>("numberWithShort:")
      .classMethod<&numberWith<unsigned short>>("numberWithUnsignedShort:")
      .classMethod<&numberWith<int>>("numberWithInt:")
      .classMethod<&numberWith<unsigned int>>("numberWithUnsignedInt:")
      .classMethod<&numberWith<long>>("numberWithLong:")
      .classMethod<&numberWith<unsigned long>>("numberWithUnsignedLong:")
      .classMethod<&numberWith<long long>>("numberWithLongLong:")
      .classMethod<&numberWith<unsigned long long>>("numberWithUnsignedLongLong:")
      .classMethod<&numberWith<float>>("numberWithFloat:")
      .classMethod<&numberWith<double>>("numberWithDouble:")
      .method<&NumberObject::as<bool>>("boolValue")
      .method<&NumberObject::as<char>>("charValue")
      .method<&NumberObject::as<unsigned char>>("unsignedCharValue")
      .method<&NumberObject::as<short>>("shortValue")
      .method<&NumberObject::as<unsigned short>>("unsignedShortValue")
      .method<&NumberObject::as<int>>("intValue")
      .method<&NumberObject::as<unsigned int>>("unsignedIntValue")
      .method<&NumberObject::as<long>>("longValue")
      .method<&NumberObject::as<unsigned long>>("unsignedLongValue")
      .method<&NumberObject::as<long long>>("longLongValue")
      .method<&NumberObject::as<unsigned long long>>("unsignedLongLongValue")
      .method<&NumberObject::as<float>>("floatValue")
      .method<&NumberObject::as<double>>("doubleValue")
      .method<&NumberObject::compare>("compare:")
      .method<&NumberObject::objCType>("objCType")
      .method<&NumberObject::getValue>("getValue:")
      .method<&NumberObject::isEqual>("isEqual:")
      .method<&NumberObject::hash>("hash")
      .method<&NumberObject::description>("description");
}

}  // namespace foundation
