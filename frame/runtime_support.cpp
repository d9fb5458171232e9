#include "frame/runtime_support.h"

#include "bridge/strings.h"
#include "frame/host_ref.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

void RaiseException(const char* className, const char* message, std::uint32_t) {
  HostRef<REALstring> text;
  if (message != nullptr) {
    text = adoptHost(REALBuildUnicodeString(message, static_cast<std::int32_t>(std::strlen(message)), kEncodingASCII));
  }
  auto exception = adoptHost(REALnewInstance(className));
  if (!exception) exception = adoptHost(REALnewInstance("RuntimeException"));
  if (!exception) return;
  REALSetPropValueString(exception.get(), "Message", text.get());
  REALRaiseException(exception.get());
}

REALmemoryBlock REALBuildMemoryblock(const void* bytes, std::int64_t size) {
  if (bytes == nullptr || size <= 0) return nullptr;
  HostRef<REALmemoryBlock> block;
  if (size <= std::numeric_limits<REALinteger>::max()) {
    block = adoptHost(REALNewMemoryBlock(static_cast<REALinteger>(size)));
  }
  if (!block) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), "Failed to allocate a memoryblock with %lld bytes in size.",
                  static_cast<long long>(size));
    RaiseException("OutOfMemoryException", text.data(), kEncodingASCII);
    return nullptr;
  }
  void* data = REALMemoryBlockGetPtr(block.get());
  if (data == nullptr) return nullptr;
  std::memcpy(data, bytes, static_cast<std::size_t>(size));
  return block.handOver();
}

void* AllocateClearMemory(std::int64_t size) {
  if (size < 1 || size > std::numeric_limits<std::int32_t>::max()) return nullptr;
  return std::calloc(1, static_cast<std::size_t>(size));
}

void ClearMemory(void* pointer, std::size_t size) { std::memset(pointer, 0, size); }

void FreeMemoryNow(void* pointer) { std::free(pointer); }

bool REALObjectIsA(REALobject object, const char* className) {
  if (object == nullptr) return false;
  REALclassRef classRef = REALGetClassRef(className);
  return classRef != nullptr && REALObjectIsA(object, classRef);
}

bool IsFolderItem(REALobject object) {
  return REALLoadObjectMethod(object, "TrueItem(Index as integer) as Folderitem") != nullptr;
}

bool IsMemoryBlock(REALobject object) {
  return REALLoadObjectMethod(object, "Constructor(bytes as Integer)") != nullptr;
}

REALstringArray REALCreateArrayString(REALinteger upperBound) {
  return static_cast<REALstringArray>(REALCreateArray(kArrayOfStrings, upperBound));
}

REALobjectArray REALCreateArrayObject(REALinteger upperBound) {
  return static_cast<REALobjectArray>(REALCreateArray(kArrayOfObjects, upperBound));
}

REALobjectArray REALCreateArrayVariant(REALinteger upperBound) { return REALCreateArrayObject(upperBound); }

REALdictionaryArray REALCreateArrayDictionary(REALinteger upperBound) {
  return static_cast<REALdictionaryArray>(REALCreateArray(kArrayOfObjects, upperBound));
}

void REALGetArrayValue(REALobjectArray array, REALinteger index, REALobject* out) {
  REALGetArrayValueObject(array, index, out);
}

void REALGetArrayValue(REALstringArray array, REALinteger index, REALstring* out) {
  REALGetArrayValueString(array, index, out);
}

void REALGetArrayValue(REALdoubleArray array, REALinteger index, double* out) {
  REALGetArrayValueDouble(array, index, out);
}

void REALGetArrayValue(REALsingleArray array, REALinteger index, float* out) {
  REALGetArrayValueSingle(array, index, out);
}

void REALGetArrayValue(REALint64Array array, REALinteger index, std::int64_t* out) {
  REALGetArrayValueInt64(array, index, out);
}

void REALGetArrayValue(REALintegerArray array, REALinteger index, int* out) {
  std::int32_t value = *out;
  REALGetArrayValueInt32(array, index, &value);
  *out = value;
}

void REALGetArrayValue(REALbooleanArray array, REALinteger index, signed char* out) {
  auto value = static_cast<std::uint8_t>(*out);
  REALGetArrayValueUInt8(array, index, &value);
  *out = static_cast<signed char>(value);
}

void REALInsertArrayValue(REALobjectArray array, REALinteger index, REALobject value) {
  REALInsertArrayValueObject(array, index, value);
}

void REALInsertArrayValue(REALdictionaryArray array, REALinteger index, REALdictionary value) {
  REALInsertArrayValueObject(array, index, value);
}

void REALInsertArrayValue(REALstringArray array, REALinteger index, REALstring value) {
  REALInsertArrayValueString(array, index, value);
}
