#include "frame/host_types.h"

#include <cstddef>
#include <initializer_list>

// The host reads these records by position: every size and offset is part of the interface.
namespace {

using Class = REALclassDefinition;
using Property = REALproperty;
using Method = REALmethodDefinition;

// Whether the offsets are those of one word after the other.
constexpr bool follow(std::size_t firstWord, std::initializer_list<std::size_t> offsets) {
  for (const std::size_t offset : offsets) {
    if (offset != firstWord++ * sizeof(Word)) return false;
  }
  return true;
}

static_assert(follow(1, {offsetof(Class, name), offsetof(Class, superName), offsetof(Class, dataSize),
                         offsetof(Class, dataOffset), offsetof(Class, constructor), offsetof(Class, destructor),
                         offsetof(Class, properties), offsetof(Class, propertyCount), offsetof(Class, methods),
                         offsetof(Class, methodCount), offsetof(Class, events), offsetof(Class, eventCount)}));
static_assert(follow(18, {offsetof(Class, constants), offsetof(Class, constantCount), offsetof(Class, flags)}));
static_assert(follow(23, {offsetof(Class, sharedMethods), offsetof(Class, sharedMethodCount), sizeof(Class)}));

static_assert(follow(1, {offsetof(Property, name), offsetof(Property, type), offsetof(Property, flags),
                         offsetof(Property, getter), offsetof(Property, setter), offsetof(Property, parameter)}));
static_assert(follow(10, {sizeof(Property)}));
static_assert(follow(1, {offsetof(Method, setter), offsetof(Method, declaration), offsetof(Method, flags),
                         sizeof(Method)}));
static_assert(follow(2, {sizeof(REALevent), sizeof(REALconstant)}));

static_assert(offsetof(REALstringData, length) == sizeof(void*));
static_assert(offsetof(REALstringData, encoding) == sizeof(void*) + 4);
static_assert(sizeof(REALstringData) == sizeof(void*) + 8);
static_assert(follow(1, {offsetof(REALstringRecord, buffer)}) && follow(3, {offsetof(REALstringRecord, length)}));
static_assert(follow(2, {offsetof(REALarrayRecord, storage)}));

}  // namespace
