#pragma once

#include "frame/host_interface.h"

// Makes an exception of the host class (of "RuntimeException" where the host lacks it) and leaves it pending in the
// host; nothing is raised when the host has neither. The message is built as US-ASCII whatever the encoding; null for
// none.
void RaiseException(const char* className, const char* message, std::uint32_t encoding);

// A new memory block with a copy of the bytes, owned by the caller; null for null or no bytes. A block that can't be
// had raises an "OutOfMemoryException".
REALmemoryBlock REALBuildMemoryblock(const void* bytes, std::int64_t size);

// Zero-filled memory of 1 to 2^31 - 1 bytes, for FreeMemoryNow; null for any other size and when there is none left.
void* AllocateClearMemory(std::int64_t size);
void ClearMemory(void* pointer, std::size_t size);
void FreeMemoryNow(void* pointer);

// Whether the object is an instance of the host class of that name; false for null and for unknown classes.
bool REALObjectIsA(REALobject object, const char* className);

// The host's folder items and memory blocks are known by a method that only they have.
bool IsFolderItem(REALobject object);
bool IsMemoryBlock(REALobject object);

REALstringArray REALCreateArrayString(REALinteger upperBound);
REALobjectArray REALCreateArrayObject(REALinteger upperBound);
REALobjectArray REALCreateArrayVariant(REALinteger upperBound);
REALdictionaryArray REALCreateArrayDictionary(REALinteger upperBound);

// The element at the index; out keeps its value when nothing can be read. Strings and objects carry one reference.
void REALGetArrayValue(REALobjectArray array, REALinteger index, REALobject* out);
void REALGetArrayValue(REALstringArray array, REALinteger index, REALstring* out);
void REALGetArrayValue(REALdoubleArray array, REALinteger index, double* out);
void REALGetArrayValue(REALsingleArray array, REALinteger index, float* out);
void REALGetArrayValue(REALint64Array array, REALinteger index, std::int64_t* out);
void REALGetArrayValue(REALintegerArray array, REALinteger index, int* out);
void REALGetArrayValue(REALbooleanArray array, REALinteger index, signed char* out);

void REALInsertArrayValue(REALobjectArray array, REALinteger index, REALobject value);
void REALInsertArrayValue(REALdictionaryArray array, REALinteger index, REALdictionary value);
void REALInsertArrayValue(REALstringArray array, REALinteger index, REALstring value);
