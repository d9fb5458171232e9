#include "platform/contacts/schema.h"

#include "platform/contacts/property_views.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/text_properties.h"

#include <algorithm>
#include <mutex>

namespace contacts {

Schema::Schema(std::initializer_list<Property> builtIn) : known_(builtIn) {
  for (Property& property : known_) {
    property.view = findPropertyView(property.name);
    const auto text = std::ranges::find(kTextProperties, property.name, &TextProperty::property);
    if (text != kTextProperties.end()) property.text = &*text;
    property.constant = NSString(NSConstantString(property.name.c_str()));
    byConstant_.emplace(property.constant.get(), &property);
    properties_.push_back(&property);
    byName_.emplace(property.name, &property);
  }
}

const Property* Schema::find(std::string_view name) const {
  const std::shared_lock guard(lock_);
  auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
}

const Property* Schema::find(NSString name) const {
  const auto found = byConstant_.find(name.get());
  return found == byConstant_.end() ? find(utf8Of(name)) : found->second;
}

std::vector<const Property*> Schema::properties() const {
  const std::shared_lock guard(lock_);
  return properties_;
}

void Schema::setCustom(const std::vector<Property>& custom) {
  const std::scoped_lock guard(lock_);
  std::unordered_map<std::string_view, const Property*> old;
  std::erase_if(properties_, [&](const Property* property) {
    if (property->isCustom) old.emplace(property->name, property);
    return property->isCustom;
  });
  for (const auto& [name, property] : old) byName_.erase(name);
  for (const Property& property : custom) {
    if (byName_.contains(property.name)) continue;
    auto same = old.find(property.name);
    const bool isOld = same != old.end() && same->second->type == property.type;
    const Property* kept = isOld ? same->second : &known_.emplace_back(Property{property.name, property.type, true});
    properties_.push_back(kept);
    byName_.emplace(kept->name, kept);
  }
}

Schema& personSchema() {
  static auto* schema = new Schema{
      {"UID", kABStringProperty},
      {"Creation", kABDateProperty},
      {"Modification", kABDateProperty},
      {"First", kABStringProperty},
      {"Last", kABStringProperty},
      {"FirstPhonetic", kABStringProperty},
      {"LastPhonetic", kABStringProperty},
      {"Nickname", kABStringProperty},
      {"MaidenName", kABStringProperty},
      {"Birthday", kABDateProperty},
      {"BirthdayComponents", kABDateComponentsProperty},
      {"Organization", kABStringProperty},
      {"JobTitle", kABStringProperty},
      {"HomePage", kABStringProperty},
      {"URLs", kABMultiStringProperty},
      {"calendarURIs", kABMultiStringProperty},
      {"Email", kABMultiStringProperty},
      {"Address", kABMultiDictionaryProperty},
      {"ABDate", kABMultiDateProperty},
      {"ABDateComponents", kABMultiDateComponentsProperty},
      {"ABRelatedNames", kABMultiStringProperty},
      {"ABDepartment", kABStringProperty},
      {"ABPersonFlags", kABIntegerProperty},
      {"Phone", kABMultiStringProperty},
      {"AIMInstant", kABMultiStringProperty},
      {"JabberInstant", kABMultiStringProperty},
      {"MSNInstant", kABMultiStringProperty},
      {"YahooInstant", kABMultiStringProperty},
      {"ICQInstant", kABMultiStringProperty},
      {"InstantMessage", kABMultiDictionaryProperty},
      {"SocialProfile", kABMultiDictionaryProperty},
      {"Note", kABStringProperty},
      {"Middle", kABStringProperty},
      {"MiddlePhonetic", kABStringProperty},
      {"Title", kABStringProperty},
      {"Suffix", kABStringProperty},
  };
  return *schema;
}

Schema& groupSchema() {
  static auto* schema = new Schema{
      {"UID", kABStringProperty},
      {"Creation", kABDateProperty},
      {"Modification", kABDateProperty},
      {"GroupName", kABStringProperty},
  };
  return *schema;
}

}  // namespace contacts
