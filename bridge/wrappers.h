#pragma once

#include "frame/host_interface.h"
#include "platform/appkit/image.h"
#include "platform/contacts/group.h"
#include "platform/contacts/multi_value.h"
#include "platform/contacts/person.h"
#include "platform/contacts/search_element.h"
#include "platform/foundation/array.h"
#include "platform/foundation/attributed_string.h"
#include "platform/foundation/error.h"

// Host objects that wrap framework objects. The first word of a wrapper's data block is one retained object, null while
// the wrapper is empty.

// The words of the object's data block, this plug-in's classes and the family's alike.
inline Word* dataBlock(REALobject object) {
  return reinterpret_cast<Word*>(reinterpret_cast<char*>(object) + kObjectDataOffset);
}

// The object that a wrapper holds, borrowed; nil for no wrapper and for an empty one.
template <objc::HandleType Handle>
Handle wrapped(REALobject object) {
  return object == nullptr ? Handle() : Handle(reinterpret_cast<objc::Object*>(*dataBlock(object)));
}

// Makes the object wrap what its owner hands over, nil included, and registers the pair. What it wrapped before is
// forgotten, not released.
void adoptWrapped(REALobject object, NSObject value);

// Empties the object and releases what it wrapped. The registry is not touched.
void releaseWrapped(REALobject object);

// The wrapper that lives for the framework object, or a new one that retains it and is registered. One reference is the
// caller's. Null for nil, and where the host lacks the class.
REALobject NewABPersonVXR(ABPerson person);
REALobject NewABGroupVXR(ABGroup group);
// A person's or a group's wrapper; null for any other record.
REALobject NewABRecordVXR(ABRecord record);
REALobject NewABSearchElementVXR(ABSearchElement element);
// Always "ABMultiValueVXR", be the object mutable or not.
REALobject NewABMultiValueVXR(ABMultiValue multiValue);
REALobject NewABMutableMultiValueVXR(ABMutableMultiValue multiValue);
REALobject NewNSErrorVXR(NSError error);
REALobject NewNSImageVXR(NSImage image);

// A new host object of the first class in the object's superclass chain whose name with "VXR" behind it the host knows.
// Neither looked up nor registered. With a required class, null for an object of another kind.
REALobject NewNSObjectVXR(NSObject object);
REALobject NewNSObjectVXR(NSObject object, Class requiredClass);
REALobject NewNSAttributedStringVXR(NSAttributedString string);

bool IsABPerson(NSObject record);
bool IsABGroup(NSObject record);

// Appends one wrapper for each object to an empty host array, null where there can be none.
void FillABPersonArray(REALobjectArray array, NSArray objects);
void FillABGroupArray(REALobjectArray array, NSArray objects);
void FillABRecordArray(REALobjectArray array, NSArray objects);

// The wrapped objects of a host array, autoreleased; null elements and empty wrappers are left out. Nil for a nil
// array, and for an empty one if nilIfEmpty.
NSMutableArray CreateNSObjectArray(REALobjectArray array, bool nilIfEmpty);

// The class constructor of records, multi-values and search elements.
void constructWrapper(REALobject object);
// Their class destructor: unregisters and releases the wrapped object.
void destroyWrapper(REALobject object);
// Serves the declared constructors that leave the object empty.
void DummyConstructor(REALobject object);
