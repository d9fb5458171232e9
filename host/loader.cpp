#include "host/loader.h"

#include "host/entries.h"
#include "host/error.h"
#include "host/exceptions.h"

#include <dlfcn.h>

namespace host {

namespace {

// In the order of their dependences.
constexpr const char* kFrameworks[] = {"Foundation", "Carbon", "AppKit", "AddressBook"};

void* requireOpened(void* opened) {
  if (opened == nullptr) throw Error(dlerror());
  return opened;
}

}  // namespace

std::vector<MissingFramework> loadFrameworks(const std::filesystem::path& folder) {
  std::vector<MissingFramework> missing;
  for (const std::string name : kFrameworks) {
    const std::filesystem::path library = folder / (name + ".framework") / name;
    if (dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL) == nullptr) missing.push_back({name, dlerror()});
  }
  return missing;
}

void loadPlugin(const std::filesystem::path& file) {
  void* library = requireOpened(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL));
  void* entryPoint = requireOpened(dlsym(library, "REALPluginMain"));
  startPlugin(reinterpret_cast<void (*)(REALresolver)>(entryPoint));
}

void startPlugin(void (*entryPoint)(REALresolver)) {
  callPlugin([entryPoint] { entryPoint(resolver()); });
}

}  // namespace host
