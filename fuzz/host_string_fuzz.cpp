// Bytes as a host string of each encoding, as Foundation string, as host string. The host of this target makes no
// Foundation strings itself, so that the bridge reads the bytes; what the host would have made is compared.

#include "bridge/strings.h"

#include "frame/host_ref.h"
#include "fuzz/samples.h"
#include "fuzz/started_host.h"
#include "fuzz/target.h"
#include "host/strings.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/objc/retained.h"

#include <array>
#include <optional>
#include <string_view>

namespace {

using Units = std::optional<std::u16string>;

constexpr std::array kEncodings{kEncodingUTF8,  kEncodingUTF16,    kEncodingUTF32,
                                kEncodingASCII, kEncodingMacRoman, kEncodingAsStored};
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view cutAtZero(std::string_view text) { return text.substr(0, text.find('\0')); }

Units unitsOf(NSString string) {
  if (!string) return std::nullopt;
  std::u16string units(string.length(), u'\0');
  CFStringGetCharacters(bridge<CFStringRef>(string), CFRangeMake(0, static_cast<CFIndex>(units.size())), units.data());
  return units;
}

std::u16string unitsOfUtf16(std::string_view bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), 2 * units.size());
  return units;
}

// UTF-8; nothing where there is an unpaired surrogate.
std::optional<std::string> utf8Of(std::u16string_view units) {
  for (std::size_t i = 0; i < units.size(); ++i) {
    if ((units[i] & 0xF800) != 0xD800) continue;
    const bool isPair = units[i] < 0xDC00 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
    if (!isPair) return std::nullopt;
    ++i;
  }
  return vcard::utf8FromUtf16(units);
}

std::string shown(const Units& units) {
  if (!units) return "nil";
  std::string text;
  for (const char16_t unit : *units) text += std::to_string(unit) + ' ';
  return text;
}

std::string bytesOf(REALstring string) { return std::string(host::bytesOf(string)); }

// What the string must be, as far as that can be said without the converters themselves.
void expectText(NSString converted, std::string_view bytes, std::uint32_t encoding) {
  const Units units = unitsOf(converted);
  const std::string_view text = cutAtZero(bytes);
  if (bytes.empty()) return expectEqual(shown(units), "nil", "an empty string");
  switch (encoding) {
    case kEncodingUTF8: {
      const std::string_view read = text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text;
      const bool isValid = vcard::isValidUtf8(read);
      expectEqual(units ? utf8Of(*units).value_or("unpaired") : "nil", isValid ? std::string(read) : "nil", "UTF-8");
      break;
    }
    case kEncodingUTF16:
      expectEqual(shown(units), shown(unitsOfUtf16(bytes)), "UTF-16");
      break;
    case kEncodingASCII: {
      std::u16string widened;
      for (const char c : text) widened += static_cast<unsigned char>(c);
      expectEqual(shown(units), shown(widened), "ASCII, with the upper half of Latin-1");
      break;
    }
    case kEncodingMacRoman:
    case kEncodingAsStored: {
      expect(units && units->size() == text.size(), "each byte of Mac Roman is a character");
      std::string back(text.size() + 1, '\0');
      const bool isConverted = CFStringGetCString(bridge<CFStringRef>(converted), back.data(),
                                                  static_cast<CFIndex>(back.size()), kEncodingMacRoman);
      expect(isConverted, "and has its byte again");
      back.pop_back();
      expectEqual(back, std::string(text), "Mac Roman");
      break;
    }
    default:
      break;
  }
}

// The host's own conversion reads on behind zeros, which the bytes of a C string don't.
void expectAsTheHostDoes(NSString converted, REALstring string) {
  const auto own = Retained<NSString>::adopt(bridge<NSString>(host::copyCFString(string)));
  const std::string_view bytes = host::bytesOf(string);
  const std::uint32_t encoding = host::encodingOf(string);
  const bool isAlike = encoding == kEncodingUTF16 ||
                       (encoding != kEncodingUTF32 && cutAtZero(bytes) == bytes && !bytes.starts_with(kByteOrderMark));
  if (own && isAlike) expectEqual(shown(unitsOf(converted)), shown(unitsOf(own.get())), "the host's own string");
}

void expectBack(NSString string) {
  const auto back = adoptHost(NSStringRB(string));
  const Units units = unitsOf(string);
  const std::optional<std::string> text = units ? utf8Of(*units) : std::nullopt;
  expectEqual(bytesOf(back.get()), std::string(cutAtZero(text.value_or(""))), "the string back in the host");
  if (back) expect(host::encodingOf(back.get()) == kEncodingUTF8, "it is UTF-8");
}

// What is built from UTF-16 is as the host converts it, from UTF-32 the low halves are; else the bytes are kept.
void expectBuilt(std::string_view bytes, std::uint32_t encoding) {
  const auto built = adoptHost(REALBuildUnicodeString(bytes.data(), static_cast<std::int32_t>(bytes.size()), encoding));
  std::string expected(bytes);
  if (encoding == kEncodingUTF16) expected = vcard::utf8FromUtf16(unitsOfUtf16(bytes));
  if (encoding == kEncodingUTF32) {
    std::u16string low;
    for (std::size_t i = 0; i + 4 <= bytes.size(); i += 4) low += unitsOfUtf16(bytes.substr(i, 2));
    expected = vcard::utf8FromUtf16(low);
  }
  expectEqual(bytesOf(built.get()), expected, "a string built from bytes");
  const bool isConverted = encoding == kEncodingUTF16 || encoding == kEncodingUTF32;
  if (built) expect(host::encodingOf(built.get()) == (isConverted ? kEncodingUTF8 : encoding), "its encoding");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const StartedHost kHost({"REALGetStringCFString"});
  Input input(data, size);
  rbversion_rbversion = input.number() % 2 == 0 ? 2013.0 : 2012.9;
  const std::string_view bytes = input.rest();
  const auto outcome = kHost.run([bytes] {
    for (const std::uint32_t encoding : kEncodings) {
      const auto string = adoptHost(host::newString(bytes, encoding));
      const NSString converted = NewNSString(string.get());
      expectText(converted, bytes, encoding);
      expectAsTheHostDoes(converted, string.get());
      expectBack(converted);
      expectBuilt(bytes, encoding);
    }
    return "";
  });
  expect(!outcome.hasRaised, "strings raise nothing");
  return 0;
}
