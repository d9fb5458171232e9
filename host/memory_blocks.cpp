#include "host/memory_blocks.h"

#include "host/built_in_classes.h"
#include "host/class_records.h"
#include "host/classes.h"
#include "host/exceptions.h"
#include "host/memory.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

namespace host {

namespace {

struct BlockData {
  char* bytes;
  REALinteger size;
};

BlockData& dataOf(REALobject block) { return host::dataOf<BlockData>(block, memoryBlockDefinition()); }

int blocksToFailure = 0;

// An empty block has an address of its own too.
std::size_t allocatedSize(REALinteger size) { return static_cast<std::size_t>(std::max<REALinteger>(size, 1)); }

void release(REALobject block) { releaseMemory(dataOf(block).bytes, allocatedSize(dataOf(block).size)); }

bool allocate(REALobject block, REALinteger size) {
  if (size < 0 || (blocksToFailure > 0 && --blocksToFailure == 0)) return false;
  void* bytes = nullptr;
  try {
    bytes = newMemory(allocatedSize(size));
  } catch (const std::bad_alloc&) {
    return false;
  }
  release(block);
  dataOf(block) = {static_cast<char*>(bytes), size};
  return true;
}

void construct(REALobject self, REALinteger bytes) {
  if (!allocate(self, bytes)) raise("OutOfMemoryException", "There is no memory for the block.");
}

void destroyBlock(REALobject self) { release(self); }

REALinteger getSize(REALobject self, Word) { return dataOf(self).size; }

REALproperty properties[] = {readOnlyProperty("Size", "Integer", getSize)};

REALmethodDefinition methods[] = {hostMethod("Constructor(bytes as Integer)", construct)};

}  // namespace

REALclassDefinition& memoryBlockDefinition() {
  static REALclassDefinition definition{.name = "MemoryBlock",
                                        .dataSize = sizeof(BlockData),
                                        .destructor = destroyBlock,
                                        .properties = properties,
                                        .propertyCount = std::size(properties),
                                        .methods = methods,
                                        .methodCount = std::size(methods)};
  return definition;
}

REALmemoryBlock newMemoryBlock(REALinteger size) {
  auto block = ObjectRef::adopt(newInstance(requireClass("MemoryBlock")));
  return allocate(block.get(), size) ? static_cast<REALmemoryBlock>(block.leak()) : nullptr;
}

void* blockAddress(REALobject block) { return dataOf(block).bytes; }

REALinteger blockSize(REALobject block) { return dataOf(block).size; }

Value memoryBlock(std::string_view bytes) {
  Value block = Value::adopt(newMemoryBlock(static_cast<REALinteger>(bytes.size())));
  if (!bytes.empty()) std::memcpy(blockAddress(block.object()), bytes.data(), bytes.size());
  return block;
}

std::string bytesOf(const Value& memoryBlock) {
  const BlockData& data = dataOf(memoryBlock.object());
  return data.bytes == nullptr ? std::string() : std::string(data.bytes, static_cast<std::size_t>(data.size));
}

int failMemoryBlock(int nth) { return std::exchange(blocksToFailure, nth); }

}  // namespace host
