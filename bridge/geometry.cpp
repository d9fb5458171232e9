#include "bridge/geometry.h"

#include "bridge/wrappers.h"
#include "frame/host_interface.h"

#include <cstring>

namespace {

// A range as host objects hold it, at either width.
struct HostRange {
  std::uint32_t location;
  std::uint32_t length;
};

template <class Structure>
REALobject newObject(const char* className, const Structure& value) {
  REALobject object = REALnewInstance(className);
  if (object != nullptr) std::memcpy(dataBlock(object), &value, sizeof value);
  return object;
}

template <class Structure>
Structure read(REALobject object) {
  Structure value{};
  if (object != nullptr) std::memcpy(static_cast<void*>(&value), dataBlock(object), sizeof value);
  return value;
}

}  // namespace

REALobject NewNSRectVXR(NSRect rect) { return newObject("NSRectVXR", rect); }

REALobject NewNSSizeVXR(NSSize size) { return newObject("NSSizeVXR", size); }

REALobject NewNSPointVXR(NSPoint point) { return newObject("NSPointVXR", point); }

REALobject NewNSRangeVXR(NSRange range) {
  return newObject("NSRangeVXR",
                   HostRange{static_cast<std::uint32_t>(range.location), static_cast<std::uint32_t>(range.length)});
}

NSRect GetNSRect(REALobject object) { return read<NSRect>(object); }

NSSize GetNSSize(REALobject object) { return read<NSSize>(object); }

NSPoint GetNSPoint(REALobject object) { return read<NSPoint>(object); }

NSRange GetNSRange(REALobject object) {
  const auto range = read<HostRange>(object);
  return {range.location, range.length};
}
