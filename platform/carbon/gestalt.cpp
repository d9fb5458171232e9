#include "platform/carbon/gestalt.h"

#include <mutex>
#include <unordered_map>

namespace {

struct GestaltTable {
  std::mutex lock;
  std::unordered_map<OSType, std::intptr_t> values;
};

// Never destroyed: plug-ins ask for shared values until the very end of the process.
GestaltTable& gestaltTable() {
  static auto* table = new GestaltTable;
  return *table;
}

}  // namespace

OSErr Gestalt(OSType selector, std::intptr_t* response) {
  if (response == nullptr) return paramErr;
  GestaltTable& table = gestaltTable();
  const std::scoped_lock guard(table.lock);
  const auto found = table.values.find(selector);
  if (found == table.values.end()) return gestaltUndefSelectorErr;
  *response = found->second;
  return noErr;
}

OSErr SetGestaltValue(OSType selector, std::intptr_t value) {
  GestaltTable& table = gestaltTable();
  const std::scoped_lock guard(table.lock);
  table.values[selector] = value;
  return noErr;
}
