#include "platform/contacts/search_element.h"

#include "platform/contacts/custom_properties.h"
#include "platform/contacts/load.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/search_element_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>

namespace contacts {
namespace {

ABSearchElement searchElementForConjunction(Class, NSInteger conjunction, NSArray children) {
  if (!children || children.count() == 0) {
    NSException::raise(NSInvalidArgumentException, "searchElementForConjunction:children: there are no children");
  }
  if (conjunction != kABSearchAnd && conjunction != kABSearchOr) {
    NSException::raise(NSInvalidArgumentException,
                       "searchElementForConjunction:children: unknown conjunction " + std::to_string(conjunction));
  }
  auto* element = objc::createInstance<SearchElementObject>("ABSearchElement"_class);
  const auto owner = Retained<ABSearchElement>::adopt(ABSearchElement(element));
  element->isConjunction = true;
  element->conjunction = conjunction;
  for (NSUInteger i = 0; i < children.count(); ++i) {
    element->children.push_back(Retained<ABSearchElement>::share(children.objectAtIndex(i).as<ABSearchElement>()));
  }
  return Retained<ABSearchElement>(owner).autorelease();
}

// Whether the property's texts are in its record's digest.
bool isDigested(const Property& property) {
  if (property.isCustom || property.name == "UID" || property.name.ends_with("Instant")) return false;
  return property.type == kABStringProperty || property.type == kABMultiStringProperty || property.name == "Address";
}

// Of a text that a value is or contains; empty for any other comparison.
TextDigest digestOf(NSObject value, ABSearchComparison asked) {
  TextDigest digest;
  if (!value || !value.isKindOfClass("NSString"_class) || (asked != kABEqual && !isOfText(asked))) return digest;
  const std::u16string units = unitsOf(value.as<NSString>());
  const bool hasSurrogates = std::ranges::any_of(units, [](char16_t unit) { return unit >= 0xD800 && unit < 0xE000; });
  if (!hasSurrogates) digest.add(units);
  return digest;
}

}  // namespace

ABSearchElement searchElementFor(bool isForGroups, const Schema& schema, NSString property, NSString label,
                                 NSString key, NSObject value, NSInteger comparison) {
  const std::string method = "searchElementForProperty:label:key:value:comparison: ";
  if (!property) NSException::raise(NSInvalidArgumentException, method + "the property is nil");
  if (comparison < kABEqual || comparison > kABNotWithinIntervalFromTodayYearless) {
    NSException::raise(NSInvalidArgumentException, method + "unknown comparison " + std::to_string(comparison));
  }
  if (!value && comparison != kABEqual && comparison != kABNotEqual) {
    NSException::raise(NSInvalidArgumentException, method + "nil can be equal or not equal only");
  }
  auto* element = objc::createInstance<SearchElementObject>("ABSearchElement"_class);
  auto owner = Retained<ABSearchElement>::adopt(ABSearchElement(element));
  const Property* known = findProperty(schema, property);
  element->isForGroups = isForGroups;
  element->property = Retained<NSString>::adopt(property.copy());
  element->type = known == nullptr ? kABErrorInProperty : known->type;
  if (label) element->label = Retained<NSString>::adopt(label.copy());
  if (key) element->key = Retained<NSString>::adopt(key.copy());
  element->value = Retained<NSObject>::share(value);
  element->comparison = static_cast<ABSearchComparison>(comparison);
  if (known != nullptr && isDigested(*known))
    element->needed = digestOf(value, comparisonOf(element->comparison).asked);
  return owner.autorelease();
}

bool SearchElementObject::matchesRecord(ABRecord record) const {
  if (!record) NSException::raise(NSInvalidArgumentException, "matchesRecord: the record is nil");
  if (!isConjunction) return matches(record);
  auto matchesChild = [record](const Retained<ABSearchElement>& child) { return child->matchesRecord(record); };
  return conjunction == kABSearchAnd ? std::ranges::all_of(children, matchesChild)
                                     : std::ranges::any_of(children, matchesChild);
}

bool mayMatch(ABSearchElement search, const StoredCard& card) {
  if (!search.isKindOfClass("ABSearchElement"_class)) return true;
  const auto& element = *static_cast<const SearchElementObject*>(search.get());
  if (element.isConjunction) {
    auto mayMatchChild = [&](const Retained<ABSearchElement>& child) { return mayMatch(child.get(), card); };
    return element.conjunction == kABSearchAnd ? std::ranges::all_of(element.children, mayMatchChild)
                                               : std::ranges::any_of(element.children, mayMatchChild);
  }
  return card.isGroup == element.isForGroups &&
         (comparisonOf(element.comparison).isNegated || card.digest.mayHave(element.needed));
}

// A negated comparison matches when none of the values that it looks at has what it denies.
bool SearchElementObject::matches(ABRecord record) const {
  if (objectOf(record).isGroup() != isForGroups) return false;
  const auto [asked, isNegated] = comparisonOf(comparison);
  const ABPropertyType elementType = type & ~kABMultiValueMask;
  const bool isDictionary = elementType == kABDictionaryProperty;
  if (value.get() && !isDictionary && !isComparable(elementType, asked, value.get())) return false;

  if (!objectOf(record).mayHave(needed)) return isNegated;

  const NSObject found = record.valueForProperty(property.get());
  bool isFound = false;
  if (found && (type & kABMultiValueMask) != 0) {
    const auto& entries = objectOf(found.as<ABMultiValue>()).entries;
    isFound = std::ranges::any_of(entries, [this](const MultiValueEntry& entry) {
      return (!label || entry.label->isEqualToString(label.get())) && matchesValue(entry.value.get());
    });
  } else if (found) {
    isFound = matchesValue(found);
  }
  // Asked for nil: whether there is nothing.
  return value ? isFound != isNegated : isFound == isNegated;
}

bool SearchElementObject::matchesValue(NSObject found) const {
  const ABSearchComparison asked = comparisonOf(comparison).asked;
  auto isMatch = [&](NSObject single) {
    return !value || (isComparable(elementTypeOf(single), asked, value.get()) && compares(single, asked, value.get()));
  };
  if (!found.isKindOfClass("NSDictionary"_class)) return isMatch(found);
  const auto dictionary = found.as<NSDictionary>();
  if (key) {
    const NSObject part = dictionary.objectForKey(key.get());
    return part && isMatch(part);
  }
  const NSArray keys = dictionary.allKeys();
  for (NSUInteger i = 0; i < keys.count(); ++i) {
    if (isMatch(dictionary.objectForKey(keys.objectAtIndex(i)))) return true;
  }
  return isMatch(found);
}

NSString SearchElementObject::description() const {
  std::string text;
  if (isConjunction) {
    for (const Retained<ABSearchElement>& child : children) {
      if (!text.empty()) text += conjunction == kABSearchAnd ? " AND " : " OR ";
      text += utf8Of(child->description());
    }
    return makeString("(" + text + ")");
  }
  text = (isForGroups ? "ABGroup " : "ABPerson ") + utf8Of(property.get());
  if (label) text += " label " + utf8Of(label.get());
  if (key) text += " key " + utf8Of(key.get());
  text += " comparison " + std::to_string(comparison) + " value " +
          (value ? utf8Of(value->description()) : std::string("nil"));
  return makeString(text);
}

void registerSearchElement() {
  objc::ClassBuilder::define<SearchElementObject>("ABSearchElement", "NSObject")
      .classMethod<&searchElementForConjunction>("searchElementForConjunction:children:")
      .method<&SearchElementObject::matchesRecord>("matchesRecord:")
      .method<&SearchElementObject::description>("description");
}

}  // namespace contacts
