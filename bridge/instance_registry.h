#pragma once

#include "frame/host_types.h"
#include "platform/objc/handle.h"

// The map from framework object to the host object that wraps it, one for all plug-ins of the family in the process. It
// holds no references: a wrapper enters itself and takes itself out. Main thread only.

// Finds the registry that an earlier plug-in of the family published, or makes and publishes it and installs the
// handler for uncaught exceptions. Does its work once; without a registry nothing is ever found.
void CocoaInit();

// Replaces what was registered for the object. Nothing happens for nil.
void RegisterInstance(REALobject hostObject, NSObject object);
void UnregisterInstance(NSObject object);
// The host object, with no reference added, or null.
REALobject FindInstance(NSObject object);
