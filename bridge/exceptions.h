#pragma once

#include "platform/foundation/exception.h"

#include <utility>

// Leaves the exception pending in the host, as an object of its class "NSExceptionVXR". Where the host lacks that
// class, the application ends through MyNSUncaughtExceptionHandler.
void RaiseRBException(NSException exception);

// Logs the exception, shows it in a message box and quits the application.
[[noreturn]] void MyNSUncaughtExceptionHandler(NSException exception);

// Runs the body. A framework exception becomes a pending host exception, and what the caller had stored so far is its
// result; anything else that is thrown passes through.
template <class Body>
void guard(Body&& body) {
  try {
    std::forward<Body>(body)();
  } catch (const NSException& exception) {
    RaiseRBException(exception);
  }
}
