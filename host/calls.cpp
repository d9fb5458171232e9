#include "host/calls.h"

#include "host/error.h"

#include <bit>
#include <utility>

namespace host {

namespace {

constexpr bool kWideWords = sizeof(Word) == sizeof(std::uint64_t);

template <std::size_t>
using WordAt = Word;
template <std::size_t>
using DoubleAt = double;

// The function is called as one that takes every register and every word of the stack: the caller cleans up, so that a
// function which takes less never sees the rest. Clang's function sanitizer compares the type of a call with that of
// the function, which is another by design here.
template <class Result, std::size_t... I, std::size_t... F, std::size_t... S>
#if defined(__clang__)
__attribute__((no_sanitize("function")))
#endif
Result
call(void* function, const std::array<Word, sizeof...(I)>& integers, const std::array<double, sizeof...(F)>& floats,
     const std::array<Word, sizeof...(S)>& stack, std::index_sequence<I...>, std::index_sequence<F...>,
     std::index_sequence<S...>) {
  return reinterpret_cast<Result (*)(WordAt<I>..., DoubleAt<F>..., WordAt<S>...)>(function)(integers[I]...,
                                                                                            floats[F]..., stack[S]...);
}

template <class Result, std::size_t I, std::size_t F, std::size_t S>
Result call(void* function, const std::array<Word, I>& integers, const std::array<double, F>& floats,
            const std::array<Word, S>& stack) {
  return call<Result>(function, integers, floats, stack, std::make_index_sequence<I>(), std::make_index_sequence<F>(),
                      std::make_index_sequence<S>());
}

}  // namespace

void NativeCall::addToStack(Word value) {
  if (stackCount_ == kStackWords) throw Error("a call with too many arguments");
  stack_[stackCount_++] = value;
}

void NativeCall::addWord(Word value) {
  if (integerCount_ != integers_.size()) {
    integers_[integerCount_++] = value;
  } else {
    addToStack(value);
  }
}

void NativeCall::addInt64(std::uint64_t value) {
  addWord(static_cast<Word>(value));
  // Without alignment, the lower half first.
  if constexpr (!kWideWords) addWord(static_cast<Word>(value >> 32));
}

void NativeCall::addSingle(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  if constexpr (kWideWords) {
    // A single lies in the lower half of its register or word.
    addDouble(std::bit_cast<double>(std::uint64_t{bits}));
  } else {
    addToStack(bits);
  }
}

void NativeCall::addDouble(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  if (floatCount_ != floats_.size()) {
    floats_[floatCount_++] = value;
  } else if constexpr (kWideWords) {
    addToStack(bits);
  } else {
    addInt64(bits);
  }
}

std::uint64_t NativeCall::callForInteger(void* function) {
  return call<std::uint64_t>(function, integers_, floats_, stack_);
}

float NativeCall::callForSingle(void* function) {
  const double result = call<double>(function, integers_, floats_, stack_);
  if constexpr (kWideWords)
    return std::bit_cast<float>(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(result)));
  // A floating-point register holds a single as a double that equals it.
  return static_cast<float>(result);
}

double NativeCall::callForDouble(void* function) { return call<double>(function, integers_, floats_, stack_); }

}  // namespace host
