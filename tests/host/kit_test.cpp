#include "host/exceptions.h"
#include "platform/foundation/number.h"
#include "platform/objc/retained.h"
#include "tests/kit/host.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

// The kit fails a test for what it leaves behind.
namespace {

using host::Value;

TEST(Kit, NamesHostObjectsThatAreLeftOver) {
  Value left;
  EXPECT_NONFATAL_FAILURE(
      {
        Host host{.plugin = false};
        left = "forgotten";
      },
      R"(String: 1 \"forgotten\")");
}

TEST(Kit, NamesPlatformObjectsThatAreLeftOver) {
  Retained<NSNumber> left;
  EXPECT_NONFATAL_FAILURE(
      {
        Host host{.plugin = false};
        left = Retained<NSNumber>::share(NSNumber::numberWithDouble(0.5));
      },
      "1 NSNumber");
}

TEST(Kit, NamesAnExceptionThatNobodyTook) {
  EXPECT_NONFATAL_FAILURE(
      {
        Host host{.plugin = false};
        host::raise("OutOfMemoryException", "Full.");
      },
      "left pending: OutOfMemoryException: Full.");
}

}  // namespace
