#pragma once

#include "frame/host_types.h"

#include <string>
#include <vector>

// A host of a hundred lines, written from the binary interface alone. It has just what listing people needs.
namespace independent_host {

// Opens these frameworks of the build, and then the plug-in. False when the plug-in can't be opened.
bool start(const std::vector<std::string>& frameworks);

// The classes that the plug-in registered, in order.
const std::vector<REALclassDefinition*>& classes();
// The function of the instance or shared method with that declaration.
void* function(const std::string& className, const std::string& declaration);

REALstring string(const std::string& utf8);
std::string text(REALstring string);
// The text that a string variant holds.
std::string text(REALvariant variant);
const std::vector<REALobject>& elements(REALobjectArray array);
std::string classOf(REALobject object);
long liveObjects();
void release(REALobject object);
void release(REALstring string);

}  // namespace independent_host
