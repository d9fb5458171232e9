#pragma once

#include "frame/host_types.h"
#include "platform/carbon/events.h"

// The people picker's class as it is described to the host.
extern REALclassDefinition ABPickerVXR;

// The picker object that gets the events; null for none.
extern REALobject globalinstance;
// What is to be installed where the picker's events arrive; null until the first picker object is made.
extern EventHandlerUPP eventHandler;

// Raises the host event that a Carbon event of the picker stands for, on globalinstance, and answers 0. What isn't
// handled goes to the next handler.
OSStatus MyEventHandler(EventHandlerCallRef nextHandler, EventRef event, void* userData);
