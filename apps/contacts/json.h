#pragma once

#include "apps/contacts/vocabulary.h"
#include "host/describe.h"
#include "host/value.h"

#include <string>
#include <utility>
#include <vector>

// Records as JSON: {"id", "kind", "name", then each property that has a value, under its name}. Properties with several
// values are arrays of {"label", "value", "id"}, the primary one's with "primary"; days "1980-05-03"; data base64.
namespace contacts {

std::string jsonOf(const host::Value& record, const Vocabulary& vocabulary);
std::string jsonOf(const std::vector<host::Value>& records, const Vocabulary& vocabulary);
using NamedTexts = std::vector<std::pair<std::string, std::string>>;
std::string jsonOf(const std::vector<NamedTexts>& objects);
std::string jsonLine(const NamedTexts& object);

std::string jsonOf(const std::vector<std::string>& texts);
std::string jsonOf(const host::ClassDescription& description);

}  // namespace contacts
