#include "platform/foundation/cf_string.h"

#include "platform/foundation/encodings.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/normalization.h"
#include "platform/foundation/string_object.h"

#include <cassert>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

std::u16string_view unitsOf(CFStringRef string) { return foundation::unitsOf(bridge<NSString>(string)); }

CFStringRef create(std::optional<std::u16string> units) {
  if (!units) return nullptr;
  return bridge<CFStringRef>(foundation::newString(*std::move(units)).leak());
}

}  // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  std::string_view bytes(text);
  if (encoding == kCFStringEncodingUTF8 && bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return create(foundation::decode(bytes, encoding, false));
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const char16_t* characters, CFIndex count) {
  return create(std::u16string(characters, static_cast<std::size_t>(count)));
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const std::uint8_t* bytes, CFIndex count, CFStringEncoding encoding,
                                    Boolean isExternal) {
  const std::string_view view(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
  return create(foundation::decode(view, encoding, isExternal != 0));
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef string) {
  return bridge<CFMutableStringRef>(bridge<NSString>(string).mutableCopy());
}

CFIndex CFStringGetLength(CFStringRef string) { return static_cast<CFIndex>(unitsOf(string).size()); }

void CFStringGetCharacters(CFStringRef string, CFRange range, char16_t* buffer) {
  bridge<NSString>(string).getCharacters(
      buffer, NSMakeRange(static_cast<NSUInteger>(range.location), static_cast<NSUInteger>(range.length)));
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding encoding) {
  if (size < 1) return false;
  const auto written = foundation::encode(unitsOf(string), encoding, buffer, static_cast<std::size_t>(size - 1));
  buffer[written.value_or(0)] = '\0';
  return written.has_value();
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
  const auto text = bridge<NSMutableString>(string);
  assert(text.isKindOfClass("NSMutableString"_class));
  if (form != kCFStringNormalizationFormD) {
    NSException::raise(NSInvalidArgumentException,
                       "CFStringNormalize: form " + std::to_string(form) + ", expected 0 (D)");
  }
  foundation::setUnits(text, foundation::decomposed(unitsOf(string)));
}
