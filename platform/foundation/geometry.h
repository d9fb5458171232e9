#pragma once

#include <string_view>

// Framework coordinates: 32-bit floats at either width, because host objects of the geometry classes hold these very
// bytes.
using CGFloat = float;

struct NSPoint {
  static constexpr std::string_view kEncoding = "{_NSPoint=ff}";

  CGFloat x = 0;
  CGFloat y = 0;

  friend bool operator==(const NSPoint&, const NSPoint&) = default;
};

struct NSSize {
  static constexpr std::string_view kEncoding = "{_NSSize=ff}";

  CGFloat width = 0;
  CGFloat height = 0;

  friend bool operator==(const NSSize&, const NSSize&) = default;
};

struct NSRect {
  static constexpr std::string_view kEncoding = "{_NSRect={_NSPoint=ff}{_NSSize=ff}}";

  NSPoint origin;
  NSSize size;

  friend bool operator==(const NSRect&, const NSRect&) = default;
};

static_assert(sizeof(NSPoint) == 8 && sizeof(NSSize) == 8 && sizeof(NSRect) == 16);
