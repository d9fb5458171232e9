#include "platform/foundation/exception.h"

#include <atomic>
#include <cstdlib>
#include <exception>
#include <mutex>

namespace {

std::atomic<NSUncaughtExceptionHandler*> uncaughtHandler{nullptr};
constinit std::terminate_handler terminateBefore = nullptr;

void terminateWithHandler() {
  NSUncaughtExceptionHandler* handler = uncaughtHandler.load();
  if (handler != nullptr && std::current_exception() != nullptr) {
    try {
      throw;
    } catch (const NSException& exception) {
      handler(exception);
    } catch (...) {
      // Not ours; whoever ended processes before does.
    }
  }
  if (terminateBefore != nullptr) terminateBefore();
  std::abort();
}

}  // namespace

void NSSetUncaughtExceptionHandler(NSUncaughtExceptionHandler* handler) {
  static std::once_flag installed;
  std::call_once(installed, [] { terminateBefore = std::set_terminate(&terminateWithHandler); });
  uncaughtHandler.store(handler);
}

NSUncaughtExceptionHandler* NSGetUncaughtExceptionHandler() { return uncaughtHandler.load(); }
