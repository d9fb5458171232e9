#include "platform/appkit/load.h"

namespace {

// Foundation, which this library is linked to, has registered its classes before.
[[maybe_unused]] const bool loadedAtStart = [] {
  appkit::registerImage();
  appkit::registerWorkspace();
  return true;
}();

}  // namespace
