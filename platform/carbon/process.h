#pragma once

#include "platform/carbon/carbon_base.h"

extern "C" {

// Ends the application in the ordinary way, whichever thread calls.
[[noreturn]] PLATFORM_API void ExitToShell();
}
