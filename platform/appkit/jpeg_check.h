#pragma once

#include <cstdint>
#include <span>

namespace appkit {

// Whether every code table of a JPEG (any data that may be taken for one) has at most its 256 codes. The decoder of the
// common formats takes that for granted and writes beyond its tables otherwise.
bool hasSoundCodeTables(std::span<const std::uint8_t> data);

}  // namespace appkit
