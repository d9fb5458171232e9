#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace foundation {

// Bytes for a description: "<00010203 0405>".
std::string hexDump(std::span<const std::uint8_t> bytes);

}  // namespace foundation
