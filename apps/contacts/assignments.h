#pragma once

#include "apps/contacts/vocabulary.h"
#include "host/value.h"

#include <string>
#include <string_view>

namespace contacts {

// What to do to a record, written PROPERTY[:LABEL][.KEY]=VALUE. Of properties with several values, "=" is for the first
// entry of that label and "+=" makes another; without a VALUE, the property, the entry or the key is removed.
struct Assignment {
  std::string property;
  std::string label;
  std::string key;
  std::string value;
  bool isAddition = false;
};

// Throws Failure for a text of another form.
Assignment assignmentFrom(std::string_view text);
// Throws Failure where the record has no such property or entry, or the value doesn't fit.
void apply(const Assignment& assignment, const Vocabulary& vocabulary, const host::Value& record);

}  // namespace contacts
