#include "fuzz/started_host.h"

#include "bridge/instance_registry.h"
#include "frame/host_types.h"
#include "fuzz/target.h"
#include "host/entries.h"
#include "host/exceptions.h"
#include "host/foreign_classes.h"
#include "host/loader.h"
#include "host/memory_blocks.h"
#include "host/objects.h"
#include "host/options.h"
#include "platform/foundation/exception.h"
#include "tests/objc/live_objects.h"

#include <cstdlib>
#include <ctime>

extern "C" void REALPluginMain(REALresolver resolver);

namespace {

std::string platformReport() {
  std::string report;
  for (const auto& [name, count] : liveObjects()) report += name + ": " + std::to_string(count) + "\n";
  return report;
}

}  // namespace

StartedHost::StartedHost(const std::vector<std::string>& without, const std::function<void()>& prepare) {
  // A zone whose clocks change, and whose rules need no file.
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  tzset();
  host::options().without = without;
  host::registerForeignClasses();
  host::startPlugin(REALPluginMain);
  CocoaInit();
  if (prepare) prepare();
  hostObjects_ = host::liveReport();
  platformObjects_ = platformReport();
}

StartedHost::Outcome StartedHost::run(const std::function<std::string()>& action) const {
  Outcome outcome;
  {
    const host::PluginScope scope;
    try {
      outcome.text = action();
    } catch (const NSException& exception) {
      outcome = {std::string(exception.name().UTF8String()) + ": " + exception.reason().UTF8String(), true};
    }
  }
  host::failNewInstance(0);
  host::failMemoryBlock(0);
  host::takePendingException();
  expectEqual(host::liveReport(), hostObjects_, "host objects left over");
  expectEqual(platformReport(), platformObjects_, "framework objects left over");
  return outcome;
}
