#include "platform/foundation/log.h"

#include "platform/foundation/format.h"
#include "platform/foundation/string_object.h"

#include <errno.h>
#include <sys/syscall.h>
#include <sys/time.h>

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <ctime>
#include <string>

namespace {

std::atomic<NSLogHook> logHook{nullptr};

// "2010-12-09 20:25:30.123 program[process:thread] "
std::string linePrefix() {
  timeval now{};
  gettimeofday(&now, nullptr);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  char time[32];
  std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &local);
  char place[64];
  std::snprintf(place, sizeof place, "[%ld:%ld] ", static_cast<long>(getpid()), syscall(SYS_gettid));
  char milliseconds[8];
  std::snprintf(milliseconds, sizeof milliseconds, ".%03d ", static_cast<int>(now.tv_usec / 1000 % 1000));
  return std::string(time) + milliseconds + program_invocation_short_name + place;
}

// In one write as long as the system takes it, so that lines of several threads and processes don't mix.
void writeLine(const std::string& line) {
  for (std::size_t written = 0; written < line.size();) {
    const ssize_t count = write(STDERR_FILENO, line.data() + written, line.size() - written);
    if (count < 0 && errno != EINTR) return;
    if (count > 0) written += static_cast<std::size_t>(count);
  }
}

}  // namespace

void NSLogWithArguments(NSString format, const NSObject* arguments, NSUInteger count) {
  std::u16string message = foundation::formatted(format, arguments, count);
  if (message.ends_with(u'\n')) message.pop_back();
  const Retained<NSString> text = foundation::newString(std::move(message));
  if (const NSLogHook hook = logHook.load()) {
    hook(text.get());
  } else {
    writeLine(linePrefix() + foundation::utf8Of(text.get()) + "\n");
  }
}

void NSSetLogHook(NSLogHook hook) { logHook.store(hook); }
