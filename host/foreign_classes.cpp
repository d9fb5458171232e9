#include "host/foreign_classes.h"

#include "host/class_records.h"
#include "host/classes.h"
#include "host/memory_blocks.h"
#include "host/strings.h"
#include "platform/appkit/image.h"
#include "platform/carbon/gestalt.h"
#include "platform/foundation/attributed_string.h"
#include "platform/foundation/cf_dictionary.h"
#include "platform/foundation/data.h"
#include "platform/foundation/error.h"
#include "platform/objc/retained.h"

#include <cstddef>
#include <iterator>

namespace host {

namespace {

// 'VXRi': its value is the address of the family's map from platform object to wrapper.
constexpr OSType kRegistrySelector = 0x56585269;

void unregisterInstance(NSObject object) {
  std::intptr_t registry = 0;
  if (Gestalt(kRegistrySelector, &registry) != noErr || registry == 0) return;
  CFDictionaryRemoveValue(reinterpret_cast<CFMutableDictionaryRef>(registry), object.get());
}

// A wrapper's data: one retained object of the platform, or null.
struct WrapperData {
  objc::Object* object;
};

// The classes below are roots: their data starts where every root's does.
WrapperData& wrapperOf(REALobject self) {
  return *reinterpret_cast<WrapperData*>(reinterpret_cast<char*>(self) + kObjectDataOffset);
}

template <class Handle>
Handle wrapped(REALobject self) {
  return Handle(wrapperOf(self).object);
}

void destroyWrapper(REALobject self) {
  const auto object = Retained<NSObject>::adopt(wrapped<NSObject>(self));
  if (object) unregisterInstance(object.get());
}

REALstring textOf(NSString text) { return newString(bridge<CFStringRef>(text)); }

REALinteger errorCode(REALobject self, Word) { return wrapped<NSError>(self).code(); }
REALstring errorDomain(REALobject self, Word) { return textOf(wrapped<NSError>(self).domain()); }
REALstring errorDescription(REALobject self, Word) { return textOf(wrapped<NSError>(self).localizedDescription()); }

REALproperty errorProperties[] = {
    readOnlyProperty("Code", "Integer", errorCode),
    readOnlyProperty("Domain", "String", errorDomain),
    readOnlyProperty("LocalizedDescription", "String", errorDescription),
};

REALstring attributedText(REALobject self, Word) { return textOf(wrapped<NSAttributedString>(self).string()); }

REALproperty attributedStringProperties[] = {readOnlyProperty("Text", "String", attributedText)};

void constructImage(REALobject self, REALmemoryBlock data) {
  if (data == nullptr) return;
  const NSData bytes = NSData::dataWithBytes(blockAddress(data), static_cast<NSUInteger>(blockSize(data)));
  wrapperOf(self).object = NSImage::alloc().initWithData(bytes).get();
}

REALmemoryBlock imageTiff(REALobject self) {
  const NSData tiff = wrapped<NSImage>(self).TIFFRepresentation();
  if (!tiff) return nullptr;
  Value block = memoryBlock({static_cast<const char*>(tiff.bytes()), tiff.length()});
  return static_cast<REALmemoryBlock>(ObjectRef::share(block.object()).leak());
}

REALmethodDefinition imageMethods[] = {
    hostMethod("Constructor(data as MemoryBlock)", constructImage),
    hostMethod("TIFFRepresentation as MemoryBlock", imageTiff),
};

// Data of NSExceptionVXR, behind its superclass's message.
struct ExceptionData {
  REALstring name;
  REALstring reason;
};

REALproperty exceptionProperties[] = {
    storedProperty("Name", "String", offsetof(ExceptionData, name)),
    storedProperty("Reason", "String", offsetof(ExceptionData, reason)),
};

void destroyException(REALobject self);

REALclassDefinition definitions[] = {
    {.name = "NSExceptionVXR",
     .superName = "RuntimeException",
     .dataSize = sizeof(ExceptionData),
     .destructor = destroyException,
     .properties = exceptionProperties,
     .propertyCount = std::size(exceptionProperties)},
    {.name = "NSErrorVXR",
     .dataSize = sizeof(WrapperData),
     .destructor = destroyWrapper,
     .properties = errorProperties,
     .propertyCount = std::size(errorProperties)},
    {.name = "NSAttributedStringVXR",
     .dataSize = sizeof(WrapperData),
     .destructor = destroyWrapper,
     .properties = attributedStringProperties,
     .propertyCount = std::size(attributedStringProperties)},
    {.name = "NSImageVXR",
     .dataSize = sizeof(WrapperData),
     .destructor = destroyWrapper,
     .methods = imageMethods,
     .methodCount = std::size(imageMethods)},
};

void destroyException(REALobject self) {
  const ExceptionData& data = dataOf<ExceptionData>(self, definitions[0]);
  unlock(data.name);
  unlock(data.reason);
}

// The platform's structures, as they lie in memory.
struct Rect {
  float x, y, width, height;
};
struct Pair {
  float first, second;
};
struct Range {
  std::uint32_t location, length;
};

REALproperty rectProperties[] = {
    storedProperty("X", "Single", offsetof(Rect, x)),
    storedProperty("Y", "Single", offsetof(Rect, y)),
    storedProperty("Width", "Single", offsetof(Rect, width)),
    storedProperty("Height", "Single", offsetof(Rect, height)),
};
REALproperty sizeProperties[] = {
    storedProperty("Width", "Single", offsetof(Pair, first)),
    storedProperty("Height", "Single", offsetof(Pair, second)),
};
REALproperty pointProperties[] = {
    storedProperty("X", "Single", offsetof(Pair, first)),
    storedProperty("Y", "Single", offsetof(Pair, second)),
};
REALproperty rangeProperties[] = {
    storedProperty("Location", "UInt32", offsetof(Range, location)),
    storedProperty("Length", "UInt32", offsetof(Range, length)),
};

REALclassDefinition geometryDefinitions[] = {
    {.name = "NSRectVXR",
     .dataSize = sizeof(Rect),
     .properties = rectProperties,
     .propertyCount = std::size(rectProperties)},
    {.name = "NSSizeVXR",
     .dataSize = sizeof(Pair),
     .properties = sizeProperties,
     .propertyCount = std::size(sizeProperties)},
    {.name = "NSPointVXR",
     .dataSize = sizeof(Pair),
     .properties = pointProperties,
     .propertyCount = std::size(pointProperties)},
    {.name = "NSRangeVXR",
     .dataSize = sizeof(Range),
     .properties = rangeProperties,
     .propertyCount = std::size(rangeProperties)},
};

}  // namespace

void registerForeignClasses() {
  for (REALclassDefinition& definition : definitions) registerClass(definition);
  for (REALclassDefinition& definition : geometryDefinitions) registerClass(definition);
}

}  // namespace host
