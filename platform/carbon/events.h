#pragma once

#include "platform/carbon/carbon_base.h"
#include "platform/foundation/cf_base.h"

// Carbon events: a sender hands an event to a target, whose handlers see it one after the other, the one installed last
// first. A handler that answers eventNotHandledErr leaves the event to the next; one that wants the next to run before
// it goes on asks for that with CallNextEventHandler. All on the main thread.

using EventRef = struct OpaqueEventRef*;
using EventTargetRef = struct OpaqueEventTargetRef*;
using EventHandlerRef = struct OpaqueEventHandlerRef*;
using EventHandlerCallRef = struct OpaqueEventHandlerCallRef*;  // means something only while its handler runs
using EventHandlerUPP = OSStatus (*)(EventHandlerCallRef next, EventRef event, void* userData);
using EventTime = double;  // seconds
using EventAttributes = std::uint32_t;
using EventParamName = OSType;
using EventParamType = OSType;
using ByteCount = std::uintptr_t;
using ItemCount = std::uintptr_t;

inline constexpr OSStatus eventParameterNotFoundErr = -9870;
inline constexpr OSStatus eventNotHandledErr = -9874;

inline constexpr EventAttributes kEventAttributeNone = 0;
inline constexpr EventParamType typeCFTypeRef = 0x63667479;  // 'cfty'

struct EventTypeSpec {
  std::uint32_t eventClass;
  std::uint32_t eventKind;
};

extern "C" {

// A new event for the caller to release. Neither time nor attributes are kept: events aren't queued.
PLATFORM_API OSStatus CreateEvent(CFAllocatorRef allocator, std::uint32_t eventClass, std::uint32_t eventKind,
                                  EventTime when, EventAttributes attributes, EventRef* newEvent);
PLATFORM_API void ReleaseEvent(EventRef event);
PLATFORM_API std::uint32_t GetEventClass(EventRef event);
PLATFORM_API std::uint32_t GetEventKind(EventRef event);
// Copies the bytes; an object among them is not retained.
PLATFORM_API OSStatus SetEventParameter(EventRef event, EventParamName name, EventParamType type, ByteCount size,
                                        const void* data);
// Fills what was asked for, at most bufferSize bytes of data; each out pointer may be null. There are no conversions: a
// parameter of another type answers eventParameterNotFoundErr.
PLATFORM_API OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType type,
                                        EventParamType* actualType, ByteCount bufferSize, ByteCount* actualSize,
                                        void* data);

// The one target of the process.
PLATFORM_API EventTargetRef GetApplicationEventTarget();
// The handler gets the events of these types. handlerRef, for RemoveEventHandler, may be null.
PLATFORM_API OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                                          const EventTypeSpec* types, void* userData, EventHandlerRef* handlerRef);
// Also while the handler runs.
PLATFORM_API OSStatus RemoveEventHandler(EventHandlerRef handler);
// What the handlers answered; eventNotHandledErr when none of them took it.
PLATFORM_API OSStatus SendEventToEventTarget(EventRef event, EventTargetRef target);
// Lets the handlers behind the running one have the event, and answers what they did. None of them gets it again when
// the running one then answers eventNotHandledErr.
PLATFORM_API OSStatus CallNextEventHandler(EventHandlerCallRef next, EventRef event);
}
