#pragma once

#include "frame/host_entry.h"
#include "frame/host_types.h"
#include "platform/foundation/cf_base.h"

struct FSRef;
struct FSSpec;
struct HFSUniStr255;

// The host's services, one line each: the entry's name, what it is called with, the name it is known by here. Answers
// that are objects, strings, arrays, variants or memory blocks carry one reference for the caller. The wrappers below
// the list are those whose calls differ from their entry's, or which do without it.

// The host's version number, 0 when it has none to give.
inline double rbversion_rbversion = 0;

// Objects and classes.
inline constinit HostEntry<"PluginNewInstance", REALobject(const char* className)> REALnewInstance;
inline constinit HostEntry<"pluginObjectType", REALclassRef(const char* className)> REALGetClassRef;
inline constinit HostEntry<"PluginRegisterClass", void(REALclassDefinition*)> REALRegisterClass;
inline constinit HostEntry<"REALLoadObjectMethod", void*(REALobject, const char* declaration)> REALLoadObjectMethod;
inline constinit HostEntry<"REALLockObject", void(REALobject)> REALLockObject;
inline constinit HostEntry<"REALUnlockObject", void(REALobject)> REALUnlockObject;
inline constinit HostEntry<"RuntimeRaiseException", void(REALobject)> REALRaiseException;

// The process.
inline constinit HostEntry<"REALinRuntime", bool()> REALinRuntime;
inline constinit HostEntry<"REALYieldToRB", void()> REALYieldToRB;
inline constinit HostEntry<"RuntimeMsgBox", void(REALstring)> REALMessageBox;

// Strings.
inline constinit HostEntry<"REALLockString", void(REALstring)> REALLockString;
inline constinit HostEntry<"REALUnlockString", void(REALstring)> REALUnlockString;
inline constinit HostEntry<"REALBuildString", REALstring(const char* bytes, std::int32_t length)>
    originalREALBuildString;
inline constinit HostEntry<"REALGetStringEncoding", std::uint32_t(REALstring)> REALGetStringEncoding;
inline constinit HostEntry<"REALSetStringEncoding", void(REALstring, std::uint32_t encoding)> REALSetStringEncoding;
inline constinit HostEntry<"REALConvertString", REALstring(REALstring, std::uint32_t encoding)> REALConvertString;
inline constinit HostEntry<"REALGetStringCFString", CFStringRef(REALstring, bool flag)> REALGetStringCFString;

// Properties by name. True when the property was read or written.
inline constinit HostEntry<"REALGetPropValueInt", bool(REALobject, const char* name, std::int32_t*)>
    REALGetPropValueInt32;
inline constinit HostEntry<"REALGetPropValueInt64", bool(REALobject, const char* name, std::int64_t*)>
    REALGetPropValueInt64;
inline constinit HostEntry<"REALGetPropValueSingle", bool(REALobject, const char* name, float*)> REALGetPropValueSingle;
inline constinit HostEntry<"REALGetPropValueDouble", bool(REALobject, const char* name, double*)>
    REALGetPropValueDouble;
inline constinit HostEntry<"REALGetPropValueString", bool(REALobject, const char* name, REALstring*)>
    REALGetPropValueString;
inline constinit HostEntry<"REALGetPropValueObject", bool(REALobject, const char* name, REALobject*)>
    REALGetPropValueObject;
inline constinit HostEntry<"REALSetPropValueInt", bool(REALobject, const char* name, std::int32_t)>
    REALSetPropValueInt32;
inline constinit HostEntry<"REALSetPropValueString", bool(REALobject, const char* name, REALstring)>
    REALSetPropValueString;

