#pragma once

#include "frame/host_types.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

struct MissingFramework {
  std::string name;
  std::string reason;
};

// Opens the platform's frameworks in the folder for everybody in the process, before any plug-in is loaded. Answers
// those that couldn't be opened: plug-ins do without them.
std::vector<MissingFramework> loadFrameworks(const std::filesystem::path& folder);

// Opens the plug-in and starts it. It stays for the life of the process. Throws Error when it can't be opened or has no
// entry point, HostException for what it left pending.
void loadPlugin(const std::filesystem::path& file);

// Calls a plug-in's entry point.
void startPlugin(void (*entryPoint)(REALresolver));

}  // namespace host
