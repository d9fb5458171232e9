#pragma once

#include "bridge/wrappers.h"
#include "frame/host_interface.h"

// By-reference errors of host code.

// Drops what an earlier call left, so that every path without an error ends with nil.
inline void dropError(REALobject* error) {
  if (*error != nullptr) REALUnlockObject(*error);
  *error = nullptr;
}

// Hands the framework's error, which may be nil, to host code.
inline void storeError(REALobject* error, NSError failure) { *error = NewNSErrorVXR(failure); }
