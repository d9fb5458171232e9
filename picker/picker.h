#pragma once

#include "frame/host_types.h"

// The people picker's class as it is described to the host.
extern REALclassDefinition ABPickerVXR;
