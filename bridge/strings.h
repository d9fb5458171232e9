#pragma once

#include "frame/host_ref.h"
#include "platform/foundation/array.h"
#include "platform/foundation/cf_string.h"
#include "platform/foundation/string.h"

// Text between host and Foundation. Host strings that are answered carry one reference for the caller; those passed in
// are borrowed. Every failure answers nil, which host code sees as the empty string. Nothing is normalised.

// The bytes of a host string, as stored, or of a memory block, for as long as the holder lives.
class rbData {
 public:
  explicit rbData(REALstring string);
  // length 0 stands for all that follows the offset. The view never reaches past the block.
  rbData(REALmemoryBlock block, std::uint32_t offset, std::uint32_t length);
  rbData(const rbData&) = delete;
  rbData& operator=(const rbData&) = delete;
  ~rbData();

 private:
  HostRef<REALstring> lockedString;
  HostRef<REALmemoryBlock> lockedBlock;
  REALstringData stringData{};
  bool ownsStringData = false;

 public:
  const char* data = nullptr;  // null when no bytes could be had
  std::uint32_t length = 0;
};

// Owned by the caller.
CFStringRef RBString2CFString(REALstring string);
// Autoreleased.
NSString NewNSString(REALstring string);

// Null for the empty string too. The text ends at its first zero character.
REALstring CFString2RBString(CFStringRef string);
REALstring NSStringRB(NSString string);

// A host string of the bytes. UTF-16 and UTF-32 become UTF-8, the latter with the low 16 bits of each unit; bytes in
// any other encoding are kept and marked.
REALstring REALBuildUnicodeString(const void* bytes, std::int32_t byteCount, std::uint32_t encoding);

// The array's strings, autoreleased; empty ones are left out. Nil for a nil array, and for an empty one if nilIfEmpty.
NSMutableArray CreateNSStringArray(REALstringArray array, signed char nilIfEmpty);
// An array of the one string; nil for an empty one.
NSArray CreateNSStringArray(REALstring string);

// Inserts the list's strings into an empty host array, in order. The elements must be strings.
void FillStringArray(REALstringArray array, NSArray list);
