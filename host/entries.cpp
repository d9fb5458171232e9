#include "host/entries.h"

#include "host/arrays.h"
#include "host/classes.h"
#include "host/error.h"
#include "host/events.h"
#include "host/exceptions.h"
#include "host/folder_items.h"
#include "host/memory.h"
#include "host/memory_blocks.h"
#include "host/options.h"
#include "host/property_entries.h"
#include "host/strings.h"
#include "host/variants.h"
#include "platform/foundation/run_loop.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace host {

namespace {

struct State {
  Word pluginVersion = 0;
  std::vector<const HostClass*> pluginClasses;
  int instancesToFailure = 0;
  std::vector<std::string> messageBoxes;
  std::mutex askedLock;  // worker threads bind entries too
  std::map<std::string, std::size_t, std::less<>> asked;
};

State& state() {
  static auto* running = new State;
  return *running;
}

REALobject pluginNewInstance(const char* className) {
  int& toFailure = state().instancesToFailure;
  if (toFailure > 0 && --toFailure == 0) return nullptr;
  HostClass* found = findClass(className);
  return found == nullptr ? nullptr : newInstance(*found);
}

REALclassRef pluginObjectType(const char* className) { return reinterpret_cast<REALclassRef>(findClass(className)); }

bool runtimeObjectIsa(REALobject object, REALclassRef classRef) {
  return object != nullptr && classRef != nullptr && classOf(object).isKindOf(*reinterpret_cast<HostClass*>(classRef));
}

// A class that the host can't take is left out and reported, as nothing can be answered.
void pluginRegisterClass(REALclassDefinition* definition) {
  try {
    const std::size_t before = allClasses().size();
    const HostClass& registered = registerClass(*definition);
    if (allClasses().size() != before) state().pluginClasses.push_back(&registered);
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
  }
}

void registerPluginVersion(Word version) { state().pluginVersion = version; }

double getVersion() { return options().version; }

bool inRuntime() { return options().runtime; }

std::optional<Declaration> readDeclaration(const char* text) {
  try {
    return parseDeclaration(text);
  } catch (const Error&) {
    return std::nullopt;
  }
}

void* loadObjectMethod(REALobject object, const char* text) {
  const auto declaration = readDeclaration(text);
  if (object == nullptr || !declaration) return nullptr;
  const Method* method = findMethod(classOf(object), *declaration);
  return method == nullptr ? nullptr : method->record->function;
}

REALinteger lenB(REALstring string) { return static_cast<REALinteger>(bytesOf(string).size()); }

void* loadGlobalMethod(void*, const char* text) {
  struct Global {
    Declaration declaration;
    void* function;
  };
  static const std::array globals{
      Global{parseDeclaration("LenB(s As String) As Integer"), reinterpret_cast<void*>(lenB)},
      Global{parseDeclaration("VarType(value As Variant) As Int32"), reinterpret_cast<void*>(variantType)},
  };
  const auto declaration = readDeclaration(text);
  if (!declaration) return nullptr;
  for (const Global& global : globals) {
    if (sameSignature(global.declaration, *declaration) && !lacks(global.declaration.name)) return global.function;
  }
  return nullptr;
}

void lockObject(REALobject object) { lock(object); }
void unlockObject(REALobject object) { unlock(object); }
void lockString(REALstring string) { lock(string); }
void unlockString(REALstring string) { unlock(string); }

REALstring buildString(const char* bytes, std::int32_t length) {
  if (bytes == nullptr || length <= 0) return nullptr;
  return newString({bytes, static_cast<std::size_t>(length)}, kEncodingAsStored);
}

CFStringRef getStringCFString(REALstring string, bool) { return copyCFString(string); }

// Of string data, with a terminator that a hostile host does without.
std::size_t copiedSize(std::size_t length) { return isHostile() && length > 0 ? length : length + 1; }

// The record is the caller's until it hands it back.
bool getStringData(REALstring string, std::uint32_t encoding, REALstringData* data) {
  const StringRef converted =
      encoding == kEncodingAsStored ? StringRef::share(string) : StringRef::adopt(newConverted(string, encoding));
  if (string != nullptr && !converted) return false;
  const std::string_view bytes = bytesOf(converted.get());
  void* copy = newMemory(copiedSize(bytes.size()));
  if (!bytes.empty()) std::memcpy(copy, bytes.data(), bytes.size());
  *data = {copy, static_cast<std::uint32_t>(bytes.size()), encodingOf(converted.get())};
  return true;
}

void disposeStringData(REALstringData* data) {
  releaseMemory(data->data, copiedSize(data->length));
  *data = {};
}

const char* stringGetCString(REALstring string) { return cStringOf(string); }

REALvariant stringToVariant(REALstring string) { return newVariant(StringRef::share(string)); }

template <class Scalar>
REALvariant scalarToVariant(Scalar value) {
  return newVariant(value);
}

REALstring variantToString(REALvariant variant) { return newVariantString(variant); }
float variantToSingle(REALvariant variant) { return static_cast<float>(variantDouble(variant)); }

REALarray createArray(std::int32_t type, REALinteger upper) { return newArray(type, upper); }

REALinteger arrayUpperBound(REALarray array) { return array == nullptr ? -1 : upperBound(array); }

void* getGetProc(REALarray array) { return array == nullptr ? nullptr : directGetter(array); }
void* getInsertProc(REALarray array) { return array == nullptr ? nullptr : directInserter(array); }

void* getEventInstance(REALobject object, Word eventId) { return eventFunction(object, eventId); }

void raiseException(REALobject exception) { raise(exception); }

void messageBox(REALstring string) {
  const std::string text = textOf(string);
  state().messageBoxes.push_back(text);
  if (options().messageBox) {
    options().messageBox(text);
  } else {
    std::fprintf(stderr, "%s\n", text.c_str());
  }
}

void runWhatIsDue(double seconds) { CFRunLoopRunInMode(kCFRunLoopDefaultMode, seconds, seconds > 0); }

void yieldToHost() {
  if (options().yield) {
    options().yield();
  } else {
    runWhatIsDue(0);
  }
}

void* memoryBlockAddress(REALmemoryBlock block) { return block == nullptr ? nullptr : blockAddress(block); }
REALinteger memoryBlockSize(REALmemoryBlock block) { return block == nullptr ? 0 : blockSize(block); }

REALfolderItem folderItemFromSpec(const FSSpec* spec) { return newFolderItem(spec); }
REALfolderItem folderItemFromParent(const FSRef* parent, const HFSUniStr255* name) {
  return newFolderItem(parent, name);
}

template <class Function>
void* entry(Function* function) {
  return reinterpret_cast<void*>(function);
}

const std::map<std::string_view, void*>& entries() {
  static const std::map<std::string_view, void*> all{
      {"RegisterPluginVersion", entry(registerPluginVersion)},
      {"REALGetRBVersion", entry(getVersion)},
      {"REALinRuntime", entry(inRuntime)},
      {"REALLoadGlobalMethod", entry(loadGlobalMethod)},
      {"REALLoadObjectMethod", entry(loadObjectMethod)},
      {"PluginNewInstance", entry(pluginNewInstance)},
      {"pluginObjectType", entry(pluginObjectType)},
      {"RuntimeObjectIsa", entry(runtimeObjectIsa)},
      {"PluginRegisterClass", entry(pluginRegisterClass)},
      {"REALLockObject", entry(lockObject)},
      {"REALUnlockObject", entry(unlockObject)},
      {"REALLockString", entry(lockString)},
      {"REALUnlockString", entry(unlockString)},
      {"REALBuildString", entry(buildString)},
      {"REALGetStringEncoding", entry(encodingOf)},
      {"REALSetStringEncoding", entry(setEncoding)},
      {"REALConvertString", entry(newConverted)},
      {"REALGetStringCFString", entry(getStringCFString)},
      {"PluginGetStringData", entry(getStringData)},
      {"PluginDisposeStringData", entry(disposeStringData)},
      {"StringGetCString", entry(stringGetCString)},
      {"REALGetPropValueInt", entry(getPropValueInt)},
      {"REALGetPropValueInt64", entry(getPropValueInt64)},
      {"REALGetPropValueSingle", entry(getPropValueSingle)},
      {"REALGetPropValueDouble", entry(getPropValueDouble)},
      {"REALGetPropValueString", entry(getPropValueString)},
      {"REALGetPropValueObject", entry(getPropValueObject)},
      {"REALSetPropValueInt", entry(setPropValueInt)},
      {"REALSetPropValueString", entry(setPropValueString)},
      {"StringToVariant", entry(stringToVariant)},
      {"Int32ToVariant", entry(scalarToVariant<std::int32_t>)},
      {"UInt32ToVariant", entry(scalarToVariant<std::uint32_t>)},
      {"Int64ToVariant", entry(scalarToVariant<std::int64_t>)},
      {"UInt64ToVariant", entry(scalarToVariant<std::uint64_t>)},
      {"SingleToVariant", entry(scalarToVariant<float>)},
      {"DoubleToVariant", entry(scalarToVariant<double>)},
      {"BooleanToVariant", entry(scalarToVariant<bool>)},
      {"VariantToString", entry(variantToString)},
      {"VariantToInt32", entry(variantInt32)},
      {"VariantToInt64", entry(variantInt64)},
      {"VariantToSingle", entry(variantToSingle)},
      {"VariantToDouble", entry(variantDouble)},
      {"RuntimeArrayCreateSingleDimBoundedArray", entry(createArray)},
      {"RuntimeUBound", entry(arrayUpperBound)},
      {"RuntimeDirectReadStringArray", entry(directReadString)},
      {"RuntimeDirectReadObjectArray", entry(directReadObject)},
      {"RuntimeArrayDirectGetGetProc", entry(getGetProc)},
      {"RuntimeArrayDirectGetInsertProc", entry(getInsertProc)},
      {"newMemoryBlock", entry(newMemoryBlock)},
      {"memoryBlockGetPtr", entry(memoryBlockAddress)},
      {"memoryBlockGetSize", entry(memoryBlockSize)},
      {"FolderItemFromFSSpec", entry(folderItemFromSpec)},
      {"REALFSSpecFromFolderItem", entry(fillSpec)},
      {"REALFSRefFromFolderItem", entry(fillRef)},
      {"REALFolderItemFromParentFSRef", entry(folderItemFromParent)},
      {"GetEventInstance", entry(getEventInstance)},
      {"RuntimeRaiseException", entry(raiseException)},
      {"RuntimeMsgBox", entry(messageBox)},
      {"REALYieldToRB", entry(yieldToHost)},
  };
  return all;
}

void* resolve(const char* entryName) {
  {
    const std::scoped_lock guard(state().askedLock);
    ++state().asked[entryName];
  }
  if (lacks(entryName)) return nullptr;
  const auto found = entries().find(entryName);
  return found == entries().end() ? nullptr : found->second;
}

}  // namespace

REALresolver resolver() { return resolve; }

std::vector<std::string> entryNames() {
  std::vector<std::string> names;
  for (const auto& [name, function] : entries()) names.emplace_back(name);
  return names;
}

std::size_t timesAsked(std::string_view entryName) {
  const std::scoped_lock guard(state().askedLock);
  const auto found = state().asked.find(entryName);
  return found == state().asked.end() ? 0 : found->second;
}

Word pluginVersion() { return state().pluginVersion; }

const std::vector<const HostClass*>& pluginClasses() { return state().pluginClasses; }

int failNewInstance(int nth) { return std::exchange(state().instancesToFailure, nth); }

const std::vector<std::string>& messageBoxes() { return state().messageBoxes; }

void idle(double seconds) {
  callPlugin([seconds] { runWhatIsDue(seconds); });
}

}  // namespace host
