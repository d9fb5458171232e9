#pragma once

#include <stdexcept>
#include <string>

namespace host {
class HostException;
}

namespace contacts {

// Why a command can't do its work, in one line for its user: what, where, what was expected.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What an exception of the host says, in the plug-in's words: a framework exception's reason rather than the message
// round it.
std::string reasonOf(const host::HostException& exception);

}  // namespace contacts
