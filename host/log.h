#pragma once

#include <string_view>

namespace host {

// Gives what the frameworks and plug-ins log to the function, on the logging thread, instead of writing it to the
// standard error output; without time and program.
void sendLogTo(void (*write)(std::string_view message));

}  // namespace host
