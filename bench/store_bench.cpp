// The folder of cards: opening it, reading it, finding in it, saving to it. Each run is a process of its own, so that
// nothing is known before; times are real. STORE_BENCH_LARGE adds a folder of 100,000.

#include "platform/contacts/address_book.h"
#include "platform/contacts/search_element.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/number.h"

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

class Watch {
 public:
  [[nodiscard]] double seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Two phones, two e-mails, an address and a note; every tenth has a photo of 6 KB.
void writeCard(const fs::path& folder, int i) {
  const std::string id = std::to_string(i);
  std::string text =
      "BEGIN:VCARD\r\nVERSION:3.0\r\nPRODID:-//Example//EN\r\nN:Name " + id + ";Given " + id + ";;;\r\nFN:Given " + id +
      " Name " + id + "\r\nORG:Company " + id + ";\r\nEMAIL;type=INTERNET;type=WORK;type=pref:w" + id +
      "@example.com\r\nEMAIL;type=INTERNET;type=HOME:h" + id + "@example.org\r\nTEL;type=CELL;type=pref:+49 " + id +
      "\r\nTEL;type=WORK:+44 " + id + "\r\nitem1.ADR;type=HOME;type=pref:;;Street " + id +
      ";City;State;12345;Country\r\nitem1.X-ABADR:de\r\nNOTE:Met at the fair\\, and called back later. Number " + id +
      ".\r\n";
  if (i % 10 == 0) {
    text += "PHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQSkZJRg\r\n";
    for (int line = 0; line < 108; ++line) text += " " + std::string(74, 'A') + "\r\n";
  }
  std::ofstream(folder / ("card-" + id + ".vcf"), std::ios::binary) << text + "UID:card-" + id + "\r\nEND:VCARD\r\n";
}

// A folder of so many, made once and old enough that its files' times can be relied on.
const fs::path& folderOf(int count) {
  struct Folders {
    std::map<int, fs::path> paths;
    ~Folders() {
      for (const auto& [number, path] : paths) fs::remove_all(path);
    }
  };
  static Folders folders;
  fs::path& path = folders.paths[count];
  if (path.empty()) {
    std::string pattern = (fs::temp_directory_path() / "store-bench-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    path = pattern;
    for (int i = 0; i < count; ++i) writeCard(path, i);
    sleep(3);
  }
  setenv("ADDRESSBOOK_FOLDER", path.c_str(), 1);
  return path;
}

// What the body answers in a process of its own.
double inProcess(const std::function<double()>& body) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    const AutoreleasePool pool;
    const double answer = body();
    if (write(ends[1], &answer, sizeof answer) != sizeof answer) std::abort();
    _exit(0);
  }
  close(ends[1]);
  double answer = 0;
  if (read(ends[0], &answer, sizeof answer) != sizeof answer) std::abort();
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return answer;
}

