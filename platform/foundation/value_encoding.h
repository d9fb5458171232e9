#pragma once

#include <cstddef>
#include <optional>

namespace foundation {

// How many bytes a value of that type encoding takes, padding included. Scalars, pointers and structures are
// understood; nothing is answered for any other encoding.
std::optional<std::size_t> sizeOfEncoding(const char* encoding);

}  // namespace foundation
