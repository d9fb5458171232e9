#pragma once

#include "frame/host_types.h"
#include "platform/foundation/geometry.h"
#include "platform/foundation/range.h"

// The family's geometry objects. A new object is the caller's; null where no plug-in has registered the class. Reading
// checks no class: callers test it first. Null reads as zeros.

REALobject NewNSRectVXR(NSRect rect);
REALobject NewNSSizeVXR(NSSize size);
REALobject NewNSPointVXR(NSPoint point);
REALobject NewNSRangeVXR(NSRange range);

NSRect GetNSRect(REALobject object);
NSSize GetNSSize(REALobject object);
NSPoint GetNSPoint(REALobject object);
NSRange GetNSRange(REALobject object);
