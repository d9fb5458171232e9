#pragma once

#include "platform/foundation/time_zone.h"

#include <cstdint>
#include <optional>

namespace foundation {

struct TimeZoneObject : objc::Object {
  std::optional<int> fixedOffset;  // without it, the process's local zone

  // Seconds east of Greenwich at an instant counted from 1970.
  [[nodiscard]] int offsetAt(std::int64_t instant) const;
  // The instant at which the zone's clocks show that time. The first of two; for a time that clocks skip, as if they
  // had not been put forward yet.
  [[nodiscard]] std::int64_t instantOf(std::int64_t wallClock) const;
};

}  // namespace foundation
