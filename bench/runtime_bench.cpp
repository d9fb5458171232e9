// Sends, references and pools. The floor of a send is a call through a function pointer.

#include "platform/foundation/array.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/cf_dictionary.h"
#include "platform/foundation/string.h"
#include "platform/objc/retained.h"

#include <benchmark/benchmark.h>

#include <unordered_map>
#include <vector>

namespace {

NSUInteger callee(objc::Object*, objc::Selector) { return 3; }

void callThroughPointer(benchmark::State& state) {
  NSUInteger (*function)(objc::Object*, objc::Selector) = &callee;
  for (auto _ : state) {
    benchmark::DoNotOptimize(function);
    benchmark::DoNotOptimize(function(nullptr, nullptr));
  }
}
BENCHMARK(callThroughPointer);

void sendCached(benchmark::State& state) {
  const NSString text = "text"_ns;
  for (auto _ : state) benchmark::DoNotOptimize(text.length());
}
BENCHMARK(sendCached);

void probeSelector(benchmark::State& state) {
  const NSString text = "text"_ns;
  for (auto _ : state) benchmark::DoNotOptimize(text.respondsToSelector("length"_sel));
}
BENCHMARK(probeSelector);

void retainRelease(benchmark::State& state) {
  const auto array = Retained<NSArray>::adopt(send<NSArray>("NSArray"_class, "new"_sel));
  for (auto _ : state) {
    objc_retain(array.get().get());
    objc_release(array.get().get());
  }
}
BENCHMARK(retainRelease);

void poolPushPop(benchmark::State& state) {
  for (auto _ : state) objc_autoreleasePoolPop(objc_autoreleasePoolPush());
}
BENCHMARK(poolPushPop);

void allocAutoreleaseFree(benchmark::State& state) {
  for (auto _ : state) {
    const AutoreleasePool pool;
    benchmark::DoNotOptimize(NSArray::array());
  }
}
BENCHMARK(allocAutoreleaseFree);

void hashLookup(benchmark::State& state) {
  std::vector<int> keys(1000);
  std::unordered_map<const void*, const void*> map;
  for (int& key : keys) map.emplace(&key, &key);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(map.find(&keys[i])->second);
    i = (i + 7) % keys.size();
  }
}
BENCHMARK(hashLookup);

void dictionaryLookup(benchmark::State& state) {
  const CFDictionaryKeyCallBacks byAddress{
      0,
      nullptr,
      nullptr,
      nullptr,
      [](const void* first, const void* second) { return static_cast<Boolean>(first == second); },
      [](const void* key) { return reinterpret_cast<CFHashCode>(key); }};
  CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(kCFAllocatorDefault, 1024, &byAddress, nullptr);
  std::vector<int> keys(1000);
  for (int& key : keys) CFDictionarySetValue(dictionary, &key, &key);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(CFDictionaryGetValue(dictionary, &keys[i]));
    i = (i + 7) % keys.size();
  }
  CFRelease(dictionary);
}
BENCHMARK(dictionaryLookup);

}  // namespace
