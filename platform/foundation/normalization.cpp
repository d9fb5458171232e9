#include "platform/foundation/normalization.h"

#include "platform/foundation/normalization_tables.h"
#include "platform/foundation/utf16.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

// Below it nothing decomposes or combines.
constexpr char16_t kFirstOfInterest = 0xC0;

// Hangul syllables decompose by arithmetic.
constexpr char32_t kSyllableBase = 0xAC00;
constexpr char32_t kLeadBase = 0x1100;
constexpr char32_t kVowelBase = 0x1161;
constexpr char32_t kTailBase = 0x11A7;
constexpr char32_t kTails = 28;
constexpr char32_t kVowelsAndTails = 21 * kTails;
constexpr char32_t kSyllables = 19 * kVowelsAndTails;

std::uint16_t valueOf(char32_t c) {
  return foundation::kNormalizationValues[foundation::kNormalizationPages[c >> 8]][c & 0xFF];
}

class Decomposer {
 public:
  explicit Decomposer(std::size_t expected) { units_.reserve(expected); }

  void add(char32_t c) {
    if (c - kSyllableBase < kSyllables) {
      addSyllable(c - kSyllableBase);
      return;
    }
    const std::uint16_t value = valueOf(c);
    if (value < foundation::kFirstDecomposition) {
      addSimple(c, value);
      return;
    }
    const char32_t* decomposition = foundation::kDecompositions + (value - foundation::kFirstDecomposition);
    for (const char32_t *part = decomposition + 1, *end = part + *decomposition; part != end; ++part) {
      addSimple(*part, valueOf(*part));
    }
  }

  std::u16string finish() {
    flushMarks();
    return std::move(units_);
  }

 private:
  struct Mark {
    char32_t codePoint;
    std::uint16_t combiningClass;
  };

  void addSyllable(char32_t index) {
    flushMarks();
    append(kLeadBase + index / kVowelsAndTails);
    append(kVowelBase + index % kVowelsAndTails / kTails);
    if (index % kTails != 0) append(kTailBase + index % kTails);
  }

  void addSimple(char32_t c, std::uint16_t combiningClass) {
    if (combiningClass != 0) {
      marks_.push_back({c, combiningClass});
    } else {
      flushMarks();
      append(c);
    }
  }

  // Marks of one class keep their order.
  void flushMarks() {
    if (marks_.empty()) return;
    if (marks_.size() > 1) std::ranges::stable_sort(marks_, {}, &Mark::combiningClass);
    for (const Mark& mark : marks_) append(mark.codePoint);
    marks_.clear();
  }

  void append(char32_t c) {
    if (c < 0x10000) {
      units_ += static_cast<char16_t>(c);
    } else {
      units_ += foundation::highSurrogate(c);
      units_ += foundation::lowSurrogate(c);
    }
  }

  std::u16string units_;
  std::vector<Mark> marks_;  // since the last code point of class 0
};

}  // namespace

std::u16string foundation::decomposed(std::u16string_view units) {
  if (std::ranges::all_of(units, [](char16_t unit) { return unit < kFirstOfInterest; })) return std::u16string(units);
  Decomposer decomposer(units.size() + units.size() / 2);
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (isHighSurrogate(units[i]) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
      decomposer.add(fromSurrogates(units[i], units[i + 1]));
      ++i;
    } else {
      decomposer.add(units[i]);
    }
  }
  return decomposer.finish();
}
