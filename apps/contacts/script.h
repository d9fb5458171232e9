#pragma once

#include <string>
#include <string_view>

namespace contacts {

// Runs a small program in the host's language, one statement a line: dim, assignments, calls, print, if, for, for each,
// while, try, and on for handlers of events, which come while it waits. It reaches every class that the host knows.
// Names are the same whatever their case. Throws Failure for what isn't the language, with the line's number, before
// anything is run; and for what goes wrong while it runs.
void runScript(std::string_view text, const std::string& name);

}  // namespace contacts
