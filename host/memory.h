#pragma once

#include <cstddef>

// Memory of host objects, strings and what they hold.
namespace host {

// Whether HOSTILE_HOST is in the environment. A hostile host does all that hosts may do, at once and always, for tests
// of plug-ins: its memory ends at a page that nobody may touch, and released memory may not be touched either; arrays
// move whenever something is inserted, the keys of dictionaries change places, no text is followed by a terminator.
bool isHostile();

// Zeroed; aligned as far as the size is, for which 8 bytes are enough. Throws std::bad_alloc.
void* newMemory(std::size_t size);
// The size is that it was made with. Null is allowed.
void releaseMemory(void* memory, std::size_t size);

}  // namespace host
