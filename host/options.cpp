#include "host/options.h"

#include <algorithm>

namespace host {

Options& options() {
  static auto* running = new Options;
  return *running;
}

bool lacks(std::string_view name) { return std::ranges::find(options().without, name) != options().without.end(); }

bool lacks(std::string_view className, std::string_view member) {
  if (options().without.empty()) return false;
  return lacks(std::string(className) + "." + std::string(member));
}

}  // namespace host