// Variants.
inline constinit HostEntry<"StringToVariant", REALvariant(REALstring)> REALNewVariantString;
inline constinit HostEntry<"Int32ToVariant", REALvariant(std::int32_t)> REALNewVariantInteger;
inline constinit HostEntry<"UInt32ToVariant", REALvariant(std::uint32_t)> REALNewVariantUInt32;
inline constinit HostEntry<"Int64ToVariant", REALvariant(std::int64_t)> REALNewVariantInt64;
inline constinit HostEntry<"UInt64ToVariant", REALvariant(std::uint64_t)> REALNewVariantUInt64;
inline constinit HostEntry<"SingleToVariant", REALvariant(float)> REALNewVariantSingle;
inline constinit HostEntry<"DoubleToVariant", REALvariant(double)> REALNewVariantDouble;
inline constinit HostEntry<"BooleanToVariant", REALvariant(bool)> REALNewVariantBoolean;

// Arrays. An upper bound of -1 is an empty array's.
inline constinit HostEntry<"RuntimeArrayCreateSingleDimBoundedArray", REALarray(std::int32_t type, REALinteger upper)>
    REALCreateArray;
inline constinit HostEntry<"RuntimeUBound", REALinteger(REALarray)> REALGetArrayUBound;
inline constinit HostEntry<"RuntimeDirectReadStringArray", REALstring(REALarray, REALinteger index)> REALGetArrayString;
inline constinit HostEntry<"RuntimeDirectReadObjectArray", REALobject(REALarray, REALinteger index)> REALGetArrayObject;

// Memory blocks.
inline constinit HostEntry<"newMemoryBlock", REALmemoryBlock(REALinteger size)> REALNewMemoryBlock;
inline constinit HostEntry<"memoryBlockGetPtr", void*(REALmemoryBlock)> REALMemoryBlockGetPtr;
inline constinit HostEntry<"memoryBlockGetSize", REALinteger(REALmemoryBlock)> REALMemoryBlockGetSize;

// Folder items.
inline constinit HostEntry<"FolderItemFromFSSpec", REALfolderItem(const FSSpec*)> REALFolderItemFromFSSpec;
inline constinit HostEntry<"REALFSSpecFromFolderItem", bool(FSSpec*, REALfolderItem)> REALFSSpecFromFolderItem;
inline constinit HostEntry<"REALFSRefFromFolderItem", bool(REALfolderItem, FSRef*, HFSUniStr255*)>
    REALFSRefFromFolderItem;
inline constinit HostEntry<"REALFolderItemFromParentFSRef", REALfolderItem(const FSRef* parent, const HFSUniStr255*)>
    REALFolderItemFromParentFSRef;

// The host's global method of that declaration, or null.
void* REALLoadFrameworkMethod(const char* declaration);

// Whether the object is an instance of the class.
bool REALObjectIsA(REALobject object, REALclassRef classRef);

// A Core Foundation string of the text, owned by the caller, or null.
CFStringRef REALCopyStringCFString(REALstring string);

// Fills the record with the string's bytes in the encoding, or as stored (kEncodingAsStored). False when neither the
// host nor the plug-in itself can give them; otherwise the record goes back through REALDisposeStringData.
bool REALGetStringData(REALstring string, std::uint32_t encoding, REALstringData* data);
void REALDisposeStringData(REALstringData* data);

// The host code that implements the event for the object, or null.
void* REALGetEventInstance(REALobject object, const REALevent* event);

// Reads the element, through the host's getter for the array or straight from its storage where the host has none.
// Nothing is written when there is no getter or out is null. Strings and objects carry one reference for the caller.
void REALGetArrayValueInt64(REALarray array, REALinteger index, std::int64_t* out);
void REALGetArrayValueInt32(REALarray array, REALinteger index, std::int32_t* out);
void REALGetArrayValueUInt8(REALarray array, REALinteger index, std::uint8_t* out);
void REALGetArrayValueSingle(REALarray array, REALinteger index, float* out);
void REALGetArrayValueDouble(REALarray array, REALinteger index, double* out);
void REALGetArrayValueString(REALarray array, REALinteger index, REALstring* out);
void REALGetArrayValueObject(REALarray array, REALinteger index, REALobject* out);

// Inserts at the index. The host takes a reference of its own; nothing happens where it offers no insertion.
void REALInsertArrayValueString(REALarray array, REALinteger index, REALstring value);
void REALInsertArrayValueObject(REALarray array, REALinteger index, REALobject value);
