#include "platform/foundation/error.h"

#include "tests/foundation/raised.h"

#include <gtest/gtest.h>

namespace {

TEST(Error, SaysWhatItWasGiven) {
  const auto domain = NSString::stringWithUTF8String("TestDomain");
  const auto userInfo = NSMutableDictionary::dictionary();
  userInfo.setObject(NSString::stringWithUTF8String("The disk is full."), NSLocalizedDescriptionKey);
  const auto cause = NSError::errorWithDomain(NSPOSIXErrorDomain, 28, nullptr);
  userInfo.setObject(cause, NSUnderlyingErrorKey);
  const auto error = NSError::errorWithDomain(domain, -5, userInfo);
  userInfo.removeObjectForKey(NSLocalizedDescriptionKey);

  EXPECT_STREQ(error.domain().UTF8String(), "TestDomain");
  EXPECT_EQ(error.code(), -5);
  EXPECT_STREQ(error.localizedDescription().UTF8String(), "The disk is full.");
  EXPECT_TRUE(error.userInfo().objectForKey(NSUnderlyingErrorKey) == cause);
  EXPECT_STREQ(error.description().UTF8String(), "Error Domain=TestDomain Code=-5 \"The disk is full.\"");
}

TEST(Error, SaysSomethingWhenItWasGivenNothing) {
  const auto error = NSError::errorWithDomain(NSPOSIXErrorDomain, 28, nullptr);
  EXPECT_EQ(error.userInfo().count(), 0U);
  EXPECT_STREQ(error.localizedDescription().UTF8String(),
               "The operation couldn’t be completed. (NSPOSIXErrorDomain error 28.)");
  EXPECT_EQ(raised([] { (void)NSError::errorWithDomain(nullptr, 1, nullptr); }), "NSInvalidArgumentException");
}

}  // namespace
