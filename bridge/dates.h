#pragma once

#include "frame/host_types.h"
#include "platform/foundation/date.h"

// Between the host's "Date", wall-clock fields in the local time zone, and NSDate. Nil where there is nothing to
// convert.

// Autoreleased, an NSCalendarDate. Nil too when one of the six fields can't be read.
NSDate NewNSDate(REALobject date);

// The same of a variant that holds a Date.
NSDate NewNSDateFromVariant(REALvariant variant);

// A new host Date for the caller; fractions of a second are dropped.
REALobject NSDateRB(NSDate date);
