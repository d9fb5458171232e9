#pragma once

#include "platform/contacts/vcard/ascii.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vcard {

// One value of one parameter, in valid UTF-8. The name is in upper case; a list (TYPE=home,work) gives one parameter
// for each value, and a bare word of version 2.1 (TEL;HOME:) gets the name that it stands for.
struct Parameter {
  std::string name;
  std::string value;
};

// One logical line of a card: [group.]NAME[;parameters]:value. It looks into the card's text, which must outlive it.
class Line {
 public:
  // raw is the line as it stands, folds and break included; unfolded is its content when that is not simply raw without
  // its break, else empty.
  Line(std::string_view raw, std::string_view unfolded);

  [[nodiscard]] std::string_view raw() const { return raw_; }
  [[nodiscard]] std::string_view content() const { return content_; }

  // A line that isn't in that form (empty, without a colon, a strange name) has an empty name and no value.
  [[nodiscard]] std::string_view group() const { return group_; }
  [[nodiscard]] std::string_view name() const { return name_; }
  // As they stand, without the first semicolon; empty when there are none.
  [[nodiscard]] std::string_view parameterText() const { return parameters_; }
  // Still escaped and encoded.
  [[nodiscard]] std::string_view value() const { return value_; }
  [[nodiscard]] bool is(std::string_view name) const { return equalsIgnoringCase(name_, name); }

  [[nodiscard]] std::vector<Parameter> parameters() const;

 private:
  std::string_view raw_;
  std::shared_ptr<const std::string> unfolded_;
  std::string_view content_;
  // Parts of the content.
  std::string_view group_;
  std::string_view name_;
  std::string_view parameters_;
  std::string_view value_;
};

// Whether a logical line with this content, of which the head at least is there, is quoted-printable: its physical
// lines go on behind a "=" at their end.
bool isQuotedPrintable(std::string_view content);
// A line whose colon stands further back is read as it is written.
inline constexpr std::size_t kLongestHead = 1000;

// The parameter's first value, or an empty text.
std::string_view firstParameter(const std::vector<Parameter>& parameters, std::string_view name);
// Whether the parameter has the value, case ignored.
bool hasParameter(const std::vector<Parameter>& parameters, std::string_view name, std::string_view value);

}  // namespace vcard
