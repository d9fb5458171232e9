#include "bridge/strings.h"

#include "bridge/collections.h"
#include "frame/runtime_support.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace {

// From here on hosts hand out string data themselves; before, their strings are read in place.
constexpr double kFirstVersionWithStringData = 2013.0;

struct FreeMemory {
  void operator()(void* memory) const { FreeMemoryNow(memory); }
};
using ClearMemoryPtr = std::unique_ptr<void, FreeMemory>;

}  // namespace

rbData::rbData(REALstring string) {
  if (string == nullptr) return;
  if (rbversion_rbversion >= kFirstVersionWithStringData) {
    if (!REALGetStringData(string, kEncodingAsStored, &stringData)) return;
    ownsStringData = true;
    data = static_cast<const char*>(stringData.data);
    length = stringData.length;
    return;
  }
  lockedString = HostRef<REALstring>::share(string);
  const auto* record = reinterpret_cast<const REALstringRecord*>(string);
  data = record->buffer + 1;
  length = static_cast<std::uint32_t>(record->length);
}

rbData::rbData(REALmemoryBlock block, std::uint32_t offset, std::uint32_t requestedLength) {
  if (block == nullptr) return;
  lockedBlock = HostRef<REALmemoryBlock>::share(block);
  const auto size = static_cast<std::uint32_t>(std::clamp<std::int64_t>(REALMemoryBlockGetSize(block), 0, UINT32_MAX));
  const std::uint32_t available = offset < size ? size - offset : 0;
  const auto* address = static_cast<const char*>(REALMemoryBlockGetPtr(block));
  if (address == nullptr) return;
  length = requestedLength == 0 || requestedLength > available ? available : requestedLength;
  data = address + (offset < size ? offset : size);
}

rbData::~rbData() {
  if (ownsStringData) REALDisposeStringData(&stringData);
}

CFStringRef RBString2CFString(REALstring string) {
  if (string == nullptr) return nullptr;
  if (CFStringRef own = REALGetStringCFString(string, false)) return own;
  std::uint32_t encoding = REALGetStringEncoding(string);
  if (encoding == kEncodingAsStored) encoding = kEncodingMacRoman;
  const rbData bytes(string);
  if (bytes.data == nullptr || !PLATFORM_HAS(CFStringCreateWithCString)) return nullptr;
  if (encoding == kEncodingUTF16) {
    // Copied because the host promises no alignment.
    std::u16string units(bytes.length / 2, u'\0');
    std::memcpy(units.data(), bytes.data, 2 * units.size());
    return CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), static_cast<CFIndex>(units.size()));
  }
  // Copied because the host promises no terminator.
  const std::string text(bytes.data, bytes.length);
  return CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), encoding);
}

NSString NewNSString(REALstring string) {
  return Retained<NSString>::adopt(bridge<NSString>(RBString2CFString(string))).autorelease();
}

REALstring CFString2RBString(CFStringRef string) {
  constexpr CFIndex kShortLength = 99;
  constexpr std::int64_t kBytesPerUnit = 6;
  if (string == nullptr) return nullptr;
  const CFIndex length = CFStringGetLength(string);
  if (length <= 0) return nullptr;

  std::array<char, 601> shortBuffer{};
  ClearMemoryPtr longBuffer;
  char* buffer = shortBuffer.data();
  CFIndex size = shortBuffer.size() - 1;
  if (length > kShortLength) {
    longBuffer.reset(AllocateClearMemory(kBytesPerUnit * length));
    if (longBuffer == nullptr) return nullptr;
    buffer = static_cast<char*>(longBuffer.get());
    size = static_cast<CFIndex>(kBytesPerUnit * length);
  }
  if (!CFStringGetCString(string, buffer, size, kEncodingUTF8)) return nullptr;
  return REALBuildUnicodeString(buffer, static_cast<std::int32_t>(std::strlen(buffer)), kEncodingUTF8);
}

REALstring NSStringRB(NSString string) { return CFString2RBString(bridge<CFStringRef>(string)); }

namespace {

// A host string of UTF-16 bytes, as UTF-8. The host decides what the conversion of a null string is.
REALstring convertedToUTF8(HostRef<REALstring> units) {
  if (units) REALSetStringEncoding(units.get(), kEncodingUTF16);
  return REALConvertString(units.get(), kEncodingUTF8);
}

REALstring buildFromUTF32(const void* bytes, std::int32_t byteCount) {
  constexpr std::int32_t kShortByteCount = 799;
  const std::int32_t count = byteCount / 4;
  std::array<char16_t, 200> shortBuffer;
  ClearMemoryPtr longBuffer;
  char16_t* units = shortBuffer.data();
  if (byteCount > kShortByteCount) {
    longBuffer.reset(AllocateClearMemory(2 * std::int64_t{count} + 4));
    if (longBuffer == nullptr) return nullptr;
    units = static_cast<char16_t*>(longBuffer.get());
  }
  for (std::int32_t i = 0; i < count; ++i) {
    std::uint32_t unit = 0;
    std::memcpy(&unit, static_cast<const char*>(bytes) + 4 * i, sizeof unit);
    units[i] = static_cast<char16_t>(unit);
  }
  return convertedToUTF8(adoptHost(originalREALBuildString(reinterpret_cast<const char*>(units), 2 * count)));
}

}  // namespace

REALstring REALBuildUnicodeString(const void* bytes, std::int32_t byteCount, std::uint32_t encoding) {
  if (bytes == nullptr || byteCount <= 0) return nullptr;
  if (encoding == kEncodingUTF32) return buildFromUTF32(bytes, byteCount);
  auto string = adoptHost(originalREALBuildString(static_cast<const char*>(bytes), byteCount));
  if (!string) return nullptr;
  if (encoding == kEncodingUTF16) return convertedToUTF8(std::move(string));
  REALSetStringEncoding(string.get(), encoding);
  return string.handOver();
}

NSMutableArray CreateNSStringArray(REALstringArray array, signed char nilIfEmpty) {
  return arrayFromHost(
      array, nilIfEmpty != 0, [array](REALinteger index) { return adoptHost(REALGetArrayString(array, index)); },
      [](const HostRef<REALstring>& element) { return NewNSString(element.get()); });
}

NSArray CreateNSStringArray(REALstring string) {
  NSString converted = NewNSString(string);
  return converted ? NSArray::arrayWithObject(converted) : nullptr;
}

void FillStringArray(REALstringArray array, NSArray list) {
  fillHostArray(array, list, [](NSObject element) { return NSStringRB(element.as<NSString>()); });
}
