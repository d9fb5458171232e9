#pragma once

#include "platform/foundation/cf_base.h"

#include <string_view>

struct NSRange {
  static constexpr std::string_view kEncoding = sizeof(NSUInteger) == 4 ? "{_NSRange=II}" : "{_NSRange=QQ}";

  NSUInteger location;
  NSUInteger length;
};

constexpr NSRange NSMakeRange(NSUInteger location, NSUInteger length) { return {location, length}; }
