#pragma once

#include "frame/host_types.h"
#include "platform/foundation/cf_base.h"

// The AddressBook framework's bundle, loaded inside a built application; null inside the development environment and
// where the framework can't be loaded. Lives as long as the process.
extern CFBundleRef AddressbookFramework;

// Loads the framework bundle and registers the eight classes. Called once, when host and plug-in have met.
void PluginEntry();

// Rounds the definition's data size up to a multiple of 16 and hands it to the host.
void MyREALRegisterClass(REALclassDefinition* definition);

// A framework of the folder-manager domain, loaded; owned by the caller, null when it can't be found or loaded.
CFBundleRef LoadFrameworkBundles(std::int16_t domain, CFStringRef frameworkName);
// The same in the system domain.
CFBundleRef LoadFrameworkBundle(CFStringRef frameworkName);
