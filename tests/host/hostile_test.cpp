#include "host/arrays.h"
#include "host/memory.h"
#include "host/objects.h"
#include "host/strings.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

char touch(const void* address) { return *static_cast<const volatile char*>(address); }

// Each in a process of its own, as what kind of host it is holds for all of a process.
TEST(HostileHosts, KeepOthersOutOfTheirMemory) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  setenv("HOSTILE_HOST", "1", 1);
  const auto string = host::StringRef::adopt(host::newString("text", kEncodingUTF8));
  const std::string_view bytes = host::bytesOf(string.get());
  EXPECT_STREQ(host::cStringOf(string.get()), "text");
  EXPECT_DEATH(touch(bytes.data() + bytes.size()), "");

  host::Value array = host::array(host::ElementType::int32, {1, 2});
  const void* storage = host::header(array.object()).storage;
  EXPECT_DEATH(touch(static_cast<const std::int32_t*>(storage) + 2), "");
  EXPECT_DEATH(
      {
        host::insertAt(array.object(), 2, 3);
        touch(storage);
      },
      "");
  const auto* object = array.object();
  EXPECT_DEATH(
      {
        array = nullptr;
        touch(object);
      },
      "");
}

}  // namespace
