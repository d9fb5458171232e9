#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What kind of host this is. There is one host in a process.
struct Options {
  double version = 2013.0;
  bool runtime = true;  // a built application rather than the development environment
  // What this host lacks, letter for letter: an entry ("RuntimeUBound"), a global method ("VarType"), a class ("Date")
  // or a member of a class ("Date.Minute", "Dictionary.Key").
  std::vector<std::string> without = {};
  // Shows the text of a message box. Unset: prints it to the standard error output.
  std::function<void(const std::string& text)> messageBox = {};
  // Runs when a plug-in yields to the host. Unset: runs what is due in the run loop.
  std::function<void()> yield = {};
};

// The running host's options. Tests take entries away and give them back in it while it runs.
Options& options();

// Whether the host lacks what is named so.
bool lacks(std::string_view name);
// The same for a member of a class.
bool lacks(std::string_view className, std::string_view member);

}  // namespace host
