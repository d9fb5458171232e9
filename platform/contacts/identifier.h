#pragma once

#include <string>
#include <string_view>

// Identifiers of records and of entries: upper-case UUIDs.
namespace contacts {

std::string newIdentifier();
// The same for the same seed, now and ever.
std::string derivedIdentifier(std::string_view seed);

}  // namespace contacts
