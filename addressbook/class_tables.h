#pragma once

#include "frame/host_types.h"

// The classes as they are described to the host, each defined at the end of its class's source.
extern REALclassDefinition ABAddressBookVXR;
extern REALclassDefinition ABRecordVXR;
extern REALclassDefinition ABPersonVXR;
extern REALclassDefinition ABGroupVXR;
extern REALclassDefinition ABMultiValueVXR;
extern REALclassDefinition ABMutableMultiValueVXR;
extern REALclassDefinition ABSearchElementVXR;
