#include "apps/contacts/session.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/progress.h"
#include "apps/contacts/text.h"
#include "host/classes.h"
#include "host/error.h"
#include "host/foreign_classes.h"
#include "host/loader.h"
#include "host/log.h"
#include "host/options.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string_view>

namespace contacts {
namespace {

constexpr std::string_view kStoreMark = "contacts folder: ";

// Of the log, the store's warnings are for the user; exceptions come back as what the command says.
void showWarning(std::string_view message) {
  if (!message.starts_with(kStoreMark)) return;
  message.remove_prefix(kStoreMark.size());
  std::fprintf(stderr, "contacts: %.*s\n", static_cast<int>(message.size()), message.data());
}

void hideWarning(std::string_view) {}

}  // namespace

std::vector<std::string> startHost(const Manner& manner) {
  if (std::getenv("CONTACTS_LOG") == nullptr) host::sendLogTo(manner.isQuiet ? hideWarning : showWarning);
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const std::filesystem::path root = program.parent_path().parent_path();
  for (const auto& [name, reason] : host::loadFrameworks(root / "Frameworks")) {
    std::fprintf(stderr, "contacts: framework %s: %s\n", name.c_str(), reason.c_str());
  }
  host::registerForeignClasses();
  const std::size_t others = host::allClasses().size();
  host::loadPlugin(root / "Plugins" / "addressbook-plugin.so");
  std::vector<std::string> names;
  for (std::size_t i = others; i < host::allClasses().size(); ++i) names.emplace_back(host::allClasses()[i]->name());
  return names;
}

host::Value openAddressBook(const Manner& manner) {
  std::optional<OpeningProgress> progress;
  if (!manner.isQuiet && isTerminal(STDERR_FILENO)) {
    progress.emplace();
    host::options().yield = [&progress] { progress->look(); };
  }
  // On a thread of its own, the plug-in lets the host go on meanwhile.
  host::Value book = host::callShared("ABAddressBookVXR", progress ? "sharedAddressbookMT" : "sharedAddressbook");
  host::options().yield = nullptr;
  if (book.isNil()) throw Failure("the contacts could not be opened");
  return book;
}

void save(const host::Value& book, const Manner& manner) {
  if (manner.isDryRun) return;
  host::Value error;
  if (static_cast<bool>(book.call("save", host::Ref(error)))) return;
  throw Failure(error.isNil() ? std::string("the changes could not be saved")
                              : error.get("LocalizedDescription").text());
}

std::string readWhole(const std::string& file) {
  if (file == kStandardStream) return {std::istreambuf_iterator<char>(std::cin), {}};
  if (std::filesystem::is_directory(file)) throw Failure(fileText(file) + ": is a folder; expected a file");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw Failure(fileText(file) + ": cannot be read: " + std::strerror(errno));
  std::string bytes{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad()) throw Failure(fileText(file) + ": cannot be read: " + std::strerror(errno));
  return bytes;
}

std::string fileText(const std::string& file) {
  return file == kStandardStream ? std::string("standard input") : printable(file);
}

}  // namespace contacts
