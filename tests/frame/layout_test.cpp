#include "frame/host_types.h"

#include <cstddef>

// The host reads these records by position: every size and offset is part of the interface.
namespace {

constexpr std::size_t words(std::size_t bytes) { return bytes / sizeof(Word); }

static_assert(sizeof(REALclassDefinition) == 25 * sizeof(Word));
static_assert(words(offsetof(REALclassDefinition, name)) == 1);
static_assert(words(offsetof(REALclassDefinition, superName)) == 2);
static_assert(words(offsetof(REALclassDefinition, dataSize)) == 3);
static_assert(words(offsetof(REALclassDefinition, dataOffset)) == 4);
static_assert(words(offsetof(REALclassDefinition, constructor)) == 5);
static_assert(words(offsetof(REALclassDefinition, destructor)) == 6);
static_assert(words(offsetof(REALclassDefinition, properties)) == 7);
static_assert(words(offsetof(REALclassDefinition, propertyCount)) == 8);
static_assert(words(offsetof(REALclassDefinition, methods)) == 9);
static_assert(words(offsetof(REALclassDefinition, methodCount)) == 10);
static_assert(words(offsetof(REALclassDefinition, events)) == 11);
static_assert(words(offsetof(REALclassDefinition, eventCount)) == 12);
static_assert(words(offsetof(REALclassDefinition, constants)) == 18);
static_assert(words(offsetof(REALclassDefinition, constantCount)) == 19);
static_assert(words(offsetof(REALclassDefinition, flags)) == 20);
static_assert(words(offsetof(REALclassDefinition, sharedMethods)) == 23);
static_assert(words(offsetof(REALclassDefinition, sharedMethodCount)) == 24);

static_assert(sizeof(REALproperty) == 10 * sizeof(Word));
static_assert(words(offsetof(REALproperty, name)) == 1);
static_assert(words(offsetof(REALproperty, type)) == 2);
static_assert(words(offsetof(REALproperty, flags)) == 3);
static_assert(words(offsetof(REALproperty, getter)) == 4);
static_assert(words(offsetof(REALproperty, setter)) == 5);
static_assert(words(offsetof(REALproperty, parameter)) == 6);

static_assert(sizeof(REALmethodDefinition) == 4 * sizeof(Word));
static_assert(words(offsetof(REALmethodDefinition, setter)) == 1);
static_assert(words(offsetof(REALmethodDefinition, declaration)) == 2);
static_assert(words(offsetof(REALmethodDefinition, flags)) == 3);

static_assert(sizeof(REALevent) == 2 * sizeof(Word));
static_assert(sizeof(REALconstant) == 3 * sizeof(Word));

static_assert(sizeof(REALstringData) == sizeof(void*) + 8);
static_assert(offsetof(REALstringData, length) == sizeof(void*));
static_assert(offsetof(REALstringData, encoding) == sizeof(void*) + 4);
static_assert(words(offsetof(REALstringRecord, buffer)) == 1);
static_assert(words(offsetof(REALstringRecord, length)) == 3);
static_assert(words(offsetof(REALarrayRecord, storage)) == 2);

}  // namespace
