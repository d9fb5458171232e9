#include "frame/host_interface.h"

#include "frame/global_method.h"
#include "frame/host_ref.h"
#include "frame/plugin_entry.h"

#include <cstdlib>
#include <cstring>

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver) {
  gResolver = resolver;
  if (auto* registerVersion = resolveHostEntry<void(Word)>("RegisterPluginVersion")) {
    registerVersion(kPluginInterfaceVersion);
  }
  if (auto* version = resolveHostEntry<double()>("REALGetRBVersion")) rbversion_rbversion = version();
  PluginEntry();
}

namespace {

constinit HostEntry<"REALLoadGlobalMethod", void*(void*, const char*)> loadGlobalMethod;
constinit HostEntry<"RuntimeObjectIsa", bool(REALobject, REALclassRef)> objectIsA;
// Bound apart from the entry of the same name in the header: each wrapper has a cache of its own.
constinit HostEntry<"REALGetStringCFString", CFStringRef(REALstring, bool)> copyStringCFString;
constinit HostEntry<"PluginGetStringData", bool(REALstring, std::uint32_t, REALstringData*)> getStringData;
constinit HostEntry<"PluginDisposeStringData", void(REALstringData*)> disposeStringData;
constinit HostEntry<"StringGetCString", const char*(REALstring)> stringGetCString;
constinit HostEntry<"GetEventInstance", void*(REALobject, Word)> getEventInstance;
constinit GlobalMethod<"LenB( s as string ) as integer", REALinteger(REALstring)> lenB;

}  // namespace

void* REALLoadFrameworkMethod(const char* declaration) { return loadGlobalMethod(nullptr, declaration); }

bool REALObjectIsA(REALobject object, REALclassRef classRef) { return objectIsA(object, classRef); }

CFStringRef REALCopyStringCFString(REALstring string) { return copyStringCFString(string, false); }

void* REALGetEventInstance(REALobject object, const REALevent* event) {
  return getEventInstance(object, event->hostReserved);
}

namespace {

// For hosts that don't hand out string data themselves: a copy, with a terminator wide enough for every encoding.
bool copyStringData(REALstring string, std::uint32_t encoding, REALstringData* data) {
  constexpr std::size_t kTerminatorSize = 4;
  auto* cString = stringGetCString.find();
  auto* byteLength = lenB.find();
  if (cString == nullptr || byteLength == nullptr || string == nullptr) return false;

  HostRef<REALstring> converted;
  if (encoding != kEncodingAsStored && REALGetStringEncoding(string) != encoding) {
    converted = adoptHost(REALConvertString(string, encoding));
    if (!converted) return false;
    string = converted.get();
  }
  const auto length = static_cast<std::uint32_t>(byteLength(string));
  const char* bytes = cString(string);
  if (bytes == nullptr && length > 0) return false;
  auto* buffer = static_cast<char*>(std::malloc(length + kTerminatorSize));
  if (buffer == nullptr) return false;
  if (length > 0) std::memcpy(buffer, bytes, length);
  std::memset(buffer + length, 0, kTerminatorSize);
  *data = {buffer, length, encoding};
  return true;
}

}  // namespace

bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* data) {
  if (auto* entry = getStringData.find()) return entry(string, encoding, data);
  return copyStringData(string, encoding, data);
}

void REALDisposeStringData(REALstringData* data) {
  if (auto* entry = disposeStringData.find()) {
    entry(data);
  } else {
    std::free(data->data);
  }
}

