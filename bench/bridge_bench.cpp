// Values between host and Foundation, each beside its floor: what takes the same bytes across without any framework.
// The argument is the number of characters, entries or elements.

#include "bench/plain_text.h"
#include "bridge/dictionaries.h"
#include "bridge/instance_registry.h"
#include "bridge/strings.h"
#include "bridge/variant_readers.h"
#include "bridge/variants.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "host/arrays.h"
#include "host/classes.h"
#include "host/dictionaries.h"
#include "host/exceptions.h"
#include "host/loader.h"
#include "host/objects.h"
#include "host/strings.h"
#include "platform/objc/retained.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

void startHost() {
  [[maybe_unused]] static const bool isStarted = [] {
    host::startPlugin(REALPluginMain);
    CocoaInit();
    return true;
  }();
}

// Runs the conversion as one call into the plug-in.
template <class Convert>
void measure(benchmark::State& state, Convert convert) {
  for (auto _ : state) {
    const host::PluginScope scope;
    benchmark::DoNotOptimize(convert());
  }
}

void copyBytes(benchmark::State& state, std::string_view pattern) {
  const std::string text = sample(pattern, state.range(0));
  std::string copy(text.size(), '\0');
  for (auto _ : state) {
    std::memcpy(copy.data(), text.data(), text.size());
    benchmark::ClobberMemory();
  }
}

void stringToFoundation(benchmark::State& state, std::string_view pattern) {
  startHost();
  const auto string = adoptHost(host::newString(sample(pattern, state.range(0)), kEncodingUTF8));
  for (auto _ : state) {
    benchmark::DoNotOptimize(Retained<NSString>::adopt(bridge<NSString>(RBString2CFString(string.get()))).get());
  }
}

void stringToHostPlainly(benchmark::State& state, std::string_view pattern) {
  const std::string text = sample(pattern, state.range(0));
  std::vector<char16_t> units(text.size());
  units.resize(plainDecode(text.c_str(), units.data()));
  for (auto _ : state) {
    const auto object = std::make_unique<char[]>(32);
    const std::unique_ptr<char[]> bytes(new char[3 * units.size() + 1]);
    benchmark::DoNotOptimize(object.get());
    benchmark::DoNotOptimize(plainEncode(units.data(), units.size(), bytes.get()));
    benchmark::ClobberMemory();
  }
}

void stringToHost(benchmark::State& state, std::string_view pattern) {
  startHost();
  const auto string = adoptHost(host::newString(sample(pattern, state.range(0)), kEncodingUTF8));
  const auto text = Retained<NSString>::adopt(bridge<NSString>(RBString2CFString(string.get())));
  for (auto _ : state) benchmark::DoNotOptimize(adoptHost(NSStringRB(text.get())).get());
}

#define CHARACTERS Arg(5)->Arg(50)->Arg(500)->Arg(50000)
#define TEXTS(function)                                   \
  BENCHMARK_CAPTURE(function, ascii, kAscii)->CHARACTERS; \
  BENCHMARK_CAPTURE(function, mixed, kMixed)->CHARACTERS
TEXTS(copyBytes);
TEXTS(decodePlainly);
TEXTS(stringToFoundation);
TEXTS(stringToHostPlainly);
TEXTS(stringToHost);

std::string keyAt(std::int64_t index) { return "key " + std::to_string(index); }

std::vector<std::string> keysUpTo(std::int64_t count) {
  std::vector<std::string> keys;
  for (std::int64_t i = 0; i < count; ++i) keys.push_back(keyAt(i));
  return keys;
}

// The host's part alone: what any plug-in has to ask of it for such a dictionary or array, with no framework on the
// other side but a plain table.
void dictionaryToHostPlainly(benchmark::State& state) {
  startHost();
  const std::vector<std::string> keys = keysUpTo(state.range(0));
  auto newText = [](const std::string& text) {
    return adoptHost(REALNewVariantString(adoptHost(host::newString(text, kEncodingUTF8)).get()));
  };
  for (auto _ : state) {
    const host::PluginScope scope;
    const auto dictionary = adoptHost(NewDictionary());
    for (const std::string& key : keys) SetDictionaryValue(dictionary.get(), newText(key).get(), newText(key).get());
  }
}

