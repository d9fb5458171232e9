#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 text as terminals show it and as people compare it.
namespace contacts {

// The columns that a text takes: none for combining characters, two for wide ones.
std::size_t displayWidth(std::string_view text);
// Filled with blanks up to the width.
std::string padded(std::string_view text, std::size_t width);
// On one line, and without what would steer the terminal.
std::string printable(std::string_view text);

bool isUtf8(std::string_view text);
std::string lowerCase(std::string_view text);
// Whatever their case.
bool isSame(std::string_view a, std::string_view b);
bool contains(std::string_view text, std::string_view part);

// Bytes of any kind.
std::string base64(std::string_view bytes);

// Whether the file descriptor is a terminal that shows colours and movement.
bool isTerminal(int descriptor);

}  // namespace contacts
