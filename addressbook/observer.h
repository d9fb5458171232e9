#pragma once

#include "frame/host_types.h"

// The database's change notifications, as the event "DatabaseChanged" of address book objects.

// Subscribes the object for changes of the shared address book, once; until its destruction.
void InstallEvent(REALobject hostObject);

// Ends the subscription, if there is one.
void removeEvent(REALobject hostObject);

// Whether host code handles the event for the object.
bool handlesDatabaseChanged(REALobject hostObject);