host::Value dictionaryOf(std::int64_t count) {
  host::Value entries = host::dictionary({});
  for (std::int64_t i = 0; i < count; ++i) entries.assign("Value", keyAt(i), keyAt(i));
  return entries;
}

REALdictionary handleOf(const host::Value& dictionary) { return static_cast<REALdictionary>(dictionary.object()); }

void dictionaryToFoundation(benchmark::State& state) {
  startHost();
  const host::Value entries = dictionaryOf(state.range(0));
  measure(state, [&] { return NewNSDictionary(handleOf(entries)); });
}

void dictionaryToHost(benchmark::State& state) {
  startHost();
  const host::Value entries = dictionaryOf(state.range(0));
  Retained<NSDictionary> dictionary;
  {
    const host::PluginScope scope;
    dictionary = Retained<NSDictionary>::share(NewNSDictionary(handleOf(entries)));
  }
  measure(state, [&] { return adoptHost(NSDictionaryRB(dictionary.get())).get(); });
}

void dictionaryToFoundationPlainly(benchmark::State& state) {
  startHost();
  const host::Value entries = dictionaryOf(state.range(0));
  REALdictionary dictionary = handleOf(entries);
  auto textOf = [](REALvariant variant) {
    const auto text = adoptHost(GetVariantString(variant));
    return host::textOf(text.get());
  };
  for (auto _ : state) {
    const host::PluginScope scope;
    std::unordered_map<std::string, std::string> table;
    for (std::int32_t i = 0; i < GetDictionaryCount(dictionary); ++i) {
      const auto key = adoptHost(GetDictionaryKey(dictionary, i));
      table.emplace(textOf(key.get()), textOf(adoptHost(GetDictionaryValue(dictionary, key.get())).get()));
    }
    benchmark::DoNotOptimize(table);
  }
}

#define ENTRIES(function) BENCHMARK(function)->Arg(100)->Arg(1000)->Arg(10000)
ENTRIES(dictionaryToFoundationPlainly);
ENTRIES(dictionaryToFoundation);
ENTRIES(dictionaryToHostPlainly);
ENTRIES(dictionaryToHost);

host::Value arrayOf(std::int64_t count) {
  std::vector<host::Value> elements;
  for (std::int64_t i = 0; i < count; ++i) elements.emplace_back(i);
  return host::objectArray(elements);
}

void arrayToFoundation(benchmark::State& state) {
  startHost();
  const host::Value array = arrayOf(state.range(0));
  measure(state, [&] { return GetVariantAsNSObject(array.object()); });
}

void arrayToHost(benchmark::State& state) {
  startHost();
  const host::Value array = arrayOf(state.range(0));
  Retained<NSObject> list;
  {
    const host::PluginScope scope;
    list = Retained<NSObject>::share(GetVariantAsNSObject(array.object()));
  }
  measure(state, [&] { return adoptHost(NewVariantFromNSObject(list.get())).get(); });
}

void arrayToFoundationPlainly(benchmark::State& state) {
  startHost();
  const host::Value array = arrayOf(state.range(0));
  auto* elements = reinterpret_cast<REALobjectArray>(array.object());
  for (auto _ : state) {
    const host::PluginScope scope;
    std::vector<std::unique_ptr<std::int64_t>> list;
    for (REALinteger i = 0; i <= REALGetArrayUBound(elements); ++i) {
      REALobject element = nullptr;
      REALGetArrayValue(elements, i, &element);
      const auto held = adoptHost(element);
      list.push_back(std::make_unique<std::int64_t>(GetVariantLong(element)));
    }
    benchmark::DoNotOptimize(list);
  }
}

void arrayToHostPlainly(benchmark::State& state) {
  startHost();
  for (auto _ : state) {
    const host::PluginScope scope;
    const auto array = adoptHost(REALCreateArrayVariant(-1));
    for (REALinteger i = 0; i < state.range(0); ++i) {
      REALInsertArrayValue(array.get(), i, adoptHost(REALNewVariantInt64(i)).get());
    }
  }
}

#define ELEMENTS(function) BENCHMARK(function)->Arg(1000)->Arg(10000)
ELEMENTS(arrayToFoundationPlainly);
ELEMENTS(arrayToFoundation);
ELEMENTS(arrayToHostPlainly);
ELEMENTS(arrayToHost);

