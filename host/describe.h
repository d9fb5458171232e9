#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

// A class as the host understood its tables: one line a member, inherited members not among them.
struct ClassDescription {
  std::string name;
  std::string superName;  // empty for a root class
  std::vector<std::string> constants;
  std::vector<std::string> sharedMethods;
  std::vector<std::string> properties;
  std::vector<std::string> methods;
  std::vector<std::string> events;
};

// Throws Error for a class that isn't there.
ClassDescription describe(std::string_view className);

}  // namespace host
