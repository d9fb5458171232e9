#pragma once

#include "platform/contacts/comparison.h"
#include "platform/contacts/record.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/search_element.h"
#include "platform/contacts/stored_card.h"
#include "platform/contacts/text_digest.h"
#include "platform/foundation/array.h"
#include "platform/objc/retained.h"

#include <string>
#include <vector>

namespace contacts {

// A condition on one property, or a conjunction of other elements.
struct SearchElementObject : objc::Object {
  [[nodiscard]] bool matchesRecord(ABRecord record) const;
  [[nodiscard]] NSString description() const;

  bool isConjunction = false;
  ABSearchConjunction conjunction = kABSearchAnd;
  std::vector<Retained<ABSearchElement>> children;

  bool isForGroups = false;
  Retained<NSString> property;
  ABPropertyType type = kABErrorInProperty;
  Retained<NSString> label;  // nil for any
  Retained<NSString> key;    // nil for any
  Retained<NSObject> value;  // nil: whether there is one at all
  ABSearchComparison comparison = kABEqual;
  TextDigest needed;       // a record can't match without having it; empty when that can't be told
  std::string neededInId;  // the same of the records' ids, case ignored
  // By child of an Or: whether it needs just what is needed above, mostly one text looked for in many properties.
  std::vector<bool> childrenInNeed;

  // False when no record of that card, as it was read, matches.
  [[nodiscard]] bool mayMatch(const CardOutline& card) const;

 private:
  template <class Test>
  bool holdsForChildren(bool hasNeeded, Test test) const;
  [[nodiscard]] bool matches(ABRecord record) const;
  [[nodiscard]] bool matchesValue(NSObject found) const;
};

// The same of any object that answers like an element.
bool mayMatch(ABSearchElement search, const CardOutline& card);

// What searchElementForProperty:label:key:value:comparison: answers, autoreleased.
ABSearchElement searchElementFor(bool isForGroups, const Schema& schema, NSString property, NSString label,
                                 NSString key, NSObject value, NSInteger comparison);

}  // namespace contacts
