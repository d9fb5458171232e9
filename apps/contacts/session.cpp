#include "apps/contacts/session.h"

#include "host/classes.h"
#include "host/error.h"
#include "host/foreign_classes.h"
#include "host/loader.h"

#include <cstdio>
#include <filesystem>

namespace contacts {

std::vector<std::string> startHost() {
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

host::Value openAddressBook() {
  host::Value book = host::callShared("ABAddressBookVXR", "sharedAddressbook");
  if (book.isNil()) throw host::Error("the contacts could not be opened");
  return book;
}

}  // namespace contacts
