#pragma once

#include "platform/foundation/string.h"
#include "platform/foundation/value.h"

// A number that remembers the C type it was made from: objCType is that type's one letter, "c" for a Boolean. Numbers
// of different types are equal when their values are.
class NSNumber : public NSValue {
 public:
  using NSValue::NSValue;

  static NSNumber numberWithBool(bool value) { return make("numberWithBool:"_sel, value); }
  static NSNumber numberWithChar(char value) { return make("numberWithChar:"_sel, value); }
  static NSNumber numberWithUnsignedChar(unsigned char value) { return make("numberWithUnsignedChar:"_sel, value); }
  static NSNumber numberWithShort(short value) { return make("numberWithShort:"_sel, value); }
  static NSNumber numberWithUnsignedShort(unsigned short value) { return make("numberWithUnsignedShort:"_sel, value); }
  static NSNumber numberWithInt(int value) { return make("numberWithInt:"_sel, value); }
  static NSNumber numberWithUnsignedInt(unsigned int value) { return make("numberWithUnsignedInt:"_sel, value); }
  static NSNumber numberWithLong(long value) { return make("numberWithLong:"_sel, value); }
  static NSNumber numberWithUnsignedLong(unsigned long value) { return make("numberWithUnsignedLong:"_sel, value); }
  static NSNumber numberWithLongLong(long long value) { return make("numberWithLongLong:"_sel, value); }
  static NSNumber numberWithUnsignedLongLong(unsigned long long value) {
    return make("numberWithUnsignedLongLong:"_sel, value);
  }
  static NSNumber numberWithFloat(float value) { return make("numberWithFloat:"_sel, value); }
  static NSNumber numberWithDouble(double value) { return make("numberWithDouble:"_sel, value); }

  // Read as another type, integers are cut to its width; floating numbers lose their fraction, and what is out of the
  // type's range becomes its nearest value (zero for a NaN).
  [[nodiscard]] bool boolValue() const { return send<bool>(*this, "boolValue"_sel); }
  [[nodiscard]] char charValue() const { return send<char>(*this, "charValue"_sel); }
  [[nodiscard]] unsigned char unsignedCharValue() const { return send<unsigned char>(*this, "unsignedCharValue"_sel); }
  [[nodiscard]] short shortValue() const { return send<short>(*this, "shortValue"_sel); }
  [[nodiscard]] unsigned short unsignedShortValue() const {
    return send<unsigned short>(*this, "unsignedShortValue"_sel);
  }
  [[nodiscard]] int intValue() const { return send<int>(*this, "intValue"_sel); }
  [[nodiscard]] unsigned int unsignedIntValue() const { return send<unsigned int>(*this, "unsignedIntValue"_sel); }
  [[nodiscard]] long longValue() const { return send<long>(*this, "longValue"_sel); }
  [[nodiscard]] unsigned long unsignedLongValue() const { return send<unsigned long>(*this, "unsignedLongValue"_sel); }
  [[nodiscard]] long long longLongValue() const { return send<long long>(*this, "longLongValue"_sel); }
  [[nodiscard]] unsigned long long unsignedLongLongValue() const {
    return send<unsigned long long>(*this, "unsignedLongLongValue"_sel);
  }
  [[nodiscard]] float floatValue() const { return send<float>(*this, "floatValue"_sel); }
  [[nodiscard]] double doubleValue() const { return send<double>(*this, "doubleValue"_sel); }

  // By value; a NaN is less than every other number. nil raises NSInvalidArgumentException.
  [[nodiscard]] NSComparisonResult compare(NSNumber other) const {
    return send<NSComparisonResult>(*this, "compare:"_sel, other);
  }

 private:
  template <class Selector, class Value>
  static NSNumber make(Selector selector, Value value) {
    return send<NSNumber>("NSNumber"_class, selector, value);
  }
};
