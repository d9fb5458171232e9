#include "apps/contacts/failure.h"

#include "host/exceptions.h"

namespace contacts {

std::string reasonOf(const host::HostException& exception) {
  if (exception.object().typeName() == "NSExceptionVXR") {
    if (std::string reason = exception.object().get("Reason").text(); !reason.empty()) return reason;
  }
  return exception.what();
}

}  // namespace contacts
