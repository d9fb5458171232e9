#include "bridge/property_values.h"

#include "bridge/data.h"
#include "bridge/dates.h"
#include "bridge/dictionaries.h"
#include "bridge/strings.h"
#include "bridge/variant_readers.h"
#include "bridge/variants.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/contacts/constants.h"
#include "platform/foundation/number.h"

namespace {

NSObject objectValue(REALvariant variant) {
  REALobject read = nullptr;
  if (!REALGetPropValueObject(variant, "ObjectValue", &read)) return nullptr;
  const auto object = adoptHost(read);
  if (!object) return nullptr;
  if (IsMemoryBlock(object.get())) return NewNSData(static_cast<REALmemoryBlock>(object.get()));
  if (IsDictionary(object.get())) return NewNSDictionary(static_cast<REALdictionary>(object.get()));
  // Other classes may hold anything in their first word.
  if (!REALObjectIsA(object.get(), "ABMultiValueVXR")) return nullptr;
  auto held = wrapped<NSObject>(object.get());
  return held.isKindOfClass("ABMultiValue"_class) ? held : nullptr;
}

}  // namespace

REALvariant GetValue(NSObject value, std::int32_t propertyType) {
  if (!value) return nullptr;
  if (value.isKindOfClass("ABMultiValue"_class)) return NewABMultiValueVXR(value.as<ABMultiValue>());
  if (value.isKindOfClass("NSString"_class)) {
    const auto string = adoptHost(NSStringRB(value.as<NSString>()));
    return string ? REALNewVariantString(string.get()) : nullptr;
  }
  if (value.isKindOfClass("NSNumber"_class)) {
    const auto number = value.as<NSNumber>();
    return propertyType == kABRealProperty ? REALNewVariantDouble(number.doubleValue())
                                           : REALNewVariantInteger(static_cast<std::int32_t>(number.longValue()));
  }
  if (value.isKindOfClass("NSDate"_class)) return NSDateRB(value.as<NSDate>());
  if (value.isKindOfClass("NSDictionary"_class)) return NSDictionaryRB(value.as<NSDictionary>());
  if (value.isKindOfClass("NSData"_class)) return NSDataRB(value.as<NSData>());
  return nullptr;
}

NSObject NewValue(REALvariant variant, std::int32_t) {
  const std::int32_t type = GetVariantType(variant);
  switch (type) {
    case kVariantBoolean:
      return NSNumber::numberWithLong(GetVariantInteger(variant));
    case kVariantString:
      return NewNSString(adoptHost(GetVariantString(variant)).get());
    case kVariantObject:
      return objectValue(variant);
    default:
      return GetNumberOrDateAsNSObject(variant, type);
  }
}
