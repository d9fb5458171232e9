#include "apps/contacts/session.h"

#include "host/error.h"
#include "host/foreign_classes.h"
#include "host/loader.h"

#include <cstdio>
#include <filesystem>

namespace contacts {

void startHost() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const std::filesystem::path root = program.parent_path().parent_path();
  for (const auto& [name, reason] : host::loadFrameworks(root / "Frameworks")) {
    std::fprintf(stderr, "contacts: framework %s: %s\n", name.c_str(), reason.c_str());
  }
  host::registerForeignClasses();
  host::loadPlugin(root / "Plugins" / "addressbook-plugin.so");
}

host::Value openAddressBook() {
  host::Value book = host::callShared("ABAddressBookVXR", "sharedAddressbook");
  if (book.isNil()) throw host::Error("the contacts could not be opened");
  return book;
}

}  // namespace contacts
