#pragma once

#include <string>

// What the user's locale says of names and addresses.
namespace contacts {

// kABFirstNameFirst or kABLastNameFirst: the order of the name in LC_NAME, as it is now.
int defaultNameOrdering();

// Two lower-case letters: the country of LC_ADDRESS, "us" where the locale has none.
std::string defaultCountryCode();

}  // namespace contacts
