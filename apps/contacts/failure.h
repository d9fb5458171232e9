#pragma once

#include <stdexcept>

namespace contacts {

// Why a command can't do its work, in one line for its user: what, where, what was expected.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace contacts
