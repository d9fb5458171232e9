#pragma once

#include "platform/foundation/exception.h"

#include <string>
#include <utility>

// The name of the framework exception that the body raises, or "nothing".
template <class Body>
std::string raised(Body&& body) {
  try {
    std::forward<Body>(body)();
  } catch (const NSException& exception) {
    return exception.name().UTF8String();
  }
  return "nothing";
}
