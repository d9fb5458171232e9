#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// What every fuzz target defines; the input need not end in a zero.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Ends the program, which is how a fuzzer hears of a fault, unless both are the same.
inline void expectEqual(const std::string& got, const std::string& expected, const char* what) {
  if (got == expected) return;
  std::fprintf(stderr, "%s: expected\n%s\ngot\n%s\n", what, expected.c_str(), got.c_str());
  std::abort();
}

inline void expect(bool holds, const char* what) {
  if (!holds) expectEqual("it doesn't", "it does", what);
}
