#include "platform/foundation/array.h"

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/null.h"
#include "platform/foundation/string.h"
#include "platform/objc/retained.h"
#include "tests/foundation/raised.h"
#include "tests/objc/live_objects.h"

namespace {

using ArrayTest = LiveObjectsTest;

TEST_F(ArrayTest, RetainsWhatItHoldsAndEnumeratorsRetainIt) {
  Retained<NSEnumerator> enumerator;
  {
    const AutoreleasePool pool;
    const NSArray array = NSArray::arrayWithObject(NSString::stringWithUTF8String("kept"));
    enumerator = Retained<NSEnumerator>::share(array.objectEnumerator());
  }
  EXPECT_TRUE(enumerator->nextObject().isEqual("kept"_ns));
}

TEST_F(ArrayTest, NilAndPositionsBeyondTheEndRaise) {
  const NSMutableArray array = NSMutableArray::array();
  EXPECT_EQ(raised([&] { (void)array.objectAtIndex(0); }), "NSRangeException");
  EXPECT_EQ(raised([&] { array.addObject(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { NSArray::arrayWithObject(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([] { NSArray::arrayWithObjects({"a"_ns, nullptr}); }), "NSInvalidArgumentException");
  EXPECT_EQ(array.count(), 0U);
}

}  // namespace
