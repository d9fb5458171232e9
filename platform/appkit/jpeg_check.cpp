#include "platform/appkit/jpeg_check.h"

#include <algorithm>
#include <cstddef>

namespace appkit {

namespace {

constexpr std::uint8_t kDefineTables = 0xC4;
constexpr std::size_t kTableHead = 1 + 16;  // the table's number, and how many codes there are of each length
constexpr std::size_t kMostCodes = 256;

// Markers that stand alone; no length and no segment follow them. 0 is what keeps a 0xFF apart from a marker.
bool standsAlone(std::uint8_t marker) { return marker <= 0x01 || (marker >= 0xD0 && marker <= 0xD9); }

// Whether the tables are sound that begin within the first size bytes; the last may run on beyond them, as the decoder
// reads it whole before it notices. It reads zeros where the data has ended.
bool areSound(std::span<const std::uint8_t> tables, std::size_t size) {
  for (std::size_t at = 0; at < std::min(size, tables.size());) {
    std::size_t codes = 0;
    for (const std::uint8_t count : tables.subspan(at, std::min(kTableHead, tables.size() - at)).subspan(1)) {
      codes += count;
    }
    if (codes > kMostCodes) return false;
    at += kTableHead + codes;
  }
  return true;
}

}  // namespace

// Between segments, and within the coded picture, whatever isn't 0xFF is passed over, as the decoder does.
bool hasSoundCodeTables(std::span<const std::uint8_t> data) {
  for (std::size_t at = 0; at + 1 < data.size(); ++at) {
    if (data[at] != 0xFF || data[at + 1] == 0xFF || standsAlone(data[at + 1])) continue;
    const std::uint8_t marker = data[at + 1];
    const auto segment = data.subspan(at + 2);
    if (segment.size() < 2) return true;
    // The length counts its own two bytes.
    const auto length = static_cast<std::size_t>(segment[0] << 8 | segment[1]);
    if (marker == kDefineTables && length > 2 && !areSound(segment.subspan(2), length - 2)) return false;
    at += 1 + length;
  }
  return true;
}

}  // namespace appkit
