#include "bridge/variants.h"

#include "bridge/collections.h"
#include "bridge/data.h"
#include "bridge/dates.h"
#include "bridge/dictionaries.h"
#include "bridge/files.h"
#include "bridge/geometry.h"
#include "bridge/strings.h"
#include "bridge/variant_readers.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/null.h"
#include "platform/foundation/number.h"

#include <array>
#include <string_view>

namespace {

// Counts how deep the converters have called each other on this thread. A host array or Dictionary may contain itself.
class NestingLevel {
 public:
  NestingLevel() {
    constexpr int kDeepest = 256;
    if (level_ == kDeepest) {
      NSException::raise(NSInvalidArgumentException, "a value nested more than 256 levels deep can't be converted");
    }
    ++level_;
  }
  NestingLevel(const NestingLevel&) = delete;
  NestingLevel& operator=(const NestingLevel&) = delete;
  ~NestingLevel() { --level_; }

 private:
  static inline thread_local int level_ = 0;
};

// Wraps a host object in a framework object; another plug-in of the family may supply it.
Class objectWrapperClass() { return Class("VXRREALobjectWrapper"); }

// Structures whose conversions their owning plug-in adds to NSValue.
struct ForeignStructure {
  const char* className;
  std::string_view encoding;
  objc::Selector toHost;
  objc::Selector fromHost;
};

// In the order in which host objects are tested for them.
std::array<ForeignStructure, 5> foreignStructures() {
  return {{
      {"QTKitTimeVXR", "{?=qll}", "QTTimeValueVXR"_sel, "valueWithQTTimeVXR:"_sel},
      {"QTKitTimeRangeVXR", "{?={?=qll}{?=qll}}", "QTTimeRangeValueVXR"_sel, "valueWithQTTimeRangeVXR:"_sel},
      {"CMTimeMappingVXR", "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", "CMTimeMappingValueVXR"_sel,
       "valueWithCMTimeMappingVXR:"_sel},
      {"CMTimeRangeVXR", "{?={?=qiIq}{?=qiIq}}", "CMTimeRangeValueVXR"_sel, "valueWithCMTimeRangeVXR:"_sel},
      {"CMTimeVXR", "{?=qiIq}", "CMTimeValueVXR"_sel, "valueWithCMTimeVXR:"_sel},
  }};
}

// Classes whose instances hold a framework object in their first word, in the order in which they are tested.
constexpr std::array kHoldingClasses{"QuartzFilterVXR",
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
                                     "PDFActionVXR"};

REALvariant variantFromArray(NSArray source) {
  auto array = adoptHost(REALCreateArrayVariant(-1));
  if (!array) return nullptr;
  fillHostArray(array.get(), source, NewVariantFromNSObject);
  return array.handOver();
}

REALvariant variantFromString(NSString source) {
  const auto string = adoptHost(NSStringRB(source));
  return REALNewVariantString(string.get());
}

REALvariant variantFromNumber(NSNumber number) {
  switch (number.objCType()[0]) {
    case 'c':
      return REALNewVariantBoolean(number.boolValue());
    case 'C':
      return REALNewVariantInteger(number.unsignedCharValue());
    case 's':
      return REALNewVariantInteger(number.shortValue());
    case 'S':
      return REALNewVariantInteger(number.unsignedShortValue());
    case 'i':
      return REALNewVariantInteger(number.intValue());
    case 'I':
      return REALNewVariantUInt32(number.unsignedIntValue());
    case 'l':
      return REALNewVariantInteger(static_cast<std::int32_t>(number.longValue()));
    case 'L':
      return REALNewVariantUInt32(static_cast<std::uint32_t>(number.unsignedLongValue()));
    case 'q':
      return REALNewVariantInt64(number.longLongValue());
    case 'Q':
      return REALNewVariantUInt64(number.unsignedLongLongValue());
    case 'f':
      return REALNewVariantSingle(number.floatValue());
    default:
      return REALNewVariantDouble(number.doubleValue());
  }
}

REALvariant variantFromURL(NSURL url) {
  if (REALfolderItem item = NSURLRBFile(url)) return item;
  const auto text = adoptHost(NSURLRB(url));
  return REALNewVariantString(text.get());
}

REALvariant variantFromValue(NSValue value) {
  const std::string_view encoding = value.objCType();
  if (encoding == NSRect::kEncoding) return NewNSRectVXR(value.rectValue());
  if (encoding == NSSize::kEncoding) return NewNSSizeVXR(value.sizeValue());
  if (encoding == NSRange::kEncoding) return NewNSRangeVXR(value.rangeValue());
  if (encoding == NSPoint::kEncoding) return NewNSPointVXR(value.pointValue());
  for (const ForeignStructure& structure : foreignStructures()) {
    if (encoding != structure.encoding) continue;
    if (!value.respondsToSelector(structure.toHost)) return nullptr;
    return static_cast<REALvariant>(sendSelector<void*>(value, structure.toHost));
  }
  return nullptr;
}

template <class Element>
REALarrayOf<Element>* asArray(REALvariant variant) {
  return static_cast<REALarrayOf<Element>*>(static_cast<REALarray>(variant));
}

template <class Element, class Read, class Number>
NSMutableArray numbersFromVariant(REALvariant variant, NSNumber (*makeNumber)(Number)) {
  auto* array = asArray<Element>(variant);
  auto result = NSMutableArray::array();
  const auto readAt = [array](REALinteger index) {
    Read value{};
    REALGetArrayValue(array, index, &value);
    return value;
  };
  addFromHost(result, REALGetArrayUBound(array), readAt,
              [makeNumber](Read value) { return makeNumber(static_cast<Number>(value)); });
  return result;
}

template <class Element, class Converted>
NSMutableArray handlesFromVariant(REALvariant variant, Converted (*convert)(Element)) {
  auto* array = asArray<Element>(variant);
  auto result = NSMutableArray::array();
  const auto readAt = [array](REALinteger index) {
    Element value = nullptr;
    REALGetArrayValue(array, index, &value);
    return adoptHost(value);
  };
  addFromHost(result, REALGetArrayUBound(array), readAt,
              [convert](const HostRef<Element>& element) { return convert(element.get()); });
  return result;
}

NSObject objectFromString(REALvariant variant) {
  NSString string = NewNSString(adoptHost(GetVariantString(variant)).get());
  return string ? string : ""_ns;
}

}  // namespace

