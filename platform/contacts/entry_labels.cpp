#include "platform/contacts/entry_labels.h"

#include <algorithm>
#include <array>

namespace contacts {
namespace {

constexpr std::array kPlaces{
    LabelWords{kHome, {"HOME"}, {"HOME"}},
    LabelWords{kWork, {"WORK"}, {"WORK"}},
};

}  // namespace

const std::span<const LabelWords> kPlaceWords{kPlaces};

std::string labelOf(const EntryLine& line, std::span<const LabelWords> words, std::string_view fallback) {
  if (!line.customLabel.empty()) return line.customLabel;
  for (const LabelWords& candidate : words) {
    if (std::ranges::all_of(candidate.needed, [&](auto word) { return word.empty() || line.hasType(word); })) {
      return std::string(candidate.label);
    }
  }
  return std::string(fallback);
}

void writeLabel(LineDraft& draft, const std::string& label, std::span<const LabelWords> words) {
  auto found = std::ranges::find(words, label, &LabelWords::label);
  if (found == words.end()) {
    draft.customLabel = label;
    return;
  }
  for (const std::string_view word : found->written) {
    if (!word.empty()) draft.parameters.push_back({"type", std::string(word)});
  }
}

}  // namespace contacts
