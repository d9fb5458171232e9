#include "tests/picker/screen.h"

#include <locale.h>

#include <algorithm>
#include <cwchar>
#include <utility>

namespace {

constexpr char kEscape = '\x1b';

int cellsOf(char32_t character) {
  static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  const locale_t previous = uselocale(utf8);
  const int cells = wcwidth(static_cast<wchar_t>(character));
  uselocale(previous);
  return cells;
}

std::size_t lengthOf(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xE0) return 2;
  return first < 0xF0 ? 3 : 4;
}

char32_t decoded(std::string_view bytes) {
  if (bytes.size() == 1) return static_cast<unsigned char>(bytes[0]);
  char32_t character = static_cast<unsigned char>(bytes[0]) & (0xFFU >> (bytes.size() + 1));
  for (const char c : bytes.substr(1)) character = character << 6 | (static_cast<unsigned char>(c) & 0x3FU);
  return character;
}

// How long the escape sequence at the start is; 0 when its end is still to come.
std::size_t sequenceLength(std::string_view bytes) {
  if (bytes.size() < 2) return 0;
  if (bytes[1] == '(' || bytes[1] == ')') return bytes.size() < 3 ? 0 : 3;
  if (bytes[1] != '[') return 2;
  const auto final = std::find_if(bytes.begin() + 2, bytes.end(), [](char c) { return c >= '@' && c <= '~'; });
  return final == bytes.end() ? 0 : static_cast<std::size_t>(final - bytes.begin()) + 1;
}

}  // namespace

Screen::Screen(int rows, int columns) : columns_(columns), bottom_(rows - 1) {
  cells_.assign(static_cast<std::size_t>(rows), blankRow());
}

void Screen::resize(int rows, int columns) {
  columns_ = columns;
  for (Row& row : cells_) row.resize(static_cast<std::size_t>(columns), " ");
  cells_.resize(static_cast<std::size_t>(rows), blankRow());
  top_ = 0;
  bottom_ = rows - 1;
  row_ = std::min(row_, bottom_);
  column_ = std::min(column_, columns - 1);
}

void Screen::write(std::string_view bytes) {
  pending_ += bytes;
  std::string_view rest = pending_;
  while (!rest.empty()) {
    std::size_t length = 1;
    if (rest[0] == kEscape) {
      length = sequenceLength(rest);
      if (length == 0) break;
      if (rest[1] == '[') sequence(rest.substr(2, length - 3), rest[length - 1]);
      if (rest[1] == 'M') scroll(-1);
    } else if (static_cast<unsigned char>(rest[0]) < 0x20) {
      control(rest[0]);
    } else {
      length = lengthOf(static_cast<unsigned char>(rest[0]));
      if (rest.size() < length) break;
      put(decoded(rest.substr(0, length)), rest.substr(0, length));
    }
    rest.remove_prefix(length);
  }
  pending_ = std::string(rest);
}

void Screen::put(char32_t character, std::string_view bytes) {
  const int cells = cellsOf(character);
  if (cells == 0) {
    int before = column_ - 1;
    while (before > 0 && at(row_)[static_cast<std::size_t>(before)].empty()) --before;
    if (before >= 0) at(row_)[static_cast<std::size_t>(before)] += bytes;
    return;
  }
  if (column_ + cells > columns_) {
    column_ = 0;
    control('\n');
  }
  last_ = bytes;
  at(row_)[static_cast<std::size_t>(column_)] = bytes;
  if (cells == 2) at(row_)[static_cast<std::size_t>(column_) + 1].clear();
  column_ += cells;
}

void Screen::control(char byte) {
  if (byte == '\r') column_ = 0;
  if (byte == '\b') column_ = std::max(0, column_ - 1);
  if (byte == '\t') column_ = std::min(columns_ - 1, (column_ / 8 + 1) * 8);
  if (byte != '\n') return;
  if (row_ == bottom_) return scroll(1);
  row_ = std::min(row_ + 1, rows() - 1);
}

void Screen::scroll(int lines) {
  for (; lines > 0; --lines) {
    cells_.erase(cells_.begin() + top_);
    cells_.insert(cells_.begin() + bottom_, blankRow());
  }
  for (; lines < 0; ++lines) {
    cells_.erase(cells_.begin() + bottom_);
    cells_.insert(cells_.begin() + top_, blankRow());
  }
}

void Screen::sequence(std::string_view parameters, char final) {
  if (!parameters.empty() && (parameters[0] == '?' || parameters[0] == '>')) return;
  std::vector<int> numbers{0};
  for (const char c : parameters) {
    if (c == ';') {
      numbers.push_back(0);
    } else {
      numbers.back() = numbers.back() * 10 + (c - '0');
    }
  }
  numbers.resize(2);
  const int count = std::max(1, numbers[0]);
  const auto from = [&](int column) { return at(row_).begin() + column; };
  const int inRow = std::min(count, columns_ - column_);
  if (final == 'A') row_ -= count;
  if (final == 'B') row_ += count;
  if (final == 'C') column_ += count;
  if (final == 'D') column_ -= count;
  if (final == 'd' || final == 'H') row_ = count - 1;
  if (final == 'G') column_ = count - 1;
  if (final == 'H') column_ = std::max(1, numbers[1]) - 1;
  if (final == 'Z') column_ = (column_ - 1) / 8 * 8;
  if (final == 'S') scroll(count);
  if (final == 'T') scroll(-count);
  if (final == 'X') std::fill_n(from(column_), inRow, " ");
  if (final == 'P') at(row_).erase(from(column_), from(column_) + inRow);
  if (final == '@') at(row_).insert(from(column_), static_cast<std::size_t>(count), " ");
  at(row_).resize(static_cast<std::size_t>(columns_), " ");
  if (final == 'r') {
    top_ = count - 1;
    bottom_ = numbers[1] == 0 ? rows() - 1 : numbers[1] - 1;
    row_ = column_ = 0;
  }
  if (final == 'J' && numbers[0] == 2) {
    std::ranges::fill(cells_, blankRow());
  } else if (final == 'J' || final == 'K') {
    for (int row = row_ + 1; final == 'J' && row < rows(); ++row) at(row) = blankRow();
    const bool isToTheLeft = final == 'K' && numbers[0] == 1;
    std::fill(from(isToTheLeft ? 0 : column_), isToTheLeft ? from(column_) + 1 : at(row_).end(), " ");
  }
  if (final == 'L' || final == 'M') {
    const int top = std::exchange(top_, row_);
    scroll(final == 'M' ? count : -count);
    top_ = top;
  }
  if (final == 'b') {
    const std::string repeated = last_;
    for (int i = 0; i < count; ++i) put(decoded(repeated), repeated);
  }
  row_ = std::clamp(row_, 0, rows() - 1);
  column_ = std::clamp(column_, 0, columns_ - 1);
}

std::string Screen::line(int row) const {
  std::string text;
  for (const Cell& cell : cells_[static_cast<std::size_t>(row)]) text += cell;
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::vector<int> Screen::columnsOf(int row, std::string_view character) const {
  std::vector<int> columns;
  for (int i = 0; i < columns_; ++i) {
    if (cells_[static_cast<std::size_t>(row)][static_cast<std::size_t>(i)] == character) columns.push_back(i);
  }
  return columns;
}

std::string Screen::text() const {
  std::string text;
  for (int row = 0; row < rows(); ++row) text += line(row) + "\n";
  return text;
}
