#include "bridge/data.h"

#include "frame/host_ref.h"
#include "host/memory_blocks.h"
#include "tests/bridge/shown_values.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace std::string_literals;

namespace {

NSData dataOf(const host::Value& block) { return NewNSData(static_cast<REALmemoryBlock>(block.object())); }

}  // namespace

TEST(Data, IsACopyOfAllBytesBothWays) {
  const Host host{};
  for (const std::string& bytes : {"a"s, "a\0b\xFF"s, std::string(1 << 20, 'x')}) {
    const host::Value block = host::memoryBlock(bytes);
    const NSData data = dataOf(block);
    std::memset(host::blockAddress(block.object()), '!', bytes.size());
    EXPECT_EQ(shown(data), "data " + bytes);
    const host::Value back = host::Value::adopt(NSDataRB(data));
    EXPECT_EQ(host::bytesOf(back), bytes);
    EXPECT_NE(host::blockAddress(back.object()), data.bytes());
  }
}
