#pragma once

#include <string>
#include <string_view>

namespace foundation {

// The text in Unicode's form D: canonical decompositions, and combining marks in canonical order. Unpaired surrogates
// stay as they are.
std::u16string decomposed(std::u16string_view units);

}  // namespace foundation
