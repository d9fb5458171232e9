#include "bridge/exceptions.h"

#include "frame/host_interface.h"
#include "frame/runtime_support.h"
#include "host/memory_blocks.h"
#include "platform/foundation/log.h"
#include "platform/foundation/string.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::string> logged;

void keepLog() {
  NSSetLogHook([](NSString message) { logged.emplace_back(message.UTF8String()); });
}

[[noreturn]] void raise(NSString reason) { NSException::exceptionWithName("Name"_ns, reason).raise(); }

}  // namespace

TEST(Guard, TurnsAFrameworkExceptionIntoAPendingHostException) {
  const Host host{};
  keepLog();
  for (const auto& [reason, message] : std::vector<std::pair<NSString, std::string>>{
           {"the reason"_ns, "A Cocoa Name was not handled: the reason"},
           {nullptr, "A Cocoa Name was not handled: (null)"},
       }) {
    guard([&reason = reason] { raise(reason); });
    const auto pending = host::takePendingException();
    ASSERT_TRUE(pending);
    EXPECT_EQ(pending->object().typeName(), "NSExceptionVXR");
    EXPECT_EQ(pending->object().get("Message"), message);
    EXPECT_EQ(pending->object().get("Name"), "Name");
    EXPECT_EQ(pending->object().get("Reason"), reason ? "the reason" : "");
  }
  ASSERT_EQ(logged.size(), 2U);
  EXPECT_EQ(logged[0], "A Name: the reason, Info: (null)");
}

namespace {

// A program without the exception's class, in which a framework exception reaches a guard.
void runWithoutExceptionClass() {
  const Host host{.foreignClasses = false,
                  .messageBox = [](const std::string& text) { std::fprintf(stderr, "box: %s\n", text.c_str()); }};
  NSSetLogHook([](NSString message) { std::fprintf(stderr, "log: %s\n", message.UTF8String()); });
  guard([] { raise("the reason"_ns); });
}

bool hasExited(int status) { return WIFEXITED(status); }

}  // namespace

TEST(GuardDeathTest, QuitsWhereTheHostHasNoSuchException) {
  EXPECT_EXIT(runWithoutExceptionClass(), hasExited,
              "log: A Cocoa Name was not handled: the reason. Please report to the application developer. The "
              "application will quit now. .use NSExceptionVXR class to catch this exception.\n"
              "(.|\n)*log: callStackSymbols: (.|\n)*box: A Cocoa Name was not handled: the reason. Please report");
}

TEST(GuardDeathTest, QuitsAtOnceWithoutAnException) {
  EXPECT_EXIT(MyNSUncaughtExceptionHandler(nullptr), hasExited, "^$");
}

TEST(RaiseException, FallsBackToTheRuntimeExceptionOrNothing) {
  const Host host{};
  RaiseException("UnsupportedOperationException", "because", kEncodingASCII);
  EXPECT_STREQ(host::takePendingException()->what(), "UnsupportedOperationException: because");
  RaiseException("NoSuchException", "because", kEncodingASCII);
  EXPECT_STREQ(host::takePendingException()->what(), "RuntimeException: because");
  RaiseException("RuntimeException", nullptr, kEncodingASCII);
  EXPECT_EQ(host::takePendingException()->object().get("Message"), "");
  host::options().without = {"RuntimeException"};
  RaiseException("NoSuchException", "because", kEncodingASCII);
  EXPECT_FALSE(host::takePendingException());
}

TEST(MemoryBlocks, AreCopiesOrNothing) {
  const Host host{};
  EXPECT_EQ(bytesOf(host::Value::adopt(REALBuildMemoryblock("abc", 3))), "abc");
  EXPECT_EQ(REALBuildMemoryblock(nullptr, 3), nullptr);
  for (const int length : {0, -1}) EXPECT_EQ(REALBuildMemoryblock("abc", length), nullptr);
  EXPECT_FALSE(host::takePendingException());
  host::failMemoryBlock(1);
  EXPECT_EQ(REALBuildMemoryblock("abc", 3), nullptr);
  EXPECT_STREQ(host::takePendingException()->what(),
               "OutOfMemoryException: Failed to allocate a memoryblock with 3 bytes in size.");
}
