#include "bridge/variant_readers.h"

#include "frame/global_method.h"
#include "frame/host_interface.h"

namespace {

constinit GlobalMethod<"VarType(value As Variant) As Int32", std::int32_t(REALvariant)> varType;
constinit HostEntry<"VariantToString", REALstring(REALvariant)> variantToString;
constinit HostEntry<"VariantToInt32", std::int32_t(REALvariant)> variantToInt32;
constinit HostEntry<"VariantToInt64", std::int64_t(REALvariant)> variantToInt64;
constinit HostEntry<"VariantToSingle", float(REALvariant)> variantToSingle;
constinit HostEntry<"VariantToDouble", double(REALvariant)> variantToDouble;

// The host's function where there is one, else the variant's property of that name.
template <class Value, class Accessor>
Value read(Value (*function)(REALvariant), REALvariant variant, Accessor& accessor, const char* property) {
  if (function != nullptr) return function(variant);
  Value value{};
  accessor(variant, property, &value);
  return value;
}

}  // namespace

std::int32_t GetVariantType(REALvariant variant) {
  return read(varType.find(), variant, REALGetPropValueInt32, "Type");
}

REALstring GetVariantString(REALvariant variant) {
  if (variant == nullptr) return nullptr;
  return read(variantToString.find(), variant, REALGetPropValueString, "StringValue");
}

std::int32_t GetVariantInteger(REALvariant variant) {
  return read(variantToInt32.find(), variant, REALGetPropValueInt32, "Int32Value");
}

std::int64_t GetVariantLong(REALvariant variant) {
  return read(variantToInt64.find(), variant, REALGetPropValueInt64, "LongValue");
}

float GetVariantSingle(REALvariant variant) {
  return read(variantToSingle.find(), variant, REALGetPropValueSingle, "SingleValue");
}

double GetVariantDouble(REALvariant variant) {
  return read(variantToDouble.find(), variant, REALGetPropValueDouble, "DoubleValue");
}