namespace {

template <class Element>
using Getter = Element (*)(REALarray, REALinteger index);
// Answers a Getter.
using GetterSelector = void*(REALarray);

template <class Element>
Element storedElement(REALarray array, REALinteger index) {
  const auto* record = reinterpret_cast<const REALarrayRecord*>(array);
  return static_cast<const Element*>(record->storage)[index];
}

std::int64_t GetArrayValueProcInt64(REALarray array, REALinteger index) {
  return storedElement<std::int64_t>(array, index);
}

std::int32_t GetArrayValueProcInt32(REALarray array, REALinteger index) {
  return storedElement<std::int32_t>(array, index);
}

std::int32_t GetArrayValueProcInt8(REALarray array, REALinteger index) {
  return storedElement<std::int8_t>(array, index);
}

float GetArrayValueProcFloat(REALarray array, REALinteger index) { return storedElement<float>(array, index); }

double GetArrayValueProcDouble(REALarray array, REALinteger index) { return storedElement<double>(array, index); }

REALstring GetArrayValueProcString(REALarray array, REALinteger index) {
  return HostRef<REALstring>::share(storedElement<REALstring>(array, index)).handOver();
}

REALobject GetArrayValueProcObject(REALarray array, REALinteger index) {
  return HostRef<REALobject>::share(storedElement<REALobject>(array, index)).handOver();
}

void* MyRuntimeArrayDirectGetGetProcInt64(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcInt64); }
void* MyRuntimeArrayDirectGetGetProcInt32(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcInt32); }
void* MyRuntimeArrayDirectGetGetProcInt8(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcInt8); }
void* MyRuntimeArrayDirectGetGetProcFloat(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcFloat); }
void* MyRuntimeArrayDirectGetGetProcDouble(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcDouble); }
void* MyRuntimeArrayDirectGetGetProcString(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcString); }
void* MyRuntimeArrayDirectGetGetProcObject(REALarray) { return reinterpret_cast<void*>(GetArrayValueProcObject); }

// One accessor a use: the host's selector, or, once the host was found to have none, Own for the life of the process.
template <class Element, GetterSelector Own, class Out>
void readElement(REALarray array, REALinteger index, Out* out) {
  static std::atomic<GetterSelector*> cached{nullptr};
  GetterSelector* selector = cached.load(std::memory_order_relaxed);
  if (selector == nullptr) {
    selector = resolveHostEntry<GetterSelector>("RuntimeArrayDirectGetGetProc");
    if (selector == nullptr) selector = Own;
    cached.store(selector, std::memory_order_relaxed);
  }
  auto getter = reinterpret_cast<Getter<Element>>(selector(array));
  if (getter == nullptr || out == nullptr) return;
  *out = static_cast<Out>(getter(array, index));
}

}  // namespace

void REALGetArrayValueInt64(REALarray array, REALinteger index, std::int64_t* out) {
  readElement<std::int64_t, MyRuntimeArrayDirectGetGetProcInt64>(array, index, out);
}

void REALGetArrayValueInt32(REALarray array, REALinteger index, std::int32_t* out) {
  readElement<std::int32_t, MyRuntimeArrayDirectGetGetProcInt32>(array, index, out);
}

void REALGetArrayValueUInt8(REALarray array, REALinteger index, std::uint8_t* out) {
  readElement<std::int32_t, MyRuntimeArrayDirectGetGetProcInt8>(array, index, out);
}

void REALGetArrayValueSingle(REALarray array, REALinteger index, float* out) {
  readElement<float, MyRuntimeArrayDirectGetGetProcFloat>(array, index, out);
}

void REALGetArrayValueDouble(REALarray array, REALinteger index, double* out) {
  readElement<double, MyRuntimeArrayDirectGetGetProcDouble>(array, index, out);
}

void REALGetArrayValueString(REALarray array, REALinteger index, REALstring* out) {
  readElement<REALstring, MyRuntimeArrayDirectGetGetProcString>(array, index, out);
}

void REALGetArrayValueObject(REALarray array, REALinteger index, REALobject* out) {
  readElement<REALobject, MyRuntimeArrayDirectGetGetProcObject>(array, index, out);
}

namespace {

constinit HostEntry<"RuntimeArrayDirectGetInsertProc", void*(REALarray)> stringInserter;
constinit HostEntry<"RuntimeArrayDirectGetInsertProc", void*(REALarray)> objectInserter;

template <class Value>
void insertElement(void* procedure, REALarray array, REALinteger index, Value value) {
  using Inserter = void (*)(REALarray, REALinteger, Value);
  if (procedure != nullptr) reinterpret_cast<Inserter>(procedure)(array, index, value);
}

}  // namespace

void REALInsertArrayValueString(REALarray array, REALinteger index, REALstring value) {
  insertElement(stringInserter(array), array, index, value);
}

void REALInsertArrayValueObject(REALarray array, REALinteger index, REALobject value) {
  insertElement(objectInserter(array), array, index, value);
}
