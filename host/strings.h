#pragma once

#include "frame/host_types.h"
#include "platform/foundation/cf_base.h"

#include <string>
#include <string_view>
#include <vector>

// Host strings: counted, immutable bytes and the encoding they are said to be in. Null is the empty string.
namespace host {

// With one reference for the caller; null for no bytes.
REALstring newString(std::string_view bytes, std::uint32_t encoding);
// As UTF-8; null for null too.
REALstring newString(CFStringRef text);

// Empty for null.
std::string_view bytesOf(REALstring string);
// The same, followed by a zero; lives as long as the string.
const char* cStringOf(REALstring string);
// kEncodingAsStored for null, and until somebody says what the bytes are.
std::uint32_t encodingOf(REALstring string);
void setEncoding(REALstring string, std::uint32_t encoding);

// The text in another encoding, with one reference for the caller; bytes of unknown encoding are kept and marked. Null
// for null, and when the bytes are invalid or the encoding lacks a character.
REALstring newConverted(REALstring string, std::uint32_t encoding);
// Owned by the caller; null for null, for bytes of unknown encoding and for invalid ones.
CFStringRef copyCFString(REALstring string);

// As UTF-8. What is of unknown encoding or invalid comes as it is.
std::string textOf(REALstring string);

// The texts of all strings that are alive.
std::vector<std::string> liveStringTexts();

}  // namespace host
