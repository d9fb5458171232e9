#pragma once

#include "platform/foundation/dictionary.h"
#include "platform/foundation/object.h"
#include "platform/foundation/range.h"
#include "platform/foundation/string.h"

// Text whose every character has a dictionary of attributes, kept as runs of equal attributes.
class NSAttributedString : public NSObject {
 public:
  using NSObject::NSObject;

  static NSAttributedString alloc() { return ::alloc<NSAttributedString>("NSAttributedString"_class); }
  // A nil string raises NSInvalidArgumentException.
  [[nodiscard]] NSAttributedString initWithString(NSString string) const {
    return send<NSAttributedString>(*this, "initWithString:"_sel, string);
  }
  // The attributes, which may be nil, apply to the whole string.
  [[nodiscard]] NSAttributedString initWithString(NSString string, NSDictionary attributes) const {
    return send<NSAttributedString>(*this, "initWithString:attributes:"_sel, string, attributes);
  }

  [[nodiscard]] NSString string() const { return send<NSString>(*this, "string"_sel); }
  [[nodiscard]] NSUInteger length() const { return send<NSUInteger>(*this, "length"_sel); }
  // The attributes at the index, empty rather than nil, and the run they hold for when a place for it is given. An
  // index past the end raises NSRangeException.
  [[nodiscard]] NSDictionary attributesAtIndex(NSUInteger index, NSRange* effectiveRange) const {
    return send<NSDictionary>(*this, "attributesAtIndex:effectiveRange:"_sel, index,
                              static_cast<void*>(effectiveRange));
  }
};

class NSMutableAttributedString : public NSAttributedString {
 public:
  using NSAttributedString::NSAttributedString;

  static NSMutableAttributedString alloc() {
    return ::alloc<NSMutableAttributedString>("NSMutableAttributedString"_class);
  }
  [[nodiscard]] NSMutableAttributedString init() const { return send<NSMutableAttributedString>(*this, "init"_sel); }

  // Text and attributes go to the end. nil raises NSInvalidArgumentException.
  void appendAttributedString(NSAttributedString other) const {
    send<void>(*this, "appendAttributedString:"_sel, other);
  }
};
