#include "platform/foundation/array.h"

#include "platform/foundation/array_object.h"
#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

using foundation::ArrayObject;
using foundation::MutableArrayObject;

// A hint may be wrong by any amount.
constexpr NSUInteger kLargestReserve = 65536;

std::string methodName(Class objectClass, const char* kind, const char* selector) {
  return std::string(kind) + "[" + objectClass.name() + " " + selector + "]: ";
}

ArrayObject* createArray(Class receiver) { return objc::createInstance<ArrayObject>(receiver); }

NSArray autoreleased(ArrayObject* made) { return Retained<NSArray>::adopt(NSArray(made)).autorelease(); }

NSArray emptyArray(Class receiver) { return autoreleased(createArray(receiver)); }

NSMutableArray arrayWithCapacity(Class receiver, NSUInteger capacity) {
  ArrayObject* made = createArray(receiver);
  auto result = autoreleased(made).as<NSMutableArray>();
  made->objects.reserve(std::min(capacity, kLargestReserve));
  return result;
}

NSArray arrayWithObjects(Class receiver, const NSObject* objects, NSUInteger count) {
  ArrayObject* made = createArray(receiver);
  const NSArray result = autoreleased(made);
  made->objects.reserve(count);
  for (NSUInteger i = 0; i < count; ++i) {
    if (!objects[i]) {
      NSException::raise(NSInvalidArgumentException, methodName(receiver, "+", "arrayWithObjects:count:") + "object " +
                                                         std::to_string(i) + " of " + std::to_string(count) +
                                                         " is nil");
    }
    made->objects.push_back(Retained<NSObject>::share(objects[i]));
  }
  return result;
}

NSArray arrayWithObject(Class receiver, NSObject object) { return arrayWithObjects(receiver, &object, 1); }

NSUInteger countOf(NSArray receiver) { return foundation::objectsOf(receiver).size(); }

NSObject objectAtIndex(NSArray receiver, NSUInteger index) {
  const auto& objects = foundation::objectsOf(receiver);
  if (index >= objects.size()) {
    NSException::raise(NSRangeException, methodName(receiver.objectClass(), "-", "objectAtIndex:") + "index " +
                                             std::to_string(index) + " of an array of " +
                                             std::to_string(objects.size()));
  }
  return objects[index].get();
}

bool containsObject(NSArray receiver, NSObject object) {
  return std::ranges::any_of(foundation::objectsOf(receiver),
                             [object](const auto& held) { return held.get().isEqual(object); });
}

bool isEqualTo(NSArray receiver, NSObject other) {
  if (receiver == other) return true;
  if (!other || !other.isKindOfClass("NSArray"_class)) return false;
  return std::ranges::equal(foundation::objectsOf(receiver), foundation::objectsOf(other.as<NSArray>()),
                            [](const auto& mine, const auto& its) { return mine.get().isEqual(its.get()); });
}

// Cheap, and the same for a mutable array that grows.
NSUInteger hashOf(NSArray receiver) { return countOf(receiver); }

NSString describe(NSArray receiver) {
  std::u16string text = u"(";
  for (const auto& held : foundation::objectsOf(receiver)) {
    text += text.size() == 1 ? u"\n    " : u",\n    ";
    if (const NSString described = held.get().description()) text += foundation::unitsOf(described);
  }
  return foundation::makeString(text + u"\n)");
}

void addObject(NSMutableArray receiver, NSObject object) {
  if (!object) {
    NSException::raise(NSInvalidArgumentException,
                       methodName(receiver.objectClass(), "-", "addObject:") + "the object is nil");
  }
  static_cast<MutableArrayObject*>(receiver.get())->objects.push_back(Retained<NSObject>::share(object));
}

}  // namespace

NSArray foundation::makeArray(std::vector<Retained<NSObject>> objects) {
  ArrayObject* made = createArray("NSArray"_class);
  made->objects = std::move(objects);
  return autoreleased(made);
}

void foundation::registerArray() {
  objc::ClassBuilder::define<ArrayObject>("NSArray", "NSObject")
      .classMethod<&emptyArray>("array")
      .classMethod<&arrayWithObject>("arrayWithObject:")
      .classMethod<&arrayWithObjects>("arrayWithObjects:count:")
      .method<&countOf>("count")
      .method<&objectAtIndex>("objectAtIndex:")
      .method<&containsObject>("containsObject:")
      .method<&makeEnumerator>("objectEnumerator")
      .method<&isEqualTo>("isEqual:")
      .method<&hashOf>("hash")
      .method<&describe>("description");
  objc::ClassBuilder::define<MutableArrayObject>("NSMutableArray", "NSArray")
      .classMethod<&arrayWithCapacity>("arrayWithCapacity:")
      .method<&addObject>("addObject:");
}
