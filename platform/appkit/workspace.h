#pragma once

#include "platform/foundation/url.h"

// The desktop that the person works on.
class NSWorkspace : public NSObject {
 public:
  using NSObject::NSObject;

  static NSWorkspace sharedWorkspace() { return send<NSWorkspace>("NSWorkspace"_class, "sharedWorkspace"_sel); }

  // Hands the URL to the desktop's opener, the program xdg-open of the search path, and doesn't wait for it. False for
  // nil, for a relative URL, and when there is no opener or it can't be started.
  [[nodiscard]] bool openURL(NSURL url) const { return send<bool>(*this, "openURL:"_sel, url); }
};
