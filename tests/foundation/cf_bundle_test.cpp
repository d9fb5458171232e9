#include "platform/foundation/cf_bundle.h"

#include "platform/foundation/cf_string.h"
#include "platform/foundation/url.h"
#include "platform/objc/retained.h"
#include "tests/objc/live_objects.h"

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

using Bundle = LiveObjectsTest;

Retained<NSObject> bundleAt(const fs::path& path) {
  const NSURL url = NSURL::fileURLWithPath(NSString::stringWithUTF8String(path.c_str()));
  return Retained<NSObject>::adopt(bridge<NSObject>(CFBundleCreate(kCFAllocatorDefault, bridge<CFURLRef>(url))));
}

TEST_F(Bundle, NeedsAFrameworkFolder) {
  const fs::path folder = fs::path(testing::TempDir()) / "bundle_test";
  for (const char* name : {"Plain", "Empty.framework", ".framework"}) fs::create_directories(folder / name);
  std::ofstream(folder / "File.framework") << "text";
  for (const char* none : {"Missing.framework", "Plain", "File.framework", ""}) {
    EXPECT_FALSE(bundleAt(folder / none)) << none;
  }
  const NSURL web = NSURL::URLWithString("http://host/Foundation.framework"_ns);
  EXPECT_EQ(CFBundleCreate(kCFAllocatorDefault, bridge<CFURLRef>(web)), nullptr);
  for (const char* hollow : {"Empty.framework", ".framework"}) {
    const auto bundle = bundleAt(folder / hollow);
    ASSERT_TRUE(bundle) << hollow;
    EXPECT_FALSE(CFBundleLoadExecutable(bridge<CFBundleRef>(bundle.get())));
    EXPECT_EQ(CFBundleGetDataPointerForName(bridge<CFBundleRef>(bundle.get()), CFSTR("anything")), nullptr);
  }
  fs::remove_all(folder);
}

}  // namespace
