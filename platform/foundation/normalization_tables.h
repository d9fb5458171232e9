#pragma once

#include <cstdint>

// Generated from Unicode's data files by generate/normalization_tables.cpp.
namespace foundation {

// A code point's value stands at kNormalizationValues[kNormalizationPages[c >> 8]][c & 0xFF]. Below
// kFirstDecomposition it is the combining class; from there on, it is the position in kDecompositions, plus
// kFirstDecomposition, of a length and that many code points, which decompose no further.
inline constexpr std::uint16_t kFirstDecomposition = 256;

extern const std::uint8_t kNormalizationPages[0x1100];
extern const std::uint16_t kNormalizationValues[][256];
extern const char32_t kDecompositions[];

}  // namespace foundation
