#include "tests/plugin/independent_host.h"

#include <dlfcn.h>

#include <filesystem>
#include <map>
#include <stdexcept>

namespace independent_host {

namespace {

struct Object {
  std::string* className;
  Word references;
  void* unused;
  Word data[8];
  std::vector<REALobject> elements;  // of an array
  std::string text;                  // of a variant
};
static_assert(offsetof(Object, data) <= kObjectDataOffset);

struct String {
  Word references;
  const char* buffer;
  Word unused;
  Word length;
  std::string text;
};

std::vector<REALclassDefinition*> registered;
std::map<std::string, REALclassDefinition*> byName;
long live = 0;

Object& of(REALobject object) { return *reinterpret_cast<Object*>(object); }
String& of(REALstring string) { return *reinterpret_cast<String*>(string); }

REALobject newObject(const std::string& className) {
  ++live;
  auto* object = new Object{};
  object->className = new std::string(className);
  object->references = 1;
  return reinterpret_cast<REALobject>(object);
}

REALobject newInstance(const char* className) { return byName.contains(className) ? newObject(className) : nullptr; }

void lockObject(REALobject object) { ++of(object).references; }

const REALclassDefinition* rootOf(const std::string& className) {
  const auto found = byName.find(className);
  if (found == byName.end()) return nullptr;
  return found->second->superName == nullptr ? found->second : rootOf(found->second->superName);
}

void unlockObject(REALobject object) {
  if (--of(object).references > 0) return;
  if (const auto* root = rootOf(*of(object).className); root != nullptr && root->destructor != nullptr) {
    root->destructor(object);
  }
  for (REALobject element : of(object).elements) {
    if (element != nullptr) unlockObject(element);
  }
  delete of(object).className;
  delete &of(object);
  --live;
}

void lockString(REALstring string) { ++of(string).references; }

void unlockString(REALstring string) {
  if (--of(string).references == 0) delete &of(string);
}

REALstring buildString(const char* bytes, std::int32_t length) {
  return string({bytes, static_cast<std::size_t>(length)});
}

REALvariant stringToVariant(REALstring string) {
  REALvariant variant = newObject("Variant");
  of(variant).text = text(string);
  return variant;
}

REALarray createArray(std::int32_t, REALinteger) { return static_cast<REALarray>(newObject("Array")); }

void insert(REALarray array, REALinteger index, REALobject element) {
  if (element != nullptr) lockObject(element);
  of(array).elements.insert(of(array).elements.begin() + index, element);
}

void* insertProcedure(REALarray) { return reinterpret_cast<void*>(insert); }

void registerClass(REALclassDefinition* definition) {
  definition->dataOffset = kObjectDataOffset;
  registered.push_back(definition);
  byName[definition->name] = definition;
}

template <class Function>
void* entry(Function* function) {
  return reinterpret_cast<void*>(function);
}

void* resolve(const char* name) {
  static const std::map<std::string, void*> entries{
      {"PluginRegisterClass", entry(registerClass)},
      {"PluginNewInstance", entry(newInstance)},
      {"REALLockObject", entry(lockObject)},
      {"REALUnlockObject", entry(unlockObject)},
      {"REALLockString", entry(lockString)},
      {"REALUnlockString", entry(unlockString)},
      {"REALBuildString", entry(buildString)},
      {"StringToVariant", entry(stringToVariant)},
      {"RuntimeArrayCreateSingleDimBoundedArray", entry(createArray)},
      {"RuntimeArrayDirectGetInsertProc", entry(insertProcedure)},
  };
  auto found = entries.find(name);
  return found == entries.end() ? nullptr : found->second;
}

}  // namespace

bool start(const std::vector<std::string>& frameworks) {
  const auto build = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
  for (const std::string& name : frameworks) {
    const auto library = build / "Frameworks" / (name + ".framework") / name;
    if (dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) throw std::runtime_error(dlerror());
  }
  void* plugin = dlopen((build / "Plugins" / "addressbook-plugin.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  if (plugin == nullptr) return false;
  reinterpret_cast<void (*)(REALresolver)>(dlsym(plugin, "REALPluginMain"))(resolve);
  return true;
}

const std::vector<REALclassDefinition*>& classes() { return registered; }

void* function(const std::string& className, const std::string& declaration) {
  const REALclassDefinition& definition = *byName.at(className);
  for (const auto& [methods, count] : {std::pair(definition.methods, definition.methodCount),
                                       {definition.sharedMethods, definition.sharedMethodCount}}) {
    for (Word i = 0; i < count; ++i) {
      if (methods[i].declaration == declaration) return methods[i].function;
    }
  }
  throw std::runtime_error("no member " + declaration);
}

REALstring string(const std::string& utf8) {
  auto* made = new String{1, nullptr, 0, utf8.size(), " " + utf8};
  made->buffer = made->text.data();
  return reinterpret_cast<REALstring>(made);
}

std::string text(REALstring string) { return string == nullptr ? "" : of(string).text.substr(1); }

std::string text(REALvariant variant) { return variant == nullptr ? "" : of(variant).text; }

const std::vector<REALobject>& elements(REALobjectArray array) { return of(array).elements; }

std::string classOf(REALobject object) { return *of(object).className; }

long liveObjects() { return live; }

void release(REALobject object) { unlockObject(object); }
void release(REALstring string) { unlockString(string); }

}  // namespace independent_host
