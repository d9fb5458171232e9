#include "host/events.h"

#include "host/classes.h"
#include "host/error.h"
#include "host/exceptions.h"

#include <array>
#include <map>
#include <utility>
#include <vector>

namespace host {

namespace {

// A handler's function gets no word about which event it is called for: each event has a function of its own, and
// these are the most there can be.
constexpr std::size_t kMostEvents = 32;

struct Handlers {
  std::map<std::pair<const HostClass*, Word>, EventHandler> ofClasses;
  std::map<std::pair<REALobject, Word>, EventHandler> ofObjects;
};

Handlers& handlers() {
  static auto* all = new Handlers;
  return *all;
}

// The declarations of all events; an event's id is its position plus one.
std::vector<Declaration>& events() {
  static auto* all = new std::vector<Declaration>;
  return *all;
}

const EventHandler* findHandler(REALobject object, Word eventId) {
  const Handlers& all = handlers();
  if (auto found = all.ofObjects.find({object, eventId}); found != all.ofObjects.end()) return &found->second;
  for (const HostClass* owner = &classOf(object); owner != nullptr; owner = owner->superclass) {
    if (auto found = all.ofClasses.find({owner, eventId}); found != all.ofClasses.end()) return &found->second;
  }
  return nullptr;
}

void dispatch(REALobject object, Word eventId, std::span<const Value> arguments) {
  const EventHandler* found = findHandler(object, eventId);
  if (found == nullptr) return;
  // The handler may take itself away, or the object.
  const EventHandler handler = *found;
  const Value self = Value::share(object);
  try {
    handler(self, arguments);
  } catch (const HostException& exception) {
    raise(exception.object().object());
  }
}

// The two shapes that events have.
template <std::size_t Index>
void plainEvent(REALobject object) {
  dispatch(object, Index + 1, {});
}

template <std::size_t Index>
void changeEvent(REALobject object, bool flag, REALstringArray first, REALstringArray second, REALstringArray third) {
  const std::array<Value, 4> arguments{flag, Value::share(first), Value::share(second), Value::share(third)};
  dispatch(object, Index + 1, arguments);
}

template <std::size_t... Index>
void* functionOf(Word eventId, bool isPlain, std::index_sequence<Index...>) {
  static constexpr std::array plain{plainEvent<Index>...};
  static constexpr std::array change{changeEvent<Index>...};
  return isPlain ? reinterpret_cast<void*>(plain[eventId - 1]) : reinterpret_cast<void*>(change[eventId - 1]);
}

bool isChangeEvent(const Declaration& declaration) {
  const auto& parameters = declaration.parameters;
  if (parameters.size() != 4 || parameters[0].type.kind != TypeKind::boolean || parameters[0].type.isArray)
    return false;
  for (std::size_t i = 1; i < parameters.size(); ++i) {
    if (parameters[i].type.kind != TypeKind::string || !parameters[i].type.isArray) return false;
  }
  return true;
}

Word requireEvent(const HostClass& objectClass, std::string_view name) {
  if (const Event* event = findEvent(objectClass, name)) return event->record->hostReserved;
  throw Error("class " + std::string(objectClass.name()) + " has no event " + std::string(name));
}

}  // namespace

void handleClassEvent(std::string_view className, std::string_view event, EventHandler handler) {
  const HostClass& objectClass = requireClass(className);
  handlers().ofClasses[{&objectClass, requireEvent(objectClass, event)}] = std::move(handler);
}

void handleEvent(const Value& object, std::string_view event, EventHandler handler) {
  const Word eventId = requireEvent(classOf(object.object()), event);
  handlers().ofObjects[{object.object(), eventId}] = std::move(handler);
}

Word newEventId(const Declaration& declaration) {
  if (!declaration.parameters.empty() && !isChangeEvent(declaration)) {
    throw Error("event " + declaration.name + ": no handler takes its parameters");
  }
  if (events().size() == kMostEvents) throw Error("event " + declaration.name + ": there are too many events");
  events().push_back(declaration);
  return events().size();
}

void* eventFunction(REALobject object, Word eventId) {
  if (object == nullptr || eventId == 0 || eventId > events().size() || findHandler(object, eventId) == nullptr) {
    return nullptr;
  }
  return functionOf(eventId, events()[eventId - 1].parameters.empty(), std::make_index_sequence<kMostEvents>());
}

void forgetHandlers(REALobject object) {
  auto& ofObjects = handlers().ofObjects;
  ofObjects.erase(ofObjects.lower_bound({object, 0}), ofObjects.upper_bound({object, ~Word{0}}));
}

}  // namespace host
