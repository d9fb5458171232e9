#pragma once

#include <string>

namespace contacts {

struct PickOptions {
  std::string property;  // whose values are picked; empty for people alone
  std::string query;     // what the search field starts with
  bool multiple = false;
  bool groups = false;  // may be picked, too
  bool json = false;
};

// Lets the user pick in a window on the terminal, and prints what was picked, one a line. False when nothing was.
bool pick(const PickOptions& options);

}  // namespace contacts
