#pragma once

#include "host/declarations.h"
#include "host/value.h"

#include <functional>
#include <span>
#include <string_view>

// Events: host code that a plug-in calls. A handler stands for a subclass's or an instance's implementation.
namespace host {

using EventHandler = std::function<void(const Value& self, std::span<const Value> arguments)>;

// For every object of the class, or of a subclass. An exception of the host that the handler throws becomes the
// pending one. These throw Error for an event that the class doesn't have.
void handleClassEvent(std::string_view className, std::string_view event, EventHandler handler);
// For the one object, before its class's handler, as long as it lives.
void handleEvent(const Value& object, std::string_view event, EventHandler handler);

// A new event's word in its record, never zero. Throws Error for a declaration of a shape that no event has.
Word newEventId(const Declaration& declaration);
// The function that a plug-in calls to raise the event on the object; null when nothing handles it.
void* eventFunction(REALobject object, Word eventId);
// The object is about to go.
void forgetHandlers(REALobject object);

}  // namespace host
