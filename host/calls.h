#pragma once

#include "frame/host_types.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace host {

// One call of a function whose type is known only from a declaration: add the arguments from left to right, then ask
// for the result as what the function returns.
class NativeCall {
 public:
  // Pointers and integers of up to a word's width.
  void addWord(Word value);
  void addInt64(std::uint64_t value);
  void addSingle(float value);
  void addDouble(double value);

  // For integers, pointers and nothing at all. Bits above the width of what the function returns mean nothing.
  std::uint64_t callForInteger(void* function);
  float callForSingle(void* function);
  double callForDouble(void* function);

 private:
#if defined(__x86_64__)
  static constexpr std::size_t kIntegerRegisters = 6;
  static constexpr std::size_t kFloatRegisters = 8;
#elif defined(__i386__)
  static constexpr std::size_t kIntegerRegisters = 0;
  static constexpr std::size_t kFloatRegisters = 0;
#else
#error "calls by declaration are written for i386 and x86-64"
#endif
  static constexpr std::size_t kStackWords = 32;

  void addToStack(Word value);

  std::array<Word, kIntegerRegisters> integers_{};
  std::array<double, kFloatRegisters> floats_{};
  std::array<Word, kStackWords> stack_{};
  std::size_t integerCount_ = 0;
  std::size_t floatCount_ = 0;
  std::size_t stackCount_ = 0;
};

}  // namespace host