// Wrappers for as many objects as the argument says, and their addresses in a plain table.
class Wrappers {
 public:
  explicit Wrappers(std::int64_t count) {
    startHost();
    for (std::int64_t i = 0; i < count; ++i) {
      wrappers_.push_back(host::newObject("ABMutableMultiValueVXR"));
      objects_.push_back(wrapped<ABMutableMultiValue>(wrappers_.back().object()));
    }
  }
  [[nodiscard]] ABMutableMultiValue next() { return objects_[at_ = (at_ + 7) % objects_.size()]; }

 private:
  std::vector<host::Value> wrappers_;
  std::vector<ABMutableMultiValue> objects_;
  std::size_t at_ = 0;
};

void lookUpPlainly(benchmark::State& state) {
  Wrappers wrappers(state.range(0));
  std::unordered_map<const void*, const void*> table;
  for (std::int64_t i = 0; i < state.range(0); ++i) table.emplace(wrappers.next().get(), &table);
  for (auto _ : state) benchmark::DoNotOptimize(table.find(wrappers.next().get())->second);
}
BENCHMARK(lookUpPlainly)->Arg(1000);

void findWrapperAgain(benchmark::State& state) {
  Wrappers wrappers(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(FindInstance(wrappers.next()));
}
BENCHMARK(findWrapperAgain)->Arg(1000);

void handOutWrapperAgain(benchmark::State& state) {
  Wrappers wrappers(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(adoptHost(NewABMutableMultiValueVXR(wrappers.next())).get());
}
BENCHMARK(handOutWrapperAgain)->Arg(1000);

// The host's object and the registry's entry, without the framework's object.
void wrapperMemory(benchmark::State& state) {
  startHost();
  std::vector<Retained<ABMutableMultiValue>> objects;
  std::vector<HostRef<REALobject>> wrappers;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    objects.push_back(
        Retained<ABMutableMultiValue>::adopt(send<ABMutableMultiValue>("ABMutableMultiValue"_class, "new"_sel)));
  }
  wrappers.reserve(objects.size());
  for (auto _ : state) {
    const std::size_t before = mallinfo2().uordblks;
    for (const auto& object : objects) wrappers.push_back(adoptHost(NewABMutableMultiValueVXR(object.get())));
    const auto grown = static_cast<double>(mallinfo2().uordblks - before);
    state.counters["bytes/wrapper"] = grown / static_cast<double>(objects.size());
  }
}
BENCHMARK(wrapperMemory)->Arg(10000)->Iterations(1);

REALinteger neutral(REALobject) { return 0; }

void callFunction(benchmark::State& state) {
  REALinteger (*function)(REALobject) = &neutral;
  for (auto _ : state) {
    benchmark::DoNotOptimize(function);
    benchmark::DoNotOptimize(function(nullptr));
  }
}
BENCHMARK(callFunction);

// A function of the table, which guards, sends and converts.
template <class Function>
Function tableFunction(std::string_view declaration) {
  const auto& objectClass = host::requireClass("ABMutableMultiValueVXR");
  return reinterpret_cast<Function>(
      host::findMethod(objectClass, host::parseDeclaration(declaration))->record->function);
}

void callForInteger(benchmark::State& state) {
  startHost();
  const host::Value values = host::newObject("ABMutableMultiValueVXR");
  auto* function = tableFunction<REALinteger (*)(REALobject)>("count as integer");
  for (auto _ : state) benchmark::DoNotOptimize(function(values.object()));
}
BENCHMARK(callForInteger);

void callForShortString(benchmark::State& state) {
  startHost();
  const host::Value values = host::newObject("ABMutableMultiValueVXR");
  values.call("addValue", "ada@example.org", "office");
  auto* function = tableFunction<REALstring (*)(REALobject, std::uint32_t)>("labelAtIndex(index as UInt32) as string");
  for (auto _ : state) {
    const host::PluginScope scope;
    benchmark::DoNotOptimize(adoptHost(function(values.object(), 0)).get());
  }
}
BENCHMARK(callForShortString);

// The same by name, as host code does.
void callMemberByName(benchmark::State& state) {
  startHost();
  const host::Value values = host::newObject("ABMutableMultiValueVXR");
  for (auto _ : state) benchmark::DoNotOptimize(values.call("count"));
}
BENCHMARK(callMemberByName);

}  // namespace
