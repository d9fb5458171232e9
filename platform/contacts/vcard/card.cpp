#include "platform/contacts/vcard/card.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/sections.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace vcard {
namespace {

constexpr CharacterSet kBase64Characters("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=");

// Collects the physical lines of one logical line. Their texts are given without their breaks.
class LogicalLine {
 public:
  [[nodiscard]] bool continuesWith(std::string_view text) {
    if (raw_.empty()) return false;
    if (nested_ > 0 || softBreak_) return true;
    if (text.empty()) return false;
    if (isBlank(text.front())) return true;
    // Some writers don't indent the lines of binary data.
    return kBase64Characters.hasAll(text) && encoding() == Encoding::kBase64;
  }

  void append(std::string_view physicalLine, std::string_view text, Boundary boundary) {
    const bool isFirst = raw_.empty();
    raw_ = isFirst ? physicalLine : std::string_view(raw_.data(), raw_.size() + physicalLine.size());
    if (boundary == Boundary::kEnd && nested_ > 0) --nested_;
    if (boundary == Boundary::kBegin && afterAgent_) ++nested_;
    afterAgent_ = boundary == Boundary::kAgent;

    if (isFirst) {
      first_ = text;
    } else {
      if (content_.empty()) content_ = first_;
      const bool isFold = !softBreak_ && !text.empty() && isBlank(text.front());
      content_ += isFold ? text.substr(1) : text;
    }
    softBreak_ = text.ends_with('=') && encoding() == Encoding::kQuotedPrintable;
    if (softBreak_) {
      if (content_.empty()) content_ = first_;
      content_.pop_back();
    }
  }

  // An AGENT line without a value takes in the card that begins on the next physical line.
  [[nodiscard]] bool takesNestedCard(Boundary next) const { return afterAgent_ && next == Boundary::kBegin; }
  [[nodiscard]] bool isEmpty() const { return raw_.empty(); }

  // Begins a new one.
  void finish(std::vector<Line>& lines) {
    lines.emplace_back(raw_, content_);
    raw_ = {};
    content_.clear();
    encoding_ = Encoding::kUndecided;
    softBreak_ = false;
    afterAgent_ = false;
    nested_ = 0;
  }

 private:
  enum class Encoding { kUndecided, kPlain, kQuotedPrintable, kBase64 };

  // Known as soon as the colon is. Seldom asked for.
  Encoding encoding() {
    if (encoding_ != Encoding::kUndecided) return encoding_;
    const std::string_view content = content_.empty() ? first_ : std::string_view(content_);
    const std::size_t colon = content.substr(0, kLongestHead).find(':');
    if (colon == std::string_view::npos) return Encoding::kUndecided;
    const std::string_view head = content.substr(0, colon);
    const std::string_view parameters = head.substr(std::min(head.find(';'), head.size()));
    if (isQuotedPrintable(content)) {
      encoding_ = Encoding::kQuotedPrintable;
    } else if (containsIgnoringCase(parameters, "BASE64") || containsIgnoringCase(parameters, "ENCODING=B")) {
      encoding_ = Encoding::kBase64;
    } else {
      encoding_ = Encoding::kPlain;
    }
    return encoding_;
  }

  std::string_view raw_;
  std::string_view first_;  // the first physical line's text
  std::string content_;     // empty while it is just first_
  Encoding encoding_ = Encoding::kUndecided;
  bool softBreak_ = false;
  bool afterAgent_ = false;
  std::size_t nested_ = 0;
};

}  // namespace

Card parseCard(std::string_view section) {
  Card card;
  parseCard(section, card);
  return card;
}

void parseCard(std::string_view section, Card& card) {
  card.version = Version::k30;
  constexpr std::size_t kUsual = 10'000;
  if (card.lines.capacity() > kUsual) card.lines = {};  // one huge card's storage isn't kept
  card.lines.clear();
  LogicalLine current;
  while (!section.empty()) {
    const std::string_view physicalLine = takePhysicalLine(section);
    const std::string_view text = withoutBreak(physicalLine);
    const Boundary boundary = boundaryOf(text);
    const bool isLast = section.empty();      // the END line, whatever stands before it
    const bool isFirst = card.lines.empty();  // what is behind the BEGIN line isn't part of it
    if (isLast || isFirst || !(current.continuesWith(text) || current.takesNestedCard(boundary))) {
      if (!current.isEmpty()) current.finish(card.lines);
    }
    current.append(physicalLine, text, boundary);
  }
  if (!current.isEmpty()) current.finish(card.lines);

  auto version = std::ranges::find_if(card.lines, [](const Line& line) { return line.is("VERSION"); });
  if (version != card.lines.end()) {
    const std::string_view number = trimmed(version->value());
    if (number.starts_with('2')) card.version = Version::k21;
    if (number.starts_with('4')) card.version = Version::k40;
  }
}

}  // namespace vcard
