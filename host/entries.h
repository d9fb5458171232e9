#pragma once

#include "frame/host_types.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The services that the host offers to plug-ins by name.
namespace host {

class HostClass;

// Answers an entry of this host, null for one that it lacks.
REALresolver resolver();
// The names of all entries there are.
std::vector<std::string> entryNames();
// How often plug-ins have asked for the entry.
std::size_t timesAsked(std::string_view entryName);

// The interface version that the plug-in loaded last has registered; 0 before.
Word pluginVersion();

// The classes that plug-ins have registered, in order.
const std::vector<const HostClass*>& pluginClasses();

// Makes the nth new instance that a plug-in asks for from now on fail, once; 0 calls it off. Answers how far off the
// failure that was set before still is; 0 when it came.
int failNewInstance(int nth);

// The texts of all message boxes so far.
const std::vector<std::string>& messageBoxes();

// Runs what is due in the run loop, for which it waits that long, and then throws what a plug-in left pending.
void idle(double seconds = 0);

}  // namespace host
