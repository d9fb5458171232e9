#include "platform/contacts/comparison.h"

#include "platform/contacts/case_folding.h"
#include "platform/contacts/date_values.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/number.h"

#include <optional>
#include <string>

namespace contacts {
namespace {

constexpr double kSecondsInDay = 86400;

bool isOfDays(ABSearchComparison asked) { return asked >= kABWithinIntervalAroundToday; }

bool isNumber(ABPropertyType type) { return type == kABIntegerProperty || type == kABRealProperty; }
bool isDay(ABPropertyType type) { return type == kABDateProperty || type == kABDateComponentsProperty; }

bool hasOrder(NSComparisonResult order, ABSearchComparison asked) {
  switch (asked) {
    case kABLessThan:
      return order < 0;
    case kABLessThanOrEqual:
      return order <= 0;
    case kABGreaterThan:
      return order > 0;
    case kABGreaterThanOrEqual:
      return order >= 0;
    default:
      return order == 0;
  }
}

bool comparesTexts(NSObject value, ABSearchComparison asked, NSObject searched) {
  std::u16string text = unitsOf(value.as<NSString>());
  std::u16string part = unitsOf(searched.as<NSString>());
  const bool ignoresCase = asked == kABEqualCaseInsensitive || asked == kABContainsSubStringCaseInsensitive ||
                           asked == kABPrefixMatchCaseInsensitive || asked == kABSuffixMatchCaseInsensitive;
  if (ignoresCase) {
    text = caseFolded(text);
    part = caseFolded(part);
  }
  switch (asked) {
    case kABContainsSubString:
    case kABContainsSubStringCaseInsensitive:
      return text.find(part) != std::u16string::npos;
    case kABPrefixMatch:
    case kABPrefixMatchCaseInsensitive:
      return text.starts_with(part);
    case kABSuffixMatch:
    case kABSuffixMatchCaseInsensitive:
      return text.ends_with(part);
    default:
      return hasOrder(text.compare(part), asked);
  }
}

std::optional<vcard::Date> dayIn(NSObject value) {
  if (value.isKindOfClass("NSDate"_class)) return dayOf(value.as<NSDate>());
  return dateOf(value.as<NSDateComponents>());
}

bool liesWithin(NSObject value, ABSearchComparison asked, double seconds) {
  const std::optional<vcard::Date> day = dayIn(value);
  if (!day) return false;
  const bool isAround = asked == kABWithinIntervalAroundToday || asked == kABWithinIntervalAroundTodayYearless;
  const vcard::DaySpan span{today(), seconds / kSecondsInDay, isAround};
  const bool isYearless = asked == kABWithinIntervalAroundTodayYearless || asked == kABWithinIntervalFromTodayYearless;
  return isYearless ? vcard::isWithinInAnyYear(span, *day) : vcard::isWithin(span, *day);
}

bool comparesDates(NSObject value, ABSearchComparison asked, NSObject searched) {
  // Components are a day; a date is compared with it as the noon that the day has as a date.
  auto asDate = [](NSObject date) {
    if (date.isKindOfClass("NSDate"_class)) return Retained<NSObject>::share(date);
    const std::optional<vcard::Date> day = dateOf(date.as<NSDateComponents>());
    return day ? newDate(*day) : Retained<NSObject>();
  };
  const Retained<NSObject> first = asDate(value);
  const Retained<NSObject> second = asDate(searched);
  return first && second && hasOrder(first->as<NSDate>().compare(second->as<NSDate>()), asked);
}

}  // namespace

bool isOfText(ABSearchComparison asked) {
  return (asked >= kABEqualCaseInsensitive && asked <= kABPrefixMatchCaseInsensitive) || asked == kABSuffixMatch ||
         asked == kABSuffixMatchCaseInsensitive;
}

Comparison comparisonOf(ABSearchComparison comparison) {
  switch (comparison) {
    case kABNotEqual:
      return {kABEqual, true};
    case kABDoesNotContainSubString:
      return {kABContainsSubString, true};
    case kABDoesNotContainSubStringCaseInsensitive:
      return {kABContainsSubStringCaseInsensitive, true};
    case kABNotEqualCaseInsensitive:
      return {kABEqualCaseInsensitive, true};
    case kABNotWithinIntervalAroundToday:
      return {kABWithinIntervalAroundToday, true};
    case kABNotWithinIntervalAroundTodayYearless:
      return {kABWithinIntervalAroundTodayYearless, true};
    case kABNotWithinIntervalFromToday:
      return {kABWithinIntervalFromToday, true};
    case kABNotWithinIntervalFromTodayYearless:
      return {kABWithinIntervalFromTodayYearless, true};
    default:
      return {comparison, false};
  }
}

bool isComparable(ABPropertyType type, ABSearchComparison asked, NSObject value) {
  const ABPropertyType valueType = elementTypeOf(value);
  if (isOfDays(asked)) return isDay(type) && isNumber(valueType);
  if (asked == kABBitsInBitFieldMatch) return type == kABIntegerProperty && isNumber(valueType);
  if (isOfText(asked)) return type == kABStringProperty && valueType == kABStringProperty;
  return type == valueType || (isNumber(type) && isNumber(valueType)) || (isDay(type) && isDay(valueType));
}

bool compares(NSObject value, ABSearchComparison asked, NSObject searched) {
  const ABPropertyType type = elementTypeOf(value);
  if (isOfDays(asked)) return liesWithin(value, asked, searched.as<NSNumber>().doubleValue());
  if (asked == kABBitsInBitFieldMatch) {
    const long long bits = searched.as<NSNumber>().longLongValue();
    return (value.as<NSNumber>().longLongValue() & bits) == bits;
  }
  if (type == kABStringProperty) return comparesTexts(value, asked, searched);
  if (isNumber(type)) return hasOrder(value.as<NSNumber>().compare(searched.as<NSNumber>()), asked);
  if (isDay(type) && !(asked == kABEqual && type == elementTypeOf(searched)))
    return comparesDates(value, asked, searched);
  return asked == kABEqual && send<bool>(value, "isEqual:"_sel, searched);
}

}  // namespace contacts
