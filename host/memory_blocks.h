#pragma once

#include "host/value.h"

#include <string>
#include <string_view>

// The class "MemoryBlock". A block that was made without a size has no address.
namespace host {

// Zeroed, with one reference for the caller. Null for a negative size, for one that there is no memory for, and when
// the allocation is set to fail.
REALmemoryBlock newMemoryBlock(REALinteger size);
void* blockAddress(REALobject block);
REALinteger blockSize(REALobject block);

Value memoryBlock(std::string_view bytes);
// A copy of its bytes.
std::string bytesOf(const Value& memoryBlock);

// Makes the allocation of the nth block from now on fail, once; 0 calls it off. Answers how far off the failure that
// was set before still is; 0 when it came.
int failMemoryBlock(int nth);

}  // namespace host
