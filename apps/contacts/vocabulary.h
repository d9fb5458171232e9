#pragma once

#include "host/value.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace contacts {

// The plug-in's constants for types of properties.
enum PropertyType : std::int64_t {
  kString = 1,
  kInteger = 2,
  kReal = 3,
  kDate = 4,
  kArray = 5,
  kDictionary = 6,
  kData = 7,
  kDateComponents = 8,
  kMulti = 256,  // added to the type of the entries
};

struct PropertyName {
  std::string name;   // as the contacts keep it
  std::string title;  // as people know it
  std::int64_t type = 0;

  [[nodiscard]] bool isMulti() const { return (type & kMulti) != 0; }
  [[nodiscard]] std::int64_t entryType() const { return type & ~std::int64_t{kMulti}; }
};

// "string", "multi dictionary"
std::string typeText(std::int64_t type);
// Throws Failure for a text that is no type.
std::int64_t typeNamed(std::string_view text);

// What people write for properties, labels and keys, and what the contacts keep for them.
class Vocabulary {
 public:
  // className is that of the records.
  explicit Vocabulary(host::Value book, std::string_view className = "ABPersonVXR");

  [[nodiscard]] const host::Value& book() const { return book_; }
  // In the schema's order.
  [[nodiscard]] const std::vector<PropertyName>& properties() const { return properties_; }
  // By name or title, whatever the case. Throws Failure.
  [[nodiscard]] const PropertyName& property(std::string_view text) const;

  // "mobile" for the label of mobile telephones; a label of the user's own stays as it is.
  [[nodiscard]] std::string labelText(const std::string& label) const;
  [[nodiscard]] std::string labelNamed(std::string_view text) const;
  // "ZIP" for "zip"; a key of the user's own stays as it is.
  [[nodiscard]] std::string keyNamed(std::string_view text) const;

 private:
  host::Value book_;
  std::vector<PropertyName> properties_;
  std::vector<std::pair<std::string, std::string>> labels_;  // label and text
  std::vector<std::string> keys_;
};

}  // namespace contacts
