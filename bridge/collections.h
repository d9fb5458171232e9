#pragma once

#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/foundation/array.h"
#include "platform/foundation/enumerator.h"

// Inserts what convert makes of each object of the list into an empty host array, in order; convert answers a host
// reference for the caller. Nothing happens for a nil list or array.
template <class Array, class Convert>
void fillHostArray(Array array, NSArray list, Convert convert) {
  if (array == nullptr) return;
  NSEnumerator objects = list.objectEnumerator();
  REALinteger index = 0;
  while (NSObject object = objects.nextObject()) {
    const auto element = adoptHost(convert(object));
    REALInsertArrayValue(array, index++, element.get());
  }
}

// Adds what convert makes of each element up to the bound; nil is left out. What readAt(index) answers is kept until
// the converted object, which may be borrowed from it, has been added.
template <class ReadAt, class Convert>
void addFromHost(NSMutableArray result, REALinteger upperBound, ReadAt readAt, Convert convert) {
  for (REALinteger index = 0; index <= upperBound; ++index) {
    const auto element = readAt(index);
    if (NSObject object = convert(element)) result.addObject(object);
  }
}

// The same for the elements of a host array, autoreleased. Nil for a nil array, and for an empty one if nilIfEmpty.
template <class ReadAt, class Convert>
NSMutableArray arrayFromHost(REALarray array, bool nilIfEmpty, ReadAt readAt, Convert convert) {
  if (array == nullptr) return nullptr;
  const REALinteger upperBound = REALGetArrayUBound(array);
  if (nilIfEmpty && upperBound == -1) return nullptr;
  auto result = NSMutableArray::arrayWithCapacity(static_cast<NSUInteger>(upperBound + 1));
  if (!result) return nullptr;
  addFromHost(result, upperBound, readAt, convert);
  return result;
}
