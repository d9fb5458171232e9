#include "platform/contacts/schema.h"

namespace contacts {

Schema::Schema(std::initializer_list<Property> builtIn) : properties_(builtIn) {
  for (const Property& property : properties_) byName_.emplace(property.name, &property);
}

const Property* Schema::find(std::string_view name) const {
  auto found = byName_.find(name);
  return found == byName_.end() ? nullptr : found->second;
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
