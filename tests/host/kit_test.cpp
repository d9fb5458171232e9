#include "platform/foundation/number.h"
#include "platform/objc/retained.h"
#include "tests/kit/host.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

// The kit fails a test for what it leaves behind.
namespace {

using host::Value;

TEST(Kit, NamesWhatATestLeavesBehind) {
  Value text;
  EXPECT_NONFATAL_FAILURE(
      {
        Host host{.plugin = false};
        text = "forgotten";
      },
      R"(String: 1 \"forgotten\")");
  text = nullptr;
  Retained<NSNumber> number;
  EXPECT_NONFATAL_FAILURE(
      {
        Host host{.plugin = false};
        number = Retained<NSNumber>::share(NSNumber::numberWithDouble(0.5));
      },
      "1 NSNumber");
}

}  // namespace
