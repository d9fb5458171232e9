#include "platform/foundation/cf_url.h"

#include "platform/foundation/byte_text.h"
#include "platform/foundation/cf_string.h"
#include "platform/foundation/url_object.h"

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

using foundation::textOf;
using foundation::UrlText;

CFURLRef created(std::optional<UrlText> url) {
  return url ? bridge<CFURLRef>(foundation::newUrl(std::move(*url)).leak()) : nullptr;
}

}  // namespace

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef url, CFStringRef component,
                                               Boolean isDirectory) {
  std::string utf8(static_cast<std::size_t>(CFStringGetLength(component)) * 3 + 1, '\0');
  const auto size = static_cast<CFIndex>(utf8.size());
  if (!CFStringGetCString(component, utf8.data(), size, kCFStringEncodingUTF8)) return nullptr;
  // Zero characters are part of the text, only those after it are not.
  utf8.resize(utf8.find_last_not_of('\0') + 1);
  return created(textOf(url).withComponent(utf8, isDirectory != 0));
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
  return created(textOf(url).withoutLastComponent());
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
  const NSString component = foundation::textOfBytes(textOf(url).lastComponent());
  return bridge<CFStringRef>(Retained<NSString>::share(component).leak());
}

CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef, const std::uint8_t* path, CFIndex length,
                                                 Boolean isDirectory) {
  std::string bytes(reinterpret_cast<const char*>(path), static_cast<std::size_t>(length));
  if (!bytes.starts_with('/')) return nullptr;
  if (isDirectory && !bytes.ends_with('/')) bytes += '/';
  return created(UrlText::ofFile(bytes));
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean, std::uint8_t* buffer, CFIndex size) {
  const std::optional<std::string> path = textOf(url).filePath();
  if (!path || std::cmp_greater_equal(path->size(), size)) return 0;
  std::memcpy(buffer, path->c_str(), path->size() + 1);
  return 1;
}
