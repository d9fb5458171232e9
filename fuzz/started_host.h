#pragma once

#include <functional>
#include <string>
#include <vector>

// The one host of a fuzz target, with the plug-in and the family's other classes.
class StartedHost {
 public:
  // What the host lacks, as host::Options has it; what makes things that stay.
  explicit StartedHost(const std::vector<std::string>& without = {}, const std::function<void()>& prepare = {});

  // What an action answered, or the framework exception that it raised, in words.
  struct Outcome {
    std::string text;
    bool hasRaised = false;
  };
  // Runs the action as a call into the plug-in. Ends the program when host or framework objects are left over; a host
  // exception that is left pending is taken away.
  Outcome run(const std::function<std::string()>& action) const;

 private:
  std::string hostObjects_;
  std::string platformObjects_;
};
