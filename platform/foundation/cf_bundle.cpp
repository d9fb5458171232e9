#include "platform/foundation/cf_bundle.h"

#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/foundation/url_object.h"
#include "platform/objc/class_builder.h"

#include <optional>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <sys/stat.h>

namespace foundation {

namespace {

constexpr std::string_view kExtension = ".framework";

struct BundleObject : objc::Object {
  BundleObject() = default;
  BundleObject(const BundleObject&) = delete;
  BundleObject& operator=(const BundleObject&) = delete;
  ~BundleObject() {
    if (library != nullptr) dlclose(library);
  }

  // The classes that a framework registers can't be taken back, so neither can its code.
  bool load() {
    if (library == nullptr) library = dlopen(executable.c_str(), RTLD_NOW | RTLD_GLOBAL | RTLD_NODELETE);
    return library != nullptr;
  }

  std::string executable;
  void* library = nullptr;
};

BundleObject& objectOf(CFBundleRef bundle) { return *reinterpret_cast<BundleObject*>(bundle); }

}  // namespace

void registerBundle() { objc::ClassBuilder::define<BundleObject>("CFBundle", "NSObject"); }

}  // namespace foundation

using foundation::kExtension;

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef bundleURL) {
  const std::optional<std::string> folder = foundation::textOf(bundleURL).filePath();
  struct stat info {};
  if (!folder || !folder->ends_with(kExtension) || stat(folder->c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
    return nullptr;
  }
  const std::string_view name = std::string_view(*folder).substr(folder->rfind('/') + 1);
  auto* bundle = objc::createInstance<foundation::BundleObject>(Class("CFBundle"));
  bundle->executable = (*folder + '/').append(name.substr(0, name.size() - kExtension.size()));
  return reinterpret_cast<CFBundleRef>(bundle);
}

Boolean CFBundleLoadExecutable(CFBundleRef bundle) { return foundation::objectOf(bundle).load(); }

void* CFBundleGetDataPointerForName(CFBundleRef bundle, CFStringRef symbolName) {
  foundation::BundleObject& object = foundation::objectOf(bundle);
  if (!object.load()) return nullptr;
  return dlsym(object.library, foundation::utf8Of(bridge<NSString>(symbolName)).c_str());
}
