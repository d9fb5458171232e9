#pragma once

#include <cstdint>

#include "platform/objc/api.h"

// Carbon's basic types and the results that its functions here answer.
using OSErr = std::int16_t;
using OSStatus = std::int32_t;
using OSType = std::uint32_t;  // four characters, the first in the highest byte

inline constexpr OSErr noErr = 0;
inline constexpr OSErr nsvErr = -35;     // no such volume
inline constexpr OSErr bdNamErr = -37;   // a name that no item can have, or that the receiver can't hold
inline constexpr OSErr fnfErr = -43;     // the item, or what was asked for, isn't there
inline constexpr OSErr paramErr = -50;   // an argument that means nothing
inline constexpr OSErr dirNFErr = -120;  // the folder isn't there
inline constexpr OSErr errFSBadFSRef = -1401;
inline constexpr OSErr pathTooLongErr = -2110;
