#include "platform/foundation/attributed_string.h"

#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <string>
#include <vector>

namespace foundation {
namespace {

struct AttributedStringObject : objc::Object {
  // Runs follow one another without gaps, none is empty, and neighbours differ.
  struct Run {
    NSUInteger end;
    Retained<NSDictionary> attributes;
  };
  Retained<NSString> text;
  std::vector<Run> runs;

  NSAttributedString initWithStringAndAttributes(NSString string, NSDictionary attributes) {
    // The receiver is the caller's no more: it is answered, or given up.
    auto owned = Retained<NSAttributedString>::adopt(NSAttributedString(this));
    if (!string) {
      NSException::raise(NSInvalidArgumentException,
                         "-[NSAttributedString initWithString:attributes:]: the string is nil");
    }
    text = Retained<NSString>::adopt(string.copy());
    if (!attributes) attributes = NSDictionary::dictionary();
    if (string.length() != 0) runs.push_back({string.length(), Retained<NSDictionary>::adopt(attributes.copy())});
    return owned.leak();
  }

  NSAttributedString initWithString(NSString string) { return initWithStringAndAttributes(string, nullptr); }
  NSAttributedString init() { return initWithString(""_ns); }

  NSString string() const { return text.get(); }
  NSUInteger length() const { return text->length(); }

  NSDictionary attributesAtIndex(NSUInteger index, void* effectiveRange) const {
    if (index >= length()) {
      NSException::raise(NSRangeException, "-[NSAttributedString attributesAtIndex:effectiveRange:]: index " +
                                               std::to_string(index) + " of " + std::to_string(length()));
    }
    const auto run = std::ranges::upper_bound(runs, index, {}, &Run::end);
    if (effectiveRange != nullptr) {
      const NSUInteger start = run == runs.begin() ? 0 : std::prev(run)->end;
      *static_cast<NSRange*>(effectiveRange) = NSMakeRange(start, run->end - start);
    }
    return run->attributes.get();
  }

  bool isEqual(NSObject other) const {
    if (!other || !other.isKindOfClass("NSAttributedString"_class)) return false;
    const auto& theirs = *static_cast<const AttributedStringObject*>(other.get());
    return text->isEqual(theirs.text.get()) && std::ranges::equal(runs, theirs.runs, [](const Run& a, const Run& b) {
             return a.end == b.end && a.attributes->isEqual(b.attributes.get());
           });
  }

  NSUInteger hash() const { return text->hash(); }

  // Each run's text followed by its attributes.
  NSString description() const {
    const std::u16string_view units = unitsOf(text.get());
    std::u16string described;
    NSUInteger start = 0;
    for (const Run& run : runs) {
      described += units.substr(start, run.end - start);
      described += unitsOf(run.attributes->description());
      start = run.end;
    }
    return makeString(std::move(described));
  }
};

struct MutableAttributedStringObject : AttributedStringObject {
  void append(NSAttributedString other) {
    if (!other) {
      NSException::raise(NSInvalidArgumentException,
                         "-[NSMutableAttributedString appendAttributedString:]: the string is nil");
    }
    const auto& theirs = *static_cast<const AttributedStringObject*>(other.get());
    std::vector<Run> joined = runs;
    for (const Run& run : theirs.runs) {
      const NSUInteger end = length() + run.end;
      if (!joined.empty() && joined.back().attributes->isEqual(run.attributes.get())) {
        joined.back().end = end;
      } else {
        joined.push_back({end, run.attributes});
      }
    }
    text = newString(std::u16string(unitsOf(text.get())).append(unitsOf(theirs.text.get())));
    runs = std::move(joined);
  }
};

}  // namespace

void registerAttributedString() {
  using String = AttributedStringObject;
  objc::ClassBuilder::define<String>("NSAttributedString", "NSObject")
      .method<&String::init>("init")
      .method<&String::initWithString>("initWithString:")
      .method<&String::initWithStringAndAttributes>("initWithString:attributes:")
      .method<&String::string>("string")
      .method<&String::length>("length")
      .method<&String::attributesAtIndex>("attributesAtIndex:effectiveRange:")
      .method<&String::isEqual>("isEqual:")
      .method<&String::hash>("hash")
      .method<&String::description>("description");
  objc::ClassBuilder::define<MutableAttributedStringObject>("NSMutableAttributedString", "NSAttributedString")
      .method<&MutableAttributedStringObject::append>("appendAttributedString:");
}

}  // namespace foundation
