#include "platform/foundation/load.h"

namespace {

constinit bool loaded = false;

}  // namespace

void foundation::load() {
  if (loaded) return;
  loaded = true;
  registerObject();
  registerString();
  registerEnumerator();
  registerArray();
  registerNull();
  registerException();
  registerValue();
  registerNumber();
  registerData();
  registerDate();
  registerTimeZone();
  registerCalendarDate();
  registerDateComponents();
  registerDictionary();
  registerError();
  registerAttributedString();
  registerAutoreleasePool();
  registerCFDictionary();
  registerUrl();
  registerBundle();
  registerNotification();
}

namespace {

// The library's own static initialiser, so that all who link to it find its classes.
[[maybe_unused]] const bool loadedAtStart = (foundation::load(), true);

}  // namespace
