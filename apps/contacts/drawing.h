#pragma once

#include "host/value.h"

#include <string>
#include <string_view>

namespace contacts {

// What makes the terminal on the standard output draw the picture, as kitty or as iTerm2 understand it; empty where it
// is no terminal or one that doesn't say that it draws pictures. image is the same picture, decoded.
std::string drawingOf(std::string_view bytes, const host::Value& image);

}  // namespace contacts
