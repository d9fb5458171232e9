#include "platform/contacts/people_picker/terminal.h"
#include "platform/foundation/log.h"
#include "platform/foundation/string.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace contacts {
namespace {

constexpr char kLibrary[] = "people-picker-terminal.so";

// Another program may own the terminal, as while this one runs in the background or under a test runner.
bool isInForeground(int terminal) {
  const bool isAttached = isatty(STDIN_FILENO) != 0 || isatty(STDOUT_FILENO) != 0 || isatty(STDERR_FILENO) != 0;
  return isAttached && tcgetpgrp(terminal) == getpgrp();
}

// The library that draws lies beside this one. Loaded when it is needed, so that nobody else depends on what it is
// linked to; it stays loaded.
PickerTerminalMaker* loadMaker() {
  Dl_info own{};
  if (dladdr(reinterpret_cast<void*>(&loadMaker), &own) == 0) return nullptr;
  const std::filesystem::path path = std::filesystem::path(own.dli_fname).parent_path() / kLibrary;
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (library == nullptr) {
    NSLog("The people picker can't draw itself: %@"_ns, NSString::stringWithUTF8String(dlerror()));
    return nullptr;
  }
  return reinterpret_cast<PickerTerminalMaker*>(dlsym(library, kPickerTerminalMaker));
}

}  // namespace

int attachedTerminal() {
  const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (terminal < 0 || isInForeground(terminal)) return terminal;
  close(terminal);
  return -1;
}

std::unique_ptr<PickerTerminal> openPickerTerminal(int descriptor) {
  if (PickerTerminalMaker* make = loadMaker()) return std::unique_ptr<PickerTerminal>(make(descriptor));
  close(descriptor);
  return nullptr;
}

}  // namespace contacts
