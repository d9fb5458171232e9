#pragma once

#include "platform/contacts/vcard/card.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vcard {

// Changes a card line by line. What is not dropped stays as it is and where it is, so that other programs' lines
// survive; only its form becomes that of version 3.0 where the card is of another.
class Editor {
 public:
  // The text of one card; it outlives the editor.
  explicit Editor(std::string_view text);

  [[nodiscard]] const Card& card() const { return card_; }

  void drop(std::size_t line) { dropped_[line] = true; }
  void dropAll(std::string_view name);
  // Appends to what is put before the line; the card's end for the number of lines.
  [[nodiscard]] std::string& before(std::size_t line) { return inserted_[line]; }
  // Where a line goes that has no place yet: before the lines on the card as such (UID, REV) that stand at its end.
  [[nodiscard]] std::size_t newLinePlace() const;
  // The place right behind the line.
  [[nodiscard]] static std::size_t behind(std::size_t line) { return line + 1; }

  // "item" and a number that no line of the card has.
  std::string newGroup();

  // The card in version 3.0, each line ended by CR LF.
  [[nodiscard]] std::string text() const;

 private:
  Card card_;
  std::vector<bool> dropped_;
  std::vector<std::string> inserted_;
  unsigned highestItem_ = 0;
};

}  // namespace vcard
