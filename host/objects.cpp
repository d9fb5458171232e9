#include "host/objects.h"

#include "host/classes.h"
#include "host/events.h"
#include "host/exceptions.h"
#include "host/memory.h"
#include "host/strings.h"

#include <cstdio>
#include <sstream>

namespace host {

namespace {

// Bytes of a string that a report shows.
constexpr std::size_t kShownLength = 60;

void destroy(REALobject object) {
  HostClass& objectClass = classOf(object);
  const PluginScope scope;
  for (const HostClass* owner = &objectClass; owner != nullptr; owner = owner->superclass) {
    if (owner->definition->destructor == nullptr) continue;
    // A destructor hands its object to code that may take and drop references to it.
    header(object).references = 1;
    owner->definition->destructor(object);
  }
  forgetHandlers(object);
  objectClass.liveInstances.fetch_sub(1, std::memory_order_relaxed);
  releaseMemory(&header(object), objectClass.instanceSize);
}

}  // namespace

REALobject newInstance(HostClass& objectClass) {
  auto* object = static_cast<ObjectHeader*>(newMemory(objectClass.instanceSize));
  object->objectClass = &objectClass;
  object->references = 1;
  objectClass.liveInstances.fetch_add(1, std::memory_order_relaxed);
  return reinterpret_cast<REALobject>(object);
}

void lock(REALobject object) {
  if (object != nullptr) ++header(object).references;
}

void unlock(REALobject object) {
  if (object == nullptr) return;
  if (--header(object).references == 0) destroy(object);
}

std::map<std::string, long> liveCounts() {
  std::map<std::string, long> counts;
  for (const auto& objectClass : allClasses()) {
    if (const long count = objectClass->liveInstances.load(); count != 0) counts[objectClass->name()] = count;
  }
  if (const auto count = static_cast<long>(liveStringTexts().size()); count != 0) counts["String"] = count;
  return counts;
}

std::string liveReport() {
  std::ostringstream report;
  for (const auto& [name, count] : liveCounts()) {
    report << name << ": " << count;
    if (name == "String") {
      for (const std::string& text : liveStringTexts()) report << " \"" << text.substr(0, kShownLength) << '"';
    }
    report << '\n';
  }
  return report.str();
}

}  // namespace host
