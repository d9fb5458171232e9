#include "platform/foundation/cf_bundle.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/run_loop.h"
#include "platform/foundation/url.h"
#include "platform/objc/retained.h"
#include "tests/objc/live_objects.h"

#include <filesystem>
#include <fstream>

#include <dlfcn.h>

namespace {

namespace fs = std::filesystem;

class Bundle : public LiveObjectsTest {
 protected:
  // The folder that this program's own frameworks lie in.
  static fs::path frameworks() {
    Dl_info library{};
    dladdr(dlsym(RTLD_DEFAULT, "CFBundleCreate"), &library);
    return fs::path(library.dli_fname).parent_path().parent_path();
  }

  static Retained<NSObject> bundleAt(const fs::path& path) {
    const NSURL url = NSURL::fileURLWithPath(NSString::stringWithUTF8String(path.c_str()));
    return Retained<NSObject>::adopt(bridge<NSObject>(CFBundleCreate(kCFAllocatorDefault, bridge<CFURLRef>(url))));
  }

  static CFBundleRef refOf(const Retained<NSObject>& bundle) { return bridge<CFBundleRef>(bundle.get()); }
};

TEST_F(Bundle, FindsAFrameworksVariables) {
  const auto bundle = bundleAt(frameworks() / "Foundation.framework");
  ASSERT_TRUE(bundle);
  EXPECT_EQ(CFBundleGetDataPointerForName(refOf(bundle), CFSTR("kCFRunLoopDefaultMode")), &kCFRunLoopDefaultMode);
  EXPECT_EQ(CFBundleGetDataPointerForName(refOf(bundle), CFSTR("kABNoSuchConstant")), nullptr);
  EXPECT_EQ(CFBundleGetDataPointerForName(refOf(bundle), CFSTR("")), nullptr);
  EXPECT_TRUE(CFBundleLoadExecutable(refOf(bundle)));
  EXPECT_TRUE(CFBundleLoadExecutable(refOf(bundle)));
}

TEST_F(Bundle, NeedsAFrameworkFolder) {
  const fs::path folder = fs::path(testing::TempDir()) / "bundle_test";
  fs::create_directories(folder / "Plain");
  fs::create_directories(folder / "Empty.framework");
  fs::create_directories(folder / ".framework");
  std::ofstream(folder / "File.framework") << "text";
  for (const char* none : {"Missing.framework", "Plain", "File.framework", ""}) {
    EXPECT_FALSE(bundleAt(folder / none)) << none;
  }
  const NSURL web = NSURL::URLWithString("http://host/Foundation.framework"_ns);
  EXPECT_EQ(CFBundleCreate(kCFAllocatorDefault, bridge<CFURLRef>(web)), nullptr);
  for (const char* hollow : {"Empty.framework", ".framework"}) {
    const auto bundle = bundleAt(folder / hollow);
    ASSERT_TRUE(bundle) << hollow;
    EXPECT_FALSE(CFBundleLoadExecutable(refOf(bundle)));
    EXPECT_EQ(CFBundleGetDataPointerForName(refOf(bundle), CFSTR("anything")), nullptr);
  }
  fs::remove_all(folder);
}

}  // namespace
