#include "platform/foundation/format.h"

#include "platform/foundation/exception.h"
#include "platform/foundation/string_object.h"

#include <string_view>

namespace {

[[noreturn]] void raiseBadFormat(NSString format, const std::string& problem) {
  NSException::raise(NSInvalidArgumentException, "format \"" + foundation::utf8Of(format) + "\": " + problem);
}

void appendDescription(std::u16string& text, NSObject argument) {
  const NSString description = argument.description();
  text += description ? foundation::unitsOf(description) : std::u16string_view(u"(null)");
}

}  // namespace

std::u16string foundation::formatted(NSString format, const NSObject* arguments, NSUInteger count) {
  if (!format) NSException::raise(NSInvalidArgumentException, "a format is nil");
  std::u16string text;
  NSUInteger used = 0;
  const std::u16string_view units = unitsOf(format);
  std::size_t at = 0;
  for (std::size_t percent; (percent = units.find(u'%', at)) != units.npos; at = percent + 2) {
    text += units.substr(at, percent - at);
    const char16_t directive = percent + 1 < units.size() ? units[percent + 1] : u'\0';
    if (directive == u'%') {
      text += u'%';
    } else if (directive != u'@') {
      raiseBadFormat(format, "unknown directive at " + std::to_string(percent) + ", expected %@ or %%");
    } else if (used == count) {
      raiseBadFormat(format, "more directives than its " + std::to_string(count) + " arguments");
    } else {
      appendDescription(text, arguments[used++]);
    }
  }
  text += units.substr(at);
  return text;
}
