#include "platform/foundation/url.h"

#include "platform/foundation/byte_text.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/foundation/url_object.h"
#include "platform/objc/class_builder.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include <sys/stat.h>

namespace foundation {

namespace {

NSURL urlWithString(Class, NSString text) {
  if (!text) NSException::raise(NSInvalidArgumentException, "+[NSURL URLWithString:]: the text is nil");
  std::optional<UrlText> url = UrlText::parse(utf8Of(text));
  return url ? newUrl(std::move(*url)).autorelease() : NSURL();
}

NSURL fileUrlWithPath(Class, NSString path) {
  if (!path) NSException::raise(NSInvalidArgumentException, "+[NSURL fileURLWithPath:]: the path is nil");
  std::error_code failed;
  std::string absolute = std::filesystem::absolute(utf8Of(path), failed).string();
  if (failed) return nullptr;
  struct stat info {};
  if (!absolute.ends_with('/') && stat(absolute.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) absolute += '/';
  return newUrl(UrlText::ofFile(absolute)).autorelease();
}

NSString absoluteString(NSURL self) { return makeString(std::string_view(textOf(self).text())); }

NSString scheme(NSURL self) {
  const std::string_view text = textOf(self).scheme();
  return text.empty() ? NSString() : makeString(text);
}

NSString path(NSURL self) {
  if (textOf(self).isOpaque()) return nullptr;
  std::string bytes = unescaped(textOf(self).path());
  while (bytes.size() > 1 && bytes.back() == '/') bytes.pop_back();
  return textOfBytes(bytes);
}

bool isFileUrl(NSURL self) { return textOf(self).isFile(); }

bool isEqual(NSURL self, NSObject other) {
  return other && other.isKindOfClass("NSURL"_class) && textOf(self).text() == textOf(other.as<NSURL>()).text();
}

NSUInteger hash(NSURL self) { return std::hash<std::string>()(textOf(self).text()); }

}  // namespace

Retained<NSURL> newUrl(UrlText url) {
  auto* object = objc::createInstance<UrlObject>("NSURL"_class);
  object->url = std::move(url);
  return Retained<NSURL>::adopt(NSURL(object));
}

void registerUrl() {
  objc::ClassBuilder::define<UrlObject>("NSURL", "NSObject")
      .classMethod<&urlWithString>("URLWithString:")
      .classMethod<&fileUrlWithPath>("fileURLWithPath:")
      .method<&absoluteString>("absoluteString")
      .method<&absoluteString>("description")
      .method<&scheme>("scheme")
      .method<&path>("path")
      .method<&isFileUrl>("isFileURL")
      .method<&isEqual>("isEqual:")
      .method<&hash>("hash");
}

}  // namespace foundation
