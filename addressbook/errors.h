#pragma once

#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "platform/objc/send.h"

#include <utility>

// By-reference errors of host code.

// Drops what an earlier call left, so that every path without an error ends with nil.
inline void dropError(REALobject* error) { adoptHost(std::exchange(*error, nullptr)); }

// Makes the call that reports errors where the framework knows its selector, and hands host code the error, which may
// be nil; else the one that reports none. The framework's answer goes to result as soon as it is there.
template <class Record, class Report, class Plain>
void callWithError(Record receiver, objc::Selector reportingSelector, REALobject* error, bool& result, Report report,
                   Plain plain) {
  if (!receiver.respondsToSelector(reportingSelector)) {
    result = plain();
    return;
  }
  NSError failure;
  result = report(&failure);
  *error = NewNSErrorVXR(failure);
}
