#pragma once

#include "platform/objc/instrumentation.h"
#include "platform/objc/runtime.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

inline std::map<std::string, long> liveObjects() {
  std::map<std::string, long> counts;
  objc_visitLiveInstances(
      [](const char* className, long count, void* context) {
        (*static_cast<std::map<std::string, long>*>(context))[className] = count;
      },
      &counts);
  return counts;
}

// A test with an autorelease pool, at whose end no more objects live than at its start.
class LiveObjectsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    before_ = liveObjects();
    pool_ = objc_autoreleasePoolPush();
  }

  void TearDown() override {
    objc_autoreleasePoolPop(pool_);
    EXPECT_EQ(liveObjects(), before_);
  }

 private:
  std::map<std::string, long> before_;
  void* pool_ = nullptr;
};
