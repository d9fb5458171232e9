#pragma once

#include "platform/foundation/array.h"
#include "platform/foundation/string.h"

#include <cstdlib>
#include <string_view>

class NSDictionary;

// What the frameworks throw, by value as this handle. The object is autoreleased: who keeps it beyond the pool round
// the catch retains it.
class NSException : public NSObject {
 public:
  using NSObject::NSObject;

  static NSException exceptionWithName(NSString name, NSString reason, NSObject userInfo = nullptr) {
    return send<NSException>("NSException"_class, "exceptionWithName:reason:userInfo:"_sel, name, reason, userInfo);
  }
  [[noreturn]] static void raise(NSString name, NSString reason) { exceptionWithName(name, reason).raise(); }
  // The reason in UTF-8.
  [[noreturn]] static void raise(NSString name, std::string_view reason) {
    raise(name, NSString::stringWithUTF8(reason));
  }

  [[noreturn]] void raise() const {
    send<void>(*this, "raise"_sel);
    std::abort();
  }

  [[nodiscard]] NSString name() const { return send<NSString>(*this, "name"_sel); }
  [[nodiscard]] NSString reason() const { return send<NSString>(*this, "reason"_sel); }
  // An NSDictionary, or nil.
  [[nodiscard]] NSObject userInfo() const { return send<NSObject>(*this, "userInfo"_sel); }
  // One text a frame of the stack where the exception was raised (made, if it was thrown without raise), innermost
  // first.
  [[nodiscard]] NSArray callStackSymbols() const { return send<NSArray>(*this, "callStackSymbols"_sel); }
};

using NSUncaughtExceptionHandler = void(NSException exception);

extern "C" {
extern PLATFORM_API const NSString NSInvalidArgumentException;
extern PLATFORM_API const NSString NSRangeException;
extern PLATFORM_API const NSString NSInternalInconsistencyException;

// The handler runs with an NSException that nobody caught, before the process aborts. Null takes it away.
PLATFORM_API void NSSetUncaughtExceptionHandler(NSUncaughtExceptionHandler* handler);
PLATFORM_API NSUncaughtExceptionHandler* NSGetUncaughtExceptionHandler();
}
