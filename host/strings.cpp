#include "host/strings.h"

#include "host/counted.h"
#include "host/memory.h"
#include "platform/foundation/cf_string.h"

#include <cstring>
#include <mutex>
#include <optional>
#include <type_traits>

namespace host {

namespace {

// The buffer follows it in memory: a byte that is nobody's, the text, a terminator for the widest encoding. A hostile
// host's text lies at the very end, and before the buffer a copy that is terminated.
struct HostString {
  // What old plug-ins read: the text one byte past the buffer's start, its length in the fourth word. The other two
  // words are the host's.
  REALstringRecord record;
  HostString* previous;
  HostString* next;

  Word& references() { return record.reserved1; }
  Word& encoding() { return record.reserved2; }
};

static_assert(std::is_trivially_destructible_v<HostString>);

constexpr std::size_t kTextOffset = 1;
constexpr std::size_t kTerminatorSize = 4;
constexpr char32_t kReplacement = 0xFFFD;

// All strings that are alive, so that those left over can be told by their texts. Worker threads make strings too.
struct LiveStrings {
  std::mutex lock;
  HostString* first = nullptr;
};

LiveStrings& liveStrings() {
  static auto* strings = new LiveStrings;
  return *strings;
}

std::size_t sizeFor(std::size_t length) {
  constexpr std::size_t kAlignment = 8;
  const std::size_t size = sizeof(HostString) + kTextOffset + length + kTerminatorSize + (isHostile() ? length : 0);
  return (size + kAlignment - 1) / kAlignment * kAlignment;
}

HostString& record(REALstring string) { return *reinterpret_cast<HostString*>(string); }

bool isSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xE000; }

// The code points of UTF-16 text; unpaired surrogates become the replacement character.
std::u32string codePoints(std::u16string_view units) {
  std::u32string points;
  points.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    if (!isSurrogate(unit)) {
      points.push_back(unit);
    } else if (unit < 0xDC00 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00) {
      points.push_back(0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (units[++i] - 0xDC00U));
    } else {
      points.push_back(kReplacement);
    }
  }
  return points;
}

std::string utf8(std::u16string_view units) {
  std::string text;
  text.reserve(units.size());
  for (const char32_t point : codePoints(units)) {
    const auto tail = [point](int shift) { return static_cast<char>(0x80 | ((point >> shift) & 0x3F)); };
    if (point < 0x80) {
      text.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
      text.append({static_cast<char>(0xC0 | (point >> 6)), tail(0)});
    } else if (point < 0x10000) {
      text.append({static_cast<char>(0xE0 | (point >> 12)), tail(6), tail(0)});
    } else {
      text.append({static_cast<char>(0xF0 | (point >> 18)), tail(12), tail(6), tail(0)});
    }
  }
  return text;
}

template <class Unit>
std::string asBytes(std::basic_string_view<Unit> units) {
  return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(Unit)};
}

std::u16string unitsOf(CFStringRef string) {
  std::u16string units(static_cast<std::size_t>(CFStringGetLength(string)), u'\0');
  CFStringGetCharacters(string, CFRangeMake(0, static_cast<CFIndex>(units.size())), units.data());
  return units;
}

std::optional<std::string> encoded(CFStringRef string, std::uint32_t encoding) {
  const std::u16string units = unitsOf(string);
  switch (encoding) {
    case kEncodingUTF8:
      return utf8(units);
    case kEncodingUTF16:
      return asBytes<char16_t>(units);
    case kEncodingUTF32:
      return asBytes<char32_t>(codePoints(units));
    default:
      break;
  }
  // The other encodings have one byte for each unit.
  std::string bytes(units.size() + 1, '\0');
  if (!CFStringGetCString(string, bytes.data(), static_cast<CFIndex>(bytes.size()), encoding)) return std::nullopt;
  bytes.pop_back();
  return bytes;
}

}  // namespace

