#pragma once

#include <cstddef>
#include <cstdint>

// The host's binary interface: its handles, the records that describe a class to it, and the few layouts that a plug-in
// reads directly. A Word is 32 bits on the reference platform and pointer-sized everywhere; records are runs of Words.

using Word = std::uintptr_t;
using REALinteger = std::intptr_t;  // the host language's Integer

// Opaque handles. Arrays, memory blocks, folder items and dictionaries are host objects too, and are counted as such.
struct REALobjectStruct {};
struct REALarrayStruct : REALobjectStruct {};
struct REALmemoryBlockStruct : REALobjectStruct {};
struct REALfolderItemStruct : REALobjectStruct {};
struct REALdictionaryStruct : REALobjectStruct {};
template <class Element>
struct REALarrayOf : REALarrayStruct {};
struct REALstringStruct;
struct REALclassRefStruct;

using REALobject = REALobjectStruct*;
using REALvariant = REALobject;  // a variant that holds an object is that object
using REALstring = REALstringStruct*;
using REALarray = REALarrayStruct*;
using REALmemoryBlock = REALmemoryBlockStruct*;
using REALfolderItem = REALfolderItemStruct*;
using REALdictionary = REALdictionaryStruct*;
using REALclassRef = REALclassRefStruct*;

using REALobjectArray = REALarrayOf<REALobject>*;
using REALstringArray = REALarrayOf<REALstring>*;
using REALdictionaryArray = REALarrayOf<REALdictionary>*;
using REALintegerArray = REALarrayOf<std::int32_t>*;
using REALint64Array = REALarrayOf<std::int64_t>*;
using REALsingleArray = REALarrayOf<float>*;
using REALdoubleArray = REALarrayOf<double>*;
using REALbooleanArray = REALarrayOf<bool>*;

// An instance's data block starts this many bytes into the host object of any class without a superclass.
inline constexpr std::size_t kObjectDataOffset = 24;

// Element type codes for making arrays. 4 serves variants and dictionaries as well.
inline constexpr std::int32_t kArrayOfStrings = 3;
inline constexpr std::int32_t kArrayOfObjects = 4;

// Text encodings, numbered as Core Foundation numbers them.
inline constexpr std::uint32_t kEncodingMacRoman = 0;
inline constexpr std::uint32_t kEncodingUTF16 = 0x100;
inline constexpr std::uint32_t kEncodingASCII = 0x600;
inline constexpr std::uint32_t kEncodingUTF8 = 0x08000100;
inline constexpr std::uint32_t kEncodingUTF32 = 0x0C000100;
inline constexpr std::uint32_t kEncodingAsStored = 0xFFFF;  // of a string: unknown; as a request: the bytes unconverted

// A string's bytes as the host hands them out.
struct REALstringData {
  void* data;
  std::uint32_t length;  // bytes, a terminator not counted
  std::uint32_t encoding;
};

// A host string as hosts before 2013 let plug-ins read it.
struct REALstringRecord {
  Word reserved1;
  const char* buffer;  // the text starts one byte past it
  Word reserved2;
  Word length;  // bytes
};

// A host array's record; storage holds its elements side by side, from index 0.
struct REALarrayRecord {
  Word reserved1;
  Word reserved2;
  void* storage;
};

// The class tables. All texts are static; the host keeps the records.

struct REALproperty {
  Word reserved1 = 0;
  const char* name = nullptr;
  const char* type = nullptr;
  Word flags = 0;
  // function(object, parameter); kHostAccessor: the host reads the data block at offset parameter.
  void* getter = nullptr;
  void* setter = nullptr;  // function(object, parameter, value); kHostAccessor likewise; null: read-only
  Word parameter = 0;
  Word reserved8 = 0;
  Word reserved9 = 0;
  Word reserved10 = 0;
};

struct REALmethodDefinition {
  void* function = nullptr;  // an instance method takes the object first, a shared method only the declared parameters
  void* setter = nullptr;    // called on assignment, with the assigned value last; null where there is none
  const char* declaration = nullptr;
  Word flags = 0;
};

struct REALevent {
  const char* declaration = nullptr;
  Word hostReserved = 0;
};

struct REALconstant {
  const char* declaration = nullptr;
  Word reserved2 = 0;
  Word reserved3 = 0;
};

struct REALclassDefinition {
  Word version = 0;
  const char* name = nullptr;
  const char* superName = nullptr;
  Word dataSize = 0;    // bytes that the class adds to each instance
  Word dataOffset = 0;  // written by the host
  void (*constructor)(REALobject) = nullptr;
  void (*destructor)(REALobject) = nullptr;
  REALproperty* properties = nullptr;
  Word propertyCount = 0;
  REALmethodDefinition* methods = nullptr;
  Word methodCount = 0;
  REALevent* events = nullptr;
  Word eventCount = 0;
  Word reserved14 = 0;
  Word reserved15 = 0;
  Word reserved16 = 0;
  Word reserved17 = 0;
  Word reserved18 = 0;
  REALconstant* constants = nullptr;
  Word constantCount = 0;
  Word flags = 0;
  Word reserved22 = 0;
  Word reserved23 = 0;
  REALmethodDefinition* sharedMethods = nullptr;
  Word sharedMethodCount = 0;
};

inline void* const kHostAccessor = reinterpret_cast<void*>(~Word{0});

inline constexpr Word kPluginInterfaceVersion = 9;

// The host's resolver: the function of a service by its entry name, or null.
using REALresolver = void* (*)(const char* entryName);
