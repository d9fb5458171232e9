#include "apps/contacts/progress.h"

#include "apps/contacts/text.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace contacts {
namespace {

constexpr std::chrono::milliseconds kPatience(500);
constexpr std::chrono::milliseconds kBetweenLines(100);
constexpr std::size_t kKilobyte = 1024;

std::size_t kilobytesRead() {
  std::ifstream stream("/proc/self/io");
  std::string name;
  std::uint64_t count = 0;
  while (stream >> name >> count) {
    if (name == "rchar:") return static_cast<std::size_t>(count / kKilobyte);
  }
  return 0;
}

// Of the files in the folder of vCards.
std::size_t kilobytesToRead() {
  namespace fs = std::filesystem;
  const auto variable = [](const char* name) -> fs::path {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
  };
  fs::path folder = variable("ADDRESSBOOK_FOLDER");
  if (folder.empty() && variable("XDG_DATA_HOME").is_absolute()) folder = variable("XDG_DATA_HOME") / "addressbook";
  if (folder.empty()) folder = variable("HOME") / ".local" / "share" / "addressbook";
  std::uintmax_t bytes = 0;
  std::error_code error;
  for (fs::directory_iterator file(folder, error); !error && file != fs::directory_iterator(); file.increment(error)) {
    std::error_code unknown;
    const std::uintmax_t size = file->path().extension() == ".vcf" ? file->file_size(unknown) : 0;
    if (!unknown) bytes += size;
  }
  return static_cast<std::size_t>(bytes / kKilobyte);
}

}  // namespace

Progress::Progress(std::string what, std::size_t total, bool isQuiet, Clock::time_point start)
    : what_(std::move(what)),
      total_(total),
      isShown_(!isQuiet && isTerminal(STDERR_FILENO)),
      start_(start),
      next_(start + kPatience) {}

Progress::~Progress() {
  if (isDrawn_) std::fputs("\r\x1B[K", stderr);
}

void Progress::advanceTo(std::size_t done) {
  done_ = std::min(done, total_);
  if (!isShown_ || done_ == 0) return;
  const Clock::time_point now = Clock::now();
  if (now >= next_) draw(now);
}

void Progress::draw(Clock::time_point now) {
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(done_) / seconds;
  std::fprintf(stderr, "\r%s %zu of %zu, %.0f a second, %.0f s left\x1B[K", what_.c_str(), done_, total_, rate,
               static_cast<double>(total_ - done_) / rate);
  isDrawn_ = true;
  next_ = now + kBetweenLines;
}

OpeningProgress::OpeningProgress() : before_(kilobytesRead()), next_(start_ + kPatience) {}

void OpeningProgress::look() {
  const Progress::Clock::time_point now = Progress::Clock::now();
  if (now < next_) return;
  next_ = now + kBetweenLines;
  if (!progress_) progress_.emplace("Opening: kilobyte", kilobytesToRead(), false, start_);
  progress_->advanceTo(kilobytesRead() - before_);
}

}  // namespace contacts
