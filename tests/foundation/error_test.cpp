#include "platform/foundation/error.h"

#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

namespace {

TEST(Error, SaysWhatItWasGivenOrSomething) {
  const auto cause = NSError::errorWithDomain(NSPOSIXErrorDomain, 28, nullptr);
  EXPECT_EQ(cause.userInfo().count(), 0U);
  EXPECT_STREQ(cause.localizedDescription().UTF8String(),
               "The operation couldn’t be completed. (NSPOSIXErrorDomain error 28.)");

  const auto userInfo = NSMutableDictionary::dictionary();
  userInfo.setObject("The disk is full."_ns, NSLocalizedDescriptionKey);
  userInfo.setObject(cause, NSUnderlyingErrorKey);
  const auto error = NSError::errorWithDomain("TestDomain"_ns, -5, userInfo);
  userInfo.removeObjectForKey(NSLocalizedDescriptionKey);
  EXPECT_TRUE(error.userInfo().objectForKey(NSUnderlyingErrorKey) == cause);
  EXPECT_STREQ(error.description().UTF8String(), "Error Domain=TestDomain Code=-5 \"The disk is full.\"");
  EXPECT_EQ(raised([] { (void)NSError::errorWithDomain(nullptr, 1, nullptr); }), "NSInvalidArgumentException");
}

}  // namespace