double residentBytes() {
  std::ifstream file("/proc/self/statm");
  double size = 0;
  double resident = 0;
  file >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double readNames() {
  const Watch watch;
  const NSArray people = ABAddressBook::sharedAddressBook().people();
  std::FILE* out = std::fopen("/dev/null", "w");
  for (NSUInteger i = 0; i < people.count(); ++i) {
    const AutoreleasePool pool;
    const auto person = people.objectAtIndex(i).as<ABPerson>();
    for (const NSString& property : {kABFirstNameProperty, kABLastNameProperty}) {
      std::fprintf(out, "%s ", person.valueForProperty(property).as<NSString>().UTF8String());
    }
    std::fputc('\n', out);
  }
  std::fclose(out);
  return watch.seconds();
}

// The floor: every file is read, and its FN line printed.
double readPlainly(const fs::path& folder) {
  const Watch watch;
  std::FILE* out = std::fopen("/dev/null", "w");
  DIR* directory = opendir(folder.c_str());
  std::vector<char> buffer(1 << 16);
  while (const dirent* entry = readdir(directory)) {
    if (std::strstr(entry->d_name, ".vcf") == nullptr) continue;
    const int file = openat(dirfd(directory), entry->d_name, O_RDONLY);
    struct stat status {};
    fstat(file, &status);
    buffer.resize(static_cast<std::size_t>(status.st_size) + 1);
    const ssize_t length = read(file, buffer.data(), static_cast<std::size_t>(status.st_size));
    close(file);
    buffer[static_cast<std::size_t>(std::max<ssize_t>(length, 0))] = '\0';
    const char* name = std::strstr(buffer.data(), "\nFN:");
    if (name != nullptr) std::fprintf(out, "%.*s\n", static_cast<int>(std::strcspn(name + 4, "\r\n")), name + 4);
  }
  closedir(directory);
  std::fclose(out);
  return watch.seconds();
}

void measure(benchmark::State& state, const std::function<double()>& body) {
  folderOf(static_cast<int>(state.range(0)));
  for (auto _ : state) state.SetIterationTime(inProcess(body));
}

void plainLoop(benchmark::State& state) {
  const fs::path& folder = folderOf(static_cast<int>(state.range(0)));
  measure(state, [&] { return readPlainly(folder); });
}

void openAndReadNames(benchmark::State& state) {
  measure(state, readNames);
  state.counters["bytes/contact"] = inProcess([] {
                                      const double before = residentBytes();
                                      readNames();
                                      return residentBytes() - before;
                                    }) /
                                    static_cast<double>(state.range(0));
}

// The floor of opening a folder that is known: its files are listed and looked at.
double listPlainly(const fs::path& folder) {
  const Watch watch;
  std::int64_t size = 0;
  DIR* directory = opendir(folder.c_str());
  while (const dirent* entry = readdir(directory)) {
    struct stat status {};
    if (fstatat(dirfd(directory), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0) size += status.st_size;
  }
  closedir(directory);
  benchmark::DoNotOptimize(size);
  return watch.seconds();
}

void plainListing(benchmark::State& state) {
  const fs::path& folder = folderOf(static_cast<int>(state.range(0)));
  measure(state, [&] { return listPlainly(folder); });
}

double open() {
  const Watch watch;
  ABAddressBook::sharedAddressBook();
  return watch.seconds();
}

// By a process that finds what another has kept.
void openUnchanged(benchmark::State& state) {
  fs::create_directory(folderOf(static_cast<int>(state.range(0))) / ".addressbook");
  inProcess(open);
  measure(state, open);
}

void openUnchangedAndReadNames(benchmark::State& state) { measure(state, readNames); }

// In the same process.
void openAgain(benchmark::State& state) {
  measure(state, [] {
    readNames();
    const Watch watch;
    ABAddressBook::addressBook();
    return watch.seconds();
  });
}

void findAnEmail(benchmark::State& state) {
  const std::string email = "h" + std::to_string(state.range(0) / 2) + "@example.org";
  measure(state, [&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    const Watch watch;
    const ABSearchElement search = ABPerson::searchElement(
        kABEmailProperty, nullptr, nullptr, NSString::stringWithUTF8(email.c_str()), kABEqualCaseInsensitive);
    if (book.recordsMatchingSearchElement(search).count() != 1) std::abort();
    return watch.seconds();
  });
}

void saveOne(benchmark::State& state) {
  measure(state, [&] {
    const ABAddressBook book = ABAddressBook::sharedAddressBook();
    book.people().objectAtIndex(0).as<ABPerson>().setValue(
        NSString::stringWithUTF8(std::to_string(std::rand()).c_str()), kABNoteProperty);
    const Watch watch;
    if (!book.save()) std::abort();
    return watch.seconds();
  });
}

void forEachSize(benchmark::internal::Benchmark* benchmark) {
  constexpr int kRuns = 20;
  benchmark->UseManualTime()->Iterations(kRuns)->Unit(benchmark::kMillisecond)->Arg(1'000)->Arg(10'000);
  if (std::getenv("STORE_BENCH_LARGE") != nullptr) benchmark->Arg(100'000);
}

BENCHMARK(plainLoop)->Apply(forEachSize);
BENCHMARK(openAndReadNames)->Apply(forEachSize);
BENCHMARK(openAgain)->Apply(forEachSize);
BENCHMARK(findAnEmail)->Apply(forEachSize);
BENCHMARK(plainListing)->Apply(forEachSize);
BENCHMARK(openUnchanged)->Apply(forEachSize);
BENCHMARK(openUnchangedAndReadNames)->Apply(forEachSize);
BENCHMARK(saveOne)->Apply(forEachSize);

}  // namespace
