#pragma once

#include <stdexcept>
#include <string>

namespace host {

// What went wrong on the host's own side: an unknown member, an argument that doesn't fit its declaration, a
// declaration that can't be read, a plug-in that can't be loaded. The text starts with "host: ".
class Error : public std::runtime_error {
 public:
  explicit Error(const std::string& text) : std::runtime_error("host: " + text) {}
};

}  // namespace host
