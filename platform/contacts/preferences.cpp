#include "platform/contacts/preferences.h"

#include "platform/contacts/constants.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cctype>

namespace contacts {

namespace {

// An item of the locale that the environment names; empty when there is no such locale.
std::string localeItem(int categoryMask, nl_item item) {
  locale_t locale = newlocale(categoryMask, "", nullptr);
  if (locale == nullptr) return {};
  std::string text = nl_langinfo_l(item, locale);
  freelocale(locale);
  return text;
}

}  // namespace

int defaultNameOrdering() {
  // A format as in "%d%t%g%t%m%t%f": %g stands for the given name, %f for the family name.
  const std::string format = localeItem(LC_NAME_MASK, _NL_NAME_NAME_FMT);
  const std::size_t family = format.find("%f");
  const std::size_t given = format.find("%g");
  return family < given ? kABLastNameFirst : kABFirstNameFirst;
}

std::string defaultCountryCode() {
  std::string code = localeItem(LC_ADDRESS_MASK, _NL_ADDRESS_COUNTRY_AB2);
  std::ranges::transform(code, code.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return code.size() == 2 ? code : "us";
}

}  // namespace contacts
