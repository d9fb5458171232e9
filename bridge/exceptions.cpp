#include "bridge/exceptions.h"

#include "bridge/strings.h"
#include "frame/host_ref.h"
#include "platform/carbon/process.h"
#include "platform/foundation/log.h"
#include "platform/foundation/string.h"

#include <cstdlib>

namespace {

void setTextProperty(REALobject object, const char* name, NSString text) {
  if (auto converted = adoptHost(NSStringRB(text))) REALSetPropValueString(object, name, converted.get());
}

[[noreturn]] void quit() {
  if (PLATFORM_HAS(ExitToShell)) ExitToShell();
  std::_Exit(EXIT_FAILURE);
}

}  // namespace

void RaiseRBException(NSException exception) {
  auto hostException = adoptHost(REALnewInstance("NSExceptionVXR"));
  if (!hostException) MyNSUncaughtExceptionHandler(exception);

  NSString name = exception.name();
  NSString reason = exception.reason();
  NSString message = NSString::stringWithFormat("A Cocoa %@ was not handled: %@"_ns, name, reason);
  NSLog("A %@: %@, Info: %@\n"_ns, name, reason, exception.userInfo());
  setTextProperty(hostException.get(), "Message", message);
  setTextProperty(hostException.get(), "Name", name);
  setTextProperty(hostException.get(), "Reason", reason);
  REALRaiseException(hostException.get());
}

void MyNSUncaughtExceptionHandler(NSException exception) {
  if (exception) {
    NSString message = NSString::stringWithFormat(
        "A Cocoa %@ was not handled: %@. Please report to the application developer. The application will quit "
        "now. (use NSExceptionVXR class to catch this exception)"_ns,
        exception.name(), exception.reason());
    auto text = adoptHost(NSStringRB(message));
    NSLog("%@\n"_ns, message);
    if (exception.respondsToSelector("callStackSymbols"_sel)) {
      NSLog("callStackSymbols: %@\n"_ns, exception.callStackSymbols());
    }
    REALMessageBox(text.get());
  }
  quit();
}
