#include "platform/contacts/vcard/editor.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/conversion.h"

#include <algorithm>
#include <charconv>

namespace vcard {
namespace {

constexpr std::string_view kItem = "ITEM";

// The number of a group called "item" and a number, else 0.
unsigned itemNumber(std::string_view group) {
  if (!equalsIgnoringCase(group.substr(0, kItem.size()), kItem)) return 0;
  unsigned number = 0;
  const char* end = group.data() + group.size();
  const auto result = std::from_chars(group.data() + kItem.size(), end, number);
  return result.ptr == end ? number : 0;
}

bool isOnTheCard(const Line& line) {
  return line.content().empty() || line.is("UID") || line.is("REV") || line.is("CREATED") || line.is("X-ABUID");
}

}  // namespace

Editor::Editor(std::string_view text)
    : card_(parseCard(text)), dropped_(card_.lines.size()), inserted_(card_.lines.size() + 1) {
  for (const Line& line : card_.lines) highestItem_ = std::max(highestItem_, itemNumber(line.group()));
}

void Editor::dropAll(std::string_view name) {
  for (std::size_t i = 0; i < card_.lines.size(); ++i) {
    if (card_.lines[i].is(name)) drop(i);
  }
}

std::size_t Editor::newLinePlace() const {
  std::size_t place = card_.lines.size() - 1;  // the END line
  while (place > 1 && isOnTheCard(card_.lines[place - 1])) --place;
  return place;
}

std::string Editor::newGroup() { return "item" + std::to_string(++highestItem_); }

std::string Editor::text() const {
  std::string text;
  for (std::size_t i = 0; i < card_.lines.size(); ++i) {
    text += inserted_[i];
    if (!dropped_[i]) appendConverted(text, card_.lines[i], card_.version);
  }
  return text + inserted_.back();
}

}  // namespace vcard
