#pragma once

#include <string>
#include <string_view>
#include <vector>

// What a terminal of the kind "xterm" shows after the bytes that a program has written to it. Colours are not kept.
class Screen {
 public:
  Screen(int rows, int columns);

  void write(std::string_view bytes);
  void resize(int rows, int columns);

  [[nodiscard]] int rows() const { return static_cast<int>(cells_.size()); }
  // The row's text without trailing blanks; a wide character's second cell adds nothing.
  [[nodiscard]] std::string line(int row) const;
  // The columns in which the row has that character.
  [[nodiscard]] std::vector<int> columnsOf(int row, std::string_view character) const;
  // All rows, for messages.
  [[nodiscard]] std::string text() const;

 private:
  // A character with its combining marks; empty behind a wide one.
  using Cell = std::string;
  using Row = std::vector<Cell>;

  void put(char32_t character, std::string_view bytes);
  void control(char byte);
  void sequence(std::string_view parameters, char final);
  void scroll(int lines);
  [[nodiscard]] Row blankRow() const { return Row(static_cast<std::size_t>(columns_), " "); }
  Row& at(int row) { return cells_[static_cast<std::size_t>(row)]; }

  std::vector<Row> cells_;
  int columns_;
  int row_ = 0;
  int column_ = 0;
  int top_ = 0;
  int bottom_;
  std::string last_ = " ";
  std::string pending_;  // the start of a sequence or a character
};
