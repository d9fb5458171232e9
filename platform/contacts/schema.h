#pragma once

#include "platform/contacts/constants.h"

#include <deque>
#include <initializer_list>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace contacts {

struct PropertyView;
struct TextProperty;

struct Property {
  std::string name;
  ABPropertyType type;
  bool isCustom = false;

  // The schema finds these for the framework's own properties; null where there is none.
  const PropertyView* view = nullptr;
  const TextProperty* text = nullptr;
  NSString constant = {};  // the name
};

// One that a property can have.
constexpr bool isPropertyType(ABPropertyType type) {
  const ABPropertyType elementType = type & ~kABMultiValueMask;
  return elementType >= kABStringProperty && elementType <= kABDateComponentsProperty;
}

// The properties of one kind of record, in order: the framework's own and then the custom ones, which come and go. A
// property keeps its address for the life of the process, also when it is no longer one. Any thread may use it.
class Schema {
 public:
  explicit Schema(std::initializer_list<Property> builtIn);

  // Null when there is no such property.
  [[nodiscard]] const Property* find(std::string_view name) const;
  // The same, at once for one of the framework's constants.
  [[nodiscard]] const Property* find(NSString name) const;
  [[nodiscard]] std::vector<const Property*> properties() const;

  // From now on these are the custom properties. One that was there before stays the same property; one that comes back
  // is another.
  void setCustom(const std::vector<Property>& custom);

 private:
  std::unordered_map<objc::Object*, const Property*> byConstant_;  // never changes

  mutable std::shared_mutex lock_;
  std::deque<Property> known_;  // all that ever were
  std::vector<const Property*> properties_;
  std::unordered_map<std::string_view, const Property*> byName_;
};

Schema& personSchema();
Schema& groupSchema();

}  // namespace contacts
