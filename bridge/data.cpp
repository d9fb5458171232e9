#include "bridge/data.h"

#include "bridge/strings.h"
#include "frame/runtime_support.h"

NSData NewNSData(REALmemoryBlock block) {
  const rbData bytes(block, 0, 0);
  return bytes.length == 0 ? nullptr : NSData::dataWithBytes(bytes.data, bytes.length);
}

REALmemoryBlock NSDataRB(NSData data) {
  return data ? REALBuildMemoryblock(data.bytes(), static_cast<std::int64_t>(data.length())) : nullptr;
}
