#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"
#include "tests/objc/live_objects.h"

#include <thread>

namespace {

class ReferencesTest : public LiveObjectsTest {
 protected:
  void SetUp() override {
    objc::ClassBuilder::define<objc::Object>("TestThing", "NSObject");
    LiveObjectsTest::SetUp();
  }

  static Retained<NSObject> make() { return Retained<NSObject>::adopt(alloc<NSObject>("TestThing"_class)); }
  static long things() { return liveObjects()["TestThing"]; }
};

TEST_F(ReferencesTest, ReferencesMayBeTakenOnTwoThreads) {
  constexpr int kRounds = 100000;
  Retained<NSObject> shared = make();
  const auto work = [object = shared.get()] {
    for (int i = 0; i < kRounds; ++i) Retained<NSObject>::share(object);
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(things(), 1);
  EXPECT_EQ(shared.get().get()->references, 1);
}

TEST_F(ReferencesTest, PoolsNest) {
  void* outer = objc_autoreleasePoolPush();
  make().autorelease();
  const NSAutoreleasePool drained = NSAutoreleasePool::alloc().init();
  make().autorelease();
  const NSAutoreleasePool released = NSAutoreleasePool::alloc().init();
  make().autorelease();
  EXPECT_EQ(things(), 3);
  released.release();
  EXPECT_EQ(things(), 2);
  drained.drain();
  EXPECT_EQ(things(), 1);
  objc_autoreleasePoolPush();
  make().autorelease();
  objc_autoreleasePoolPop(outer);  // the inner one goes with it
  EXPECT_EQ(things(), 0);
}

TEST_F(ReferencesTest, PoolsBelongToTheirThread) {
  make().autorelease();
  std::thread([] {
    void* pool = objc_autoreleasePoolPush();
    make().autorelease();
    EXPECT_EQ(things(), 2);
    objc_autoreleasePoolPop(pool);
    EXPECT_EQ(things(), 1);
    make().autorelease();  // without a pool: until the thread ends
    EXPECT_EQ(things(), 2);
  }).join();
  EXPECT_EQ(things(), 1);
}

struct Late {
  ~Late() {
    const AutoreleasePool pool;
    make().autorelease();
    objc_autoreleasePoolPush();
    make().autorelease();
  }
  Retained<NSObject> (*make)();
};

TEST_F(ReferencesTest, DestructorsMayAutoreleaseAtTheEndOfAThread) {
  std::thread([] {
    thread_local const Late late{&make};  // ends after the thread's pools, which are first used here
    make().autorelease();
    EXPECT_EQ(things(), 1);
  }).join();
  EXPECT_EQ(things(), 0);
}

struct ParentObject : objc::Object {
  ~ParentObject() { objc_autorelease(child.leak().get()); }
  Retained<NSObject> child;
};

TEST_F(ReferencesTest, WhatIsAutoreleasedWhileAPoolEndsGoesToo) {
  const Class parentClass = objc::ClassBuilder::define<ParentObject>("TestParent", "NSObject").built();
  {
    const AutoreleasePool pool;
    auto* parent = objc::createInstance<ParentObject>(parentClass);
    parent->child = make();
    objc_autorelease(parent);
  }
  EXPECT_EQ(things(), 0);
}

TEST_F(ReferencesTest, APoolThatAnExceptionLeavesHandsItsObjectsOn) {
  const AutoreleasePool outer;
  {
    const AutoreleasePool around;
    try {
      const AutoreleasePool left;
      make().autorelease();
      throw 1;
    } catch (int) {
      EXPECT_EQ(things(), 1);
    }
  }
  EXPECT_EQ(things(), 0);
}

TEST_F(ReferencesTest, ImmortalObjectsAreNeitherFreedNorCounted) {
  static NSObject object;  // still reachable at the end
  object = make().leak();
  objc_makeImmortal(object.get());
  EXPECT_EQ(things(), 0);
  for (int i = 0; i < 3; ++i) objc_release(object.get());
  EXPECT_EQ(object.objectClass(), "TestThing"_class);
  objc_makeImmortal(object.get());
  EXPECT_EQ(things(), 0);
}

}  // namespace
