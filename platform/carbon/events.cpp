#include "platform/carbon/events.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

struct OpaqueEventRef {
  struct Parameter {
    EventParamName name;
    EventParamType type;
    std::vector<std::byte> data;
  };

  std::uint32_t eventClass;
  std::uint32_t eventKind;
  std::vector<Parameter> parameters;
};

struct OpaqueEventHandlerRef {
  EventHandlerUPP function;
  void* userData;
  std::vector<EventTypeSpec> types;
  bool isRemoved = false;
};

namespace {

// A handler may be removed while an event is on its way along the chain.
using Chain = std::vector<std::shared_ptr<OpaqueEventHandlerRef>>;

}  // namespace

struct OpaqueEventTargetRef {
  Chain handlers;  // the latest last
};

// The chain, as it was when the event was sent, from where it goes on.
struct OpaqueEventHandlerCallRef {
  std::span<const std::shared_ptr<OpaqueEventHandlerRef>> rest;
  bool isUsed = false;
};

namespace {

bool wants(const OpaqueEventHandlerRef& handler, const OpaqueEventRef& event) {
  return !handler.isRemoved && std::ranges::any_of(handler.types, [&](const EventTypeSpec& type) {
    return type.eventClass == event.eventClass && type.eventKind == event.eventKind;
  });
}

OSStatus dispatch(std::span<const std::shared_ptr<OpaqueEventHandlerRef>> chain, EventRef event) {
  while (!chain.empty()) {
    const OpaqueEventHandlerRef& handler = *chain.back();
    chain = chain.first(chain.size() - 1);
    if (!wants(handler, *event)) continue;
    OpaqueEventHandlerCallRef next{chain};
    const OSStatus status = handler.function(&next, event, handler.userData);
    if (status != eventNotHandledErr || next.isUsed) return status;
  }
  return eventNotHandledErr;
}

}  // namespace

OSStatus CreateEvent(CFAllocatorRef, std::uint32_t eventClass, std::uint32_t eventKind, EventTime, EventAttributes,
                     EventRef* newEvent) {
  if (newEvent == nullptr) return paramErr;
  *newEvent = new OpaqueEventRef{eventClass, eventKind, {}};
  return noErr;
}

void ReleaseEvent(EventRef event) { delete event; }

std::uint32_t GetEventClass(EventRef event) { return event->eventClass; }

std::uint32_t GetEventKind(EventRef event) { return event->eventKind; }

OSStatus SetEventParameter(EventRef event, EventParamName name, EventParamType type, ByteCount size, const void* data) {
  if (event == nullptr || data == nullptr) return paramErr;
  const auto* bytes = static_cast<const std::byte*>(data);
  std::erase_if(event->parameters, [name](const auto& parameter) { return parameter.name == name; });
  event->parameters.push_back({name, type, {bytes, bytes + size}});
  return noErr;
}

OSStatus GetEventParameter(EventRef event, EventParamName name, EventParamType type, EventParamType* actualType,
                           ByteCount bufferSize, ByteCount* actualSize, void* data) {
  if (event == nullptr) return paramErr;
  const auto found = std::ranges::find_if(
      event->parameters, [&](const auto& parameter) { return parameter.name == name && parameter.type == type; });
  if (found == event->parameters.end()) return eventParameterNotFoundErr;
  if (actualType != nullptr) *actualType = found->type;
  if (actualSize != nullptr) *actualSize = found->data.size();
  if (data != nullptr) std::memcpy(data, found->data.data(), std::min<std::size_t>(bufferSize, found->data.size()));
  return noErr;
}

EventTargetRef GetApplicationEventTarget() {
  // Never destroyed: handlers are installed for the life of the process.
  static auto* target = new OpaqueEventTargetRef;
  return target;
}

OSStatus InstallEventHandler(EventTargetRef target, EventHandlerUPP handler, ItemCount typeCount,
                             const EventTypeSpec* types, void* userData, EventHandlerRef* handlerRef) {
  if (target == nullptr || handler == nullptr || (types == nullptr && typeCount > 0)) return paramErr;
  target->handlers.push_back(
      std::make_shared<OpaqueEventHandlerRef>(OpaqueEventHandlerRef{handler, userData, {types, types + typeCount}}));
  if (handlerRef != nullptr) *handlerRef = target->handlers.back().get();
  return noErr;
}

OSStatus RemoveEventHandler(EventHandlerRef handler) {
  Chain& handlers = GetApplicationEventTarget()->handlers;
  const auto found = std::ranges::find(handlers, handler, &std::shared_ptr<OpaqueEventHandlerRef>::get);
  if (found == handlers.end()) return paramErr;
  (*found)->isRemoved = true;
  handlers.erase(found);
  return noErr;
}

OSStatus SendEventToEventTarget(EventRef event, EventTargetRef target) {
  if (event == nullptr || target == nullptr) return paramErr;
  const Chain chain = target->handlers;
  return dispatch(chain, event);
}

OSStatus CallNextEventHandler(EventHandlerCallRef next, EventRef event) {
  if (next == nullptr || event == nullptr) return paramErr;
  next->isUsed = true;
  return dispatch(next->rest, event);
}
