#include "host/log.h"

#include "platform/foundation/log.h"

#include <atomic>

namespace host {

namespace {

std::atomic<void (*)(std::string_view)> writer{nullptr};

}  // namespace

void sendLogTo(void (*write)(std::string_view message)) {
  writer = write;
  NSSetLogHook([](NSString message) { writer.load()(message.UTF8String()); });
}

}  // namespace host
