// Conversions between UTF-8 and strings. The floor is a plain loop over the characters and the two allocations that a
// string of its own needs; the argument is the number of characters.

#include "bench/plain_text.h"
#include "platform/foundation/cf_string.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

void decodeString(benchmark::State& state, std::string_view pattern) {
  const std::string text = sample(pattern, state.range(0));
  for (auto _ : state) {
    CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8);
    benchmark::DoNotOptimize(string);
    CFRelease(string);
  }
}

void encodePlainly(benchmark::State& state, std::string_view pattern) {
  const std::string text = sample(pattern, state.range(0));
  std::vector<char16_t> units(text.size());
  units.resize(plainDecode(text.c_str(), units.data()));
  std::vector<char> buffer(3 * units.size() + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(plainEncode(units.data(), units.size(), buffer.data()));
    benchmark::ClobberMemory();
  }
}

void encodeString(benchmark::State& state, std::string_view pattern) {
  const std::string text = sample(pattern, state.range(0));
  CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8);
  std::vector<char> buffer(3 * static_cast<std::size_t>(CFStringGetLength(string)) + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        CFStringGetCString(string, buffer.data(), static_cast<CFIndex>(buffer.size()), kCFStringEncodingUTF8));
    benchmark::ClobberMemory();
  }
  CFRelease(string);
}

#define CHARACTERS Arg(5)->Arg(50)->Arg(500)->Arg(50000)
BENCHMARK_CAPTURE(decodePlainly, ascii, kAscii)->CHARACTERS;
BENCHMARK_CAPTURE(decodeString, ascii, kAscii)->CHARACTERS;
BENCHMARK_CAPTURE(decodePlainly, mixed, kMixed)->CHARACTERS;
BENCHMARK_CAPTURE(decodeString, mixed, kMixed)->CHARACTERS;
BENCHMARK_CAPTURE(encodePlainly, ascii, kAscii)->CHARACTERS;
BENCHMARK_CAPTURE(encodeString, ascii, kAscii)->CHARACTERS;
BENCHMARK_CAPTURE(encodePlainly, mixed, kMixed)->CHARACTERS;
BENCHMARK_CAPTURE(encodeString, mixed, kMixed)->CHARACTERS;

}  // namespace
