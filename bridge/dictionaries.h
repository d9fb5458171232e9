#pragma once

#include "frame/host_types.h"
#include "platform/foundation/dictionary.h"

// Between the host's "Dictionary" and NSDictionary, entry by entry; a host Dictionary is reached through its own
// methods alone, which are loaded by declaration and kept for the Dictionary last used.

bool IsDictionary(REALobject object);
// A new empty Dictionary for the caller, or null.
REALdictionary NewDictionary();

// 0 when the count can't be read.
std::int32_t GetDictionaryCount(REALdictionary dictionary);
void SetDictionaryValue(REALdictionary dictionary, REALvariant key, REALvariant value);
// The variants are the caller's; null where the Dictionary has no such method.
REALvariant GetDictionaryValue(REALdictionary dictionary, REALvariant key);
REALvariant GetDictionaryKey(REALdictionary dictionary, REALinteger index);

// A new host Dictionary for the caller; null for nil.
REALdictionary NSDictionaryRB(NSDictionary dictionary);
// Autoreleased. What has no counterpart becomes NSNull; an entry without a key is left out.
NSDictionary NewNSDictionary(REALdictionary dictionary);
