#include "platform/contacts/search_element.h"

#include "platform/contacts/case_folding.h"
#include "platform/contacts/custom_properties.h"
#include "platform/contacts/entry_codec.h"
#include "platform/contacts/load.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/search_element_object.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <utility>

namespace contacts {
namespace {

// Null for what only answers like an element.
const SearchElementObject* elementObject(ABSearchElement element) {
  const bool isOwn = element.isKindOfClass("ABSearchElement"_class);
  return isOwn ? static_cast<const SearchElementObject*>(element.get()) : nullptr;
}

void findNeeded(SearchElementObject& element) {
  element.childrenInNeed.resize(element.children.size());
  if (element.conjunction != kABSearchOr) return;
  for (std::size_t i = 0; i < element.children.size(); ++i) {
    const SearchElementObject* child = elementObject(element.children[i].get());
    if (child == nullptr || child->isConjunction || comparisonOf(child->comparison).isNegated) continue;
    if (child->needed == TextDigest()) continue;
    if (element.needed == TextDigest()) element.needed = child->needed;
    element.childrenInNeed[i] = child->needed == element.needed;
  }
}

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
  findNeeded(*element);
  return Retained<ABSearchElement>(owner).autorelease();
}

constexpr std::string_view kMessages = "InstantMessage";

// Whether the property's texts are in its record's digest.
bool isDigested(const Property& property) {
  if (property.isCustom || property.name == "UID") return false;
  const ABPropertyType elementType = property.type & ~kABMultiValueMask;
  return elementType == kABStringProperty || elementType == kABDictionaryProperty;
}

// What a card must have of a text so that the name of a service in it has all of it. The names end with "Instant",
// which cards don't say.
std::u16string withoutServiceEnd(std::u16string text) {
  constexpr std::u16string_view kEnd = u"instant";
  for (std::size_t length = kEnd.size(); length > 0; --length) {
    if (!text.ends_with(kEnd.substr(0, length))) continue;
    text.resize(text.size() - length);
    break;
  }
  return text;
}

// Whether what matches is the text or contains it.
bool looksForText(NSObject value, ABSearchComparison asked) {
  return value && value.isKindOfClass("NSString"_class) && (asked == kABEqual || isOfText(asked));
}

// Empty for what isn't looked for as a text.
TextDigest digestOf(NSObject value, ABSearchComparison asked, const Property& property) {
  TextDigest digest;
  if (!looksForText(value, asked)) return digest;
  std::u16string units = unitsOf(value.as<NSString>());
  if (property.name == kMessages) {
    units = caseFolded(units);
    if (isInServiceName(units)) return digest;
    units = withoutServiceEnd(std::move(units));
  }
  const bool hasSurrogates = std::ranges::any_of(units, [](char16_t unit) { return unit >= 0xD800 && unit < 0xE000; });
  if (!hasSurrogates) digest.add(units);
  return digest;
}

// Letters beyond ASCII may be the same as some of ASCII but for their case.
std::string partOfId(NSObject value, ABSearchComparison asked) {
  if (!looksForText(value, asked)) return {};
  std::string text = utf8Of(value.as<NSString>());
  return vcard::isAscii(text) ? text : std::string();
}

bool idMayHave(const CardOutline& card, std::string_view part) {
  if (part.empty()) return true;
  const std::string id = card.uniqueId();
  return !vcard::isAscii(id) || vcard::containsIgnoringCase(id, part);
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
  const bool hasConstant = known != nullptr && known->constant;
  element->property =
      hasConstant ? Retained<NSString>::share(known->constant) : Retained<NSString>::adopt(property.copy());
  element->type = known == nullptr ? kABErrorInProperty : known->type;
  if (label) element->label = Retained<NSString>::adopt(label.copy());
  if (key) element->key = Retained<NSString>::adopt(key.copy());
  element->value = Retained<NSObject>::share(value);
  element->comparison = static_cast<ABSearchComparison>(comparison);
  const ABSearchComparison asked = comparisonOf(element->comparison).asked;
  if (known != nullptr && isDigested(*known)) element->needed = digestOf(value, asked, *known);
  if (known != nullptr && known->name == "UID") element->neededInId = partOfId(value, asked);
  return owner.autorelease();
}

bool SearchElementObject::matchesRecord(ABRecord record) const {
  if (!record) NSException::raise(NSInvalidArgumentException, "matchesRecord: the record is nil");
  if (!isConjunction) return matches(record);
  return holdsForChildren(objectOf(record).mayHave(needed),
                          [record](ABSearchElement child) { return child.matchesRecord(record); });
}

bool SearchElementObject::mayMatch(const CardOutline& card) const {
  const bool hasNeeded = card.digest->mayHave(needed);
  if (isConjunction) {
    return holdsForChildren(hasNeeded, [&card](ABSearchElement child) { return contacts::mayMatch(child, card); });
  }
  if (card.isGroup != isForGroups) return false;
  return comparisonOf(comparison).isNegated || (hasNeeded && idMayHave(card, neededInId));
}

template <class Test>
bool SearchElementObject::holdsForChildren(bool hasNeeded, Test test) const {
  const bool isOr = conjunction == kABSearchOr;
  for (std::size_t i = 0; i < children.size(); ++i) {
    const bool holds = (hasNeeded || !childrenInNeed[i]) && test(children[i].get());
    if (holds == isOr) return isOr;
  }
  return !isOr;
}

bool mayMatch(ABSearchElement search, const CardOutline& card) {
  const SearchElementObject* element = elementObject(search);
  return element == nullptr || element->mayMatch(card);
}

// A negated comparison matches when none of the values that it looks at has what it denies.
bool SearchElementObject::matches(ABRecord record) const {
  if (objectOf(record).isGroup() != isForGroups) return false;
  const auto [asked, isNegated] = comparisonOf(comparison);
  const ABPropertyType elementType = type & ~kABMultiValueMask;
  const bool isDictionary = elementType == kABDictionaryProperty;
  if (value.get() && !isDictionary && !isComparable(elementType, asked, value.get())) return false;

  if (!objectOf(record).mayHave(needed) || !idMayHave(objectOf(record).card(), neededInId)) return isNegated;

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