REALvariant NewVariantFromNSObject(NSObject object) {
  if (!object || object == NSNull::null()) return nullptr;
  const NestingLevel level;
  if (object.isKindOfClass("NSArray"_class)) return variantFromArray(object.as<NSArray>());
  if (object.isKindOfClass("NSString"_class)) return variantFromString(object.as<NSString>());
  if (object.isKindOfClass("NSData"_class)) return NSDataRB(object.as<NSData>());
  if (object.isKindOfClass("NSNumber"_class)) return variantFromNumber(object.as<NSNumber>());
  if (object.isKindOfClass("NSDate"_class)) return NSDateRB(object.as<NSDate>());
  if (object.isKindOfClass("NSDictionary"_class)) return NSDictionaryRB(object.as<NSDictionary>());
  if (object.isKindOfClass("NSURL"_class)) return variantFromURL(object.as<NSURL>());
  if (object.isKindOfClass("NSValue"_class)) return variantFromValue(object.as<NSValue>());
  if (Class wrapper = objectWrapperClass(); wrapper && object.isKindOfClass(wrapper)) {
    return static_cast<REALvariant>(send<void*>(object, "unwrap"_sel));
  }
  return NewNSObjectVXR(object);
}

NSObject GetNumberOrDateAsNSObject(REALvariant variant, std::int32_t type) {
  switch (type) {
    case kVariantInteger:
    case kVariantIntegerValued:
      return NSNumber::numberWithLong(GetVariantInteger(variant));
    case kVariantInt64:
      return NSNumber::numberWithLongLong(GetVariantLong(variant));
    case kVariantSingle:
      return NSNumber::numberWithFloat(GetVariantSingle(variant));
    case kVariantDouble:
      return NSNumber::numberWithDouble(GetVariantDouble(variant));
    case kVariantDate:
      return NewNSDateFromVariant(variant);
    default:
      return nullptr;
  }
}

NSObject GetVariantAsNSObject(REALvariant variant) {
  if (variant == nullptr) return nullptr;
  const NestingLevel level;
  const std::int32_t type = GetVariantType(variant);
  switch (type) {
    case kVariantBoolean:
      return NSNumber::numberWithBool(static_cast<signed char>(GetVariantInteger(variant)) != 0);
    case kVariantString:
      return objectFromString(variant);
    case kVariantObject:
      return GetObjectAsNSObject(variant);
    case kVariantArray + kVariantInteger:
      return numbersFromVariant<std::int32_t, int>(variant, NSNumber::numberWithLong);
    case kVariantArray + kVariantInt64:
      return numbersFromVariant<std::int64_t, std::int64_t>(variant, NSNumber::numberWithLongLong);
    case kVariantArray + kVariantSingle:
      return numbersFromVariant<float, float>(variant, NSNumber::numberWithFloat);
    case kVariantArray + kVariantDouble:
      return numbersFromVariant<double, double>(variant, NSNumber::numberWithDouble);
    case kVariantArray + kVariantBoolean:
      return numbersFromVariant<bool, signed char>(variant, NSNumber::numberWithBool);
    case kVariantArray + kVariantDate:
      return handlesFromVariant<REALobject>(variant, NewNSDate);
    case kVariantArray + kVariantString:
      return handlesFromVariant<REALstring>(variant, NewNSString);
    case kVariantArray + kVariantObject:
      return handlesFromVariant<REALobject>(variant, GetVariantAsNSObject);
    default:
      return GetNumberOrDateAsNSObject(variant, type);
  }
}

NSObject GetObjectAsNSObject(REALobject object) {
  if (IsMemoryBlock(object)) return NewNSData(static_cast<REALmemoryBlock>(object));
  if (IsFolderItem(object)) return NewNSURLfile(static_cast<REALfolderItem>(object));
  if (IsDictionary(object)) return NewNSDictionary(static_cast<REALdictionary>(object));
  for (const char* className : kHoldingClasses) {
    if (REALObjectIsA(object, className)) return wrapped<NSObject>(object);
  }
  if (REALObjectIsA(object, "NSSizeVXR")) return NSValue::valueWithSize(GetNSSize(object));
  if (REALObjectIsA(object, "NSRectVXR")) return NSValue::valueWithRect(GetNSRect(object));
  if (REALObjectIsA(object, "NSRangeVXR")) return NSValue::valueWithRange(GetNSRange(object));
  if (REALObjectIsA(object, "NSPointVXR")) return NSValue::valueWithPoint(GetNSPoint(object));
  for (const ForeignStructure& structure : foreignStructures()) {
    if (REALObjectIsA(object, structure.className)) {
      return sendSelector<NSObject>("NSValue"_class, structure.fromHost, static_cast<void*>(object));
    }
  }
  if (REALObjectIsA(object, "WebPolicyDelegateVXR")) return wrapped<NSObject>(object);
  return send<NSObject>(objectWrapperClass(), "wrap:"_sel, static_cast<void*>(object));
}
