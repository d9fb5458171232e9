#pragma once

#include "platform/foundation/string.h"

// The text of a URL, all ASCII with escapes.
class NSURL : public NSObject {
 public:
  using NSObject::NSObject;

  // Nil for text that is no URL: empty, or with characters that would have to be escaped.
  static NSURL URLWithString(NSString text) { return send<NSURL>("NSURL"_class, "URLWithString:"_sel, text); }
  // file:///..., with a slash at the end where the path is a folder. A relative path is taken from the working folder;
  // an empty one gives nil.
  static NSURL fileURLWithPath(NSString path) { return send<NSURL>("NSURL"_class, "fileURLWithPath:"_sel, path); }

  [[nodiscard]] NSString absoluteString() const { return send<NSString>(*this, "absoluteString"_sel); }
  // Nil for a relative URL.
  [[nodiscard]] NSString scheme() const { return send<NSString>(*this, "scheme"_sel); }
  // Unescaped and without a slash at the end; nil for a URL of another build, such as mailto:a@b.
  [[nodiscard]] NSString path() const { return send<NSString>(*this, "path"_sel); }
  [[nodiscard]] bool isFileURL() const { return send<bool>(*this, "isFileURL"_sel); }
};
