#pragma once

#include "frame/host_types.h"
#include "platform/foundation/data.h"

// Between host memory blocks and NSData, always as a copy. Nil for nothing and for no bytes.

// Autoreleased.
NSData NewNSData(REALmemoryBlock block);

// A new block for the caller. One that can't be had raises a host "OutOfMemoryException".
REALmemoryBlock NSDataRB(NSData data);