REALstring newString(std::string_view bytes, std::uint32_t encoding) {
  if (bytes.empty()) return nullptr;
  const std::size_t size = sizeFor(bytes.size());
  auto* memory = static_cast<char*>(newMemory(size));
  char* buffer = memory + sizeof(HostString);
  if (isHostile()) {
    std::memcpy(buffer, bytes.data(), bytes.size());
    buffer = memory + size - bytes.size() - kTextOffset;
  }
  std::memcpy(buffer + kTextOffset, bytes.data(), bytes.size());
  auto* string = new (memory) HostString{{1, buffer, encoding, bytes.size()}, nullptr, nullptr};

  LiveStrings& live = liveStrings();
  const std::scoped_lock guard(live.lock);
  string->next = live.first;
  if (string->next != nullptr) string->next->previous = string;
  live.first = string;
  return reinterpret_cast<REALstring>(string);
}

REALstring newString(CFStringRef text) {
  return text == nullptr ? nullptr : newString(utf8(unitsOf(text)), kEncodingUTF8);
}

void lock(REALstring string) {
  if (string != nullptr) ++record(string).references();
}

void unlock(REALstring string) {
  if (string == nullptr || --record(string).references() != 0) return;
  HostString* dead = &record(string);
  {
    LiveStrings& live = liveStrings();
    const std::scoped_lock guard(live.lock);
    (dead->previous == nullptr ? live.first : dead->previous->next) = dead->next;
    if (dead->next != nullptr) dead->next->previous = dead->previous;
  }
  releaseMemory(dead, sizeFor(dead->record.length));
}

std::string_view bytesOf(REALstring string) {
  if (string == nullptr) return "";
  const REALstringRecord& shown = record(string).record;
  return {shown.buffer + kTextOffset, shown.length};
}

const char* cStringOf(REALstring string) {
  if (!isHostile() || string == nullptr) return bytesOf(string).data();
  return reinterpret_cast<const char*>(&record(string) + 1);
}

std::uint32_t encodingOf(REALstring string) {
  return string == nullptr ? kEncodingAsStored : static_cast<std::uint32_t>(record(string).encoding());
}

void setEncoding(REALstring string, std::uint32_t encoding) {
  if (string != nullptr) record(string).encoding() = encoding;
}

REALstring newConverted(REALstring string, std::uint32_t encoding) {
  const std::uint32_t stored = encodingOf(string);
  if (stored == encoding || stored == kEncodingAsStored || encoding == kEncodingAsStored) {
    return newString(bytesOf(string), encoding == kEncodingAsStored ? stored : encoding);
  }
  CFStringRef text = copyCFString(string);
  if (text == nullptr) return nullptr;
  const std::optional<std::string> bytes = encoded(text, encoding);
  CFRelease(text);
  return bytes ? newString(*bytes, encoding) : nullptr;
}

CFStringRef copyCFString(REALstring string) {
  if (string == nullptr || encodingOf(string) == kEncodingAsStored) return nullptr;
  const std::string_view bytes = bytesOf(string);
  return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                 static_cast<CFIndex>(bytes.size()), encodingOf(string), false);
}

std::string textOf(REALstring string) {
  std::string bytes(bytesOf(string));
  const std::uint32_t encoding = encodingOf(string);
  if (encoding == kEncodingUTF8 || encoding == kEncodingASCII) return bytes;
  CFStringRef text = copyCFString(string);
  if (text == nullptr) return bytes;
  std::string converted = utf8(unitsOf(text));
  CFRelease(text);
  return converted;
}

std::vector<std::string> liveStringTexts() {
  LiveStrings& live = liveStrings();
  const std::scoped_lock guard(live.lock);
  std::vector<std::string> texts;
  for (HostString* string = live.first; string != nullptr; string = string->next) {
    texts.push_back(textOf(reinterpret_cast<REALstring>(string)));
  }
  return texts;
}

}  // namespace host
