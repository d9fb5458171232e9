#pragma once

#include "platform/objc/runtime.h"

// What tests ask of the runtime: who is alive, a send that fails on purpose, a framework that lacks a selector.
namespace objc {

using LiveVisitor = void (*)(const char* className, long count, void* context);
// Runs before each send's method; what it throws, the send throws.
using SendHook = void (*)(Object* receiver, Selector selector);

}  // namespace objc

extern "C" {

// Calls the visitor for every class with live, mortal instances.
PLATFORM_API void objc_visitLiveInstances(objc::LiveVisitor visitor, void* context);
// Null takes the hook away.
PLATFORM_API void objc_setSendHook(objc::SendHook hook);
// From now on no class has a method of this selector: probes answer false, sends raise.
PLATFORM_API void objc_hideSelector(const char* name);
}
