#include "platform/contacts/vcard/card.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/sections.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace vcard {
namespace {

constexpr bool isBase64Character(char c) {
  return (upper(c) >= 'A' && upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '/' || c == '=';
}

// Nearly every head is found out here: only parameters name encodings, and those that matter have one of these letters.
bool mayNameEncoding(std::string_view head) {
  const std::size_t parameters = head.find(';');
  if (parameters == std::string_view::npos) return false;
  return std::ranges::any_of(head.substr(parameters), [](char c) { return upper(c) == 'B' || upper(c) == 'Q'; });
}

// Collects the physical lines of one logical line.
class LogicalLine {
 public:
  [[nodiscard]] bool continuesWith(std::string_view physicalLine) const {
    if (raw_.empty()) return false;
    const std::string_view text = withoutBreak(physicalLine);
    if (nested_ > 0 || softBreak_) return true;
    if (text.empty()) return false;
    if (isBlank(text.front())) return true;
    // Some writers don't indent the lines of binary data.
    return encoding_ == Encoding::kBase64 && std::ranges::all_of(text, isBase64Character);
  }

  void append(std::string_view physicalLine, Boundary boundary) {
    const bool isFirst = raw_.empty();
    raw_ = isFirst ? physicalLine : std::string_view(raw_.data(), raw_.size() + physicalLine.size());
    if (boundary == Boundary::kEnd && nested_ > 0) --nested_;
    if (boundary == Boundary::kBegin && afterAgent_) ++nested_;
    afterAgent_ = boundary == Boundary::kAgent;

    std::string_view text = withoutBreak(physicalLine);
    if (isFirst) {
      first_ = text;
    } else {
      if (content_.empty()) content_ = first_;
      const bool isFold = !softBreak_ && !text.empty() && isBlank(text.front());
      content_ += isFold ? text.substr(1) : text;
    }
    if (encoding_ == Encoding::kUndecided) decideEncoding();
    softBreak_ = encoding_ == Encoding::kQuotedPrintable && text.ends_with('=');
    if (softBreak_) {
      if (content_.empty()) content_ = first_;
      content_.pop_back();
    }
  }

  // An AGENT line without a value takes in the card that begins on the next physical line.
  [[nodiscard]] bool takesNestedCard(Boundary next) const { return afterAgent_ && next == Boundary::kBegin; }
  [[nodiscard]] bool isEmpty() const { return raw_.empty(); }

  Line finish() {
    Line line(raw_, std::move(content_));
    *this = LogicalLine();
    return line;
  }

 private:
  enum class Encoding { kUndecided, kPlain, kQuotedPrintable, kBase64 };

  // Known as soon as the colon is; a head longer than any that says so is plain.
  void decideEncoding() {
    const std::string_view content = content_.empty() ? first_ : std::string_view(content_);
    const std::size_t colon = content.substr(0, kLongestHead).find(':');
    if (colon == std::string_view::npos) {
      if (content.size() > kLongestHead) encoding_ = Encoding::kPlain;
      return;
    }
    const std::string_view head = content.substr(0, colon);
    if (!mayNameEncoding(head)) {
      encoding_ = Encoding::kPlain;
    } else if (isQuotedPrintable(content)) {
      encoding_ = Encoding::kQuotedPrintable;
    } else if (containsIgnoringCase(head, "BASE64") || containsIgnoringCase(head, "ENCODING=B")) {
      encoding_ = Encoding::kBase64;
    } else {
      encoding_ = Encoding::kPlain;
    }
  }

  std::string_view raw_;
  std::string_view first_;  // the first physical line without its break
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
  card.lines.clear();
  LogicalLine current;
  while (!section.empty()) {
    const std::string_view physicalLine = takePhysicalLine(section);
    const Boundary boundary = boundaryOf(physicalLine);
    const bool isLast = section.empty();      // the END line, whatever stands before it
    const bool isFirst = card.lines.empty();  // what is behind the BEGIN line isn't part of it
    if (isLast || isFirst || !(current.continuesWith(physicalLine) || current.takesNestedCard(boundary))) {
      if (!current.isEmpty()) card.lines.push_back(current.finish());
    }
    current.append(physicalLine, boundary);
  }
  if (!current.isEmpty()) card.lines.push_back(current.finish());

  auto version = std::ranges::find_if(card.lines, [](const Line& line) { return line.is("VERSION"); });
  if (version != card.lines.end()) {
    const std::string_view number = trimmed(version->value());
    if (number.starts_with('2')) card.version = Version::k21;
    if (number.starts_with('4')) card.version = Version::k40;
  }
}

}  // namespace vcard
