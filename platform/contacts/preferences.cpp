#include "platform/contacts/preferences.h"

#include "platform/contacts/constants.h"

#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <utility>

namespace contacts {

namespace {

// An item of the locale that the environment names for a category. To load it takes a hundred times as long as to see
// that the environment names the same as before.
class LocaleItem {
 public:
  LocaleItem(const char* category, int mask, nl_item item) : category_(category), mask_(mask), item_(item) {}

  // Empty when there is no such locale.
  const std::string& text() {
    std::string names;
    for (const char* variable : {"LC_ALL", category_, "LANG"}) {
      const char* name = std::getenv(variable);
      names.append(name == nullptr ? "" : name).append(1, '\n');
    }
    if (names != names_) load();
    names_ = std::move(names);
    return text_;
  }

 private:
  void load() {
    text_.clear();
    locale_t locale = newlocale(mask_, "", nullptr);
    if (locale == nullptr) return;
    text_ = nl_langinfo_l(item_, locale);
    freelocale(locale);
  }

  const char* category_;
  int mask_;
  nl_item item_;
  std::string names_;
  std::string text_;
};

}  // namespace

int defaultNameOrdering() {
  // A format as in "%d%t%g%t%m%t%f": %g stands for the given name, %f for the family name.
  thread_local LocaleItem item("LC_NAME", LC_NAME_MASK, _NL_NAME_NAME_FMT);
  const std::string& format = item.text();
  const std::size_t family = format.find("%f");
  const std::size_t given = format.find("%g");
  return family < given ? kABLastNameFirst : kABFirstNameFirst;
}

std::string defaultCountryCode() {
  thread_local LocaleItem item("LC_ADDRESS", LC_ADDRESS_MASK, _NL_ADDRESS_COUNTRY_AB2);
  std::string code = item.text();
  std::ranges::transform(code, code.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return code.size() == 2 ? code : "us";
}

}  // namespace contacts
