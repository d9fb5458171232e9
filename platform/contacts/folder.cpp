#include "platform/contacts/folder.h"

#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace contacts {
namespace {

// Of a card file. Photos are the largest thing in a card; a whole address book exported into one file is well below.
constexpr off_t kLargestFile = off_t{32} << 20;

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

bool isCardFileName(std::string_view name) {
  constexpr std::string_view kExtension = ".vcf";
  return !name.starts_with('.') && name.size() > kExtension.size() &&
         vcard::equalsIgnoringCase(name.substr(name.size() - kExtension.size()), kExtension);
}

// mkdir with the folders above; those that are there already stay as they are.
int createFolders(const std::string& path) {
  for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const bool isLast = slash == std::string::npos;
    const std::string part = path.substr(0, slash);
    if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return errno;
    if (isLast) return 0;
  }
}

bool isLackOfMeans(int error) { return error == EMFILE || error == ENFILE || error == ENOMEM; }

struct DirectoryCloser {
  void operator()(DIR* directory) const { closedir(directory); }
};

}  // namespace

std::string folderPath() {
  if (const std::string_view folder = environment("ADDRESSBOOK_FOLDER"); !folder.empty()) return std::string(folder);
  if (const std::string_view data = environment("XDG_DATA_HOME"); data.starts_with('/')) {
    return std::string(data) + "/addressbook";
  }
  if (const std::string_view home = environment("HOME"); !home.empty()) {
    return std::string(home) + "/.local/share/addressbook";
  }
  throw FolderError("contacts folder: none of ADDRESSBOOK_FOLDER, XDG_DATA_HOME and HOME is set");
}

Folder::Folder(std::string path) : path_(std::move(path)) {
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  directory_ = FileDescriptor(open(path_.c_str(), kFlags));
  if (!directory_.isOpen() && errno == ENOENT) {
    if (const int error = createFolders(path_)) fail("cannot be created", error);
    directory_ = FileDescriptor(open(path_.c_str(), kFlags));
  }
  if (!directory_.isOpen()) fail("cannot be read", errno);
}

bool Folder::isWritable() const { return faccessat(directory_.number(), ".", W_OK | X_OK, AT_EACCESS) == 0; }

std::vector<std::string> Folder::cardFileNames() const {
  // A descriptor of its own: the position in the folder belongs to it.
  FileDescriptor listing(openat(directory_.number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!listing.isOpen()) fail("cannot be read", errno);
  const std::unique_ptr<DIR, DirectoryCloser> directory(fdopendir(listing.number()));
  if (!directory) fail("cannot be read", errno);
  listing.leak();

  std::vector<std::string> names;
  while (true) {
    errno = 0;
    const dirent* entry = readdir(directory.get());
    if (entry == nullptr) break;
    if (isCardFileName(entry->d_name)) names.emplace_back(entry->d_name);
  }
  if (errno != 0) fail("cannot be read", errno);
  std::ranges::sort(names);
  return names;
}

std::optional<Folder::Contents> Folder::read(const std::string& name) const {
  auto refuse = [](std::string reason) { return Contents{{}, 0, std::move(reason)}; };
  const FileDescriptor file(openat(directory_.number(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen()) {
    if (errno == ENOENT) return std::nullopt;
    if (isLackOfMeans(errno)) fail("cannot be read", errno);
    return refuse(errno == ELOOP ? "is a symbolic link" : std::strerror(errno));
  }
  struct stat status {};
  if (fstat(file.number(), &status) != 0) return refuse(std::strerror(errno));
  if (!S_ISREG(status.st_mode)) return refuse("is no regular file");
  if (status.st_size == 0) return refuse("is empty");
  if (status.st_size > kLargestFile) return refuse("is larger than 32 MB");

  // The file may change meanwhile: what is read is what counts, never more than its size was.
  std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t count = ::read(file.number(), bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return refuse(std::strerror(errno));
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  bytes.resize(length);
  const double modified =
      static_cast<double>(status.st_mtim.tv_sec) + 1e-9 * static_cast<double>(status.st_mtim.tv_nsec);
  return Contents{std::move(bytes), modified, {}};
}

void Folder::fail(std::string_view what, int error) const {
  throw FolderError("contacts folder " + printable(path_) + ": " + std::string(what) + ": " + std::strerror(error));
}

}  // namespace contacts
