#pragma once

#include "host/counted.h"

#include <map>
#include <string>

namespace host {

class HostClass;

// What every object starts with. The class chain's data blocks follow, root first, from byte kObjectDataOffset.
struct ObjectHeader {
  HostClass* objectClass;
  Word references;
  void* storage;  // an array's elements
};
static_assert(sizeof(ObjectHeader) <= kObjectDataOffset);

inline ObjectHeader& header(REALobject object) { return *reinterpret_cast<ObjectHeader*>(object); }
inline HostClass& classOf(REALobject object) { return *header(object).objectClass; }

// A new object with zeroed data and one reference for the caller. No constructor runs.
REALobject newInstance(HostClass& objectClass);

// The data block that the definition's class adds to the object. Data must be all right zeroed.
template <class Data>
Data& dataOf(REALobject object, const REALclassDefinition& definition) {
  return *reinterpret_cast<Data*>(reinterpret_cast<char*>(object) + definition.dataOffset);
}

// How many objects (by class name; arrays as "String()") and strings ("String") are alive.
std::map<std::string, long> liveCounts();
// The same in words, one line each, strings with their texts; empty when nothing is left.
std::string liveReport();

}  // namespace host
