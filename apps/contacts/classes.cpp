#include "apps/contacts/commands.h"
#include "apps/contacts/json.h"
#include "host/describe.h"

#include <iostream>

namespace contacts {

namespace {

void printMembers(const char* kind, const std::vector<std::string>& members) {
  if (members.empty()) return;
  std::cout << '\n' << kind << '\n';
  for (const std::string& member : members) std::cout << "  " << member << '\n';
}

}  // namespace

void listClasses(const std::vector<std::string>& registered, const Manner& manner) {
  if (manner.isJson) {
    std::cout << jsonOf(registered) << '\n';
    return;
  }
  for (const std::string& name : registered) std::cout << name << '\n';
}

void describeClass(const std::string& className, const Manner& manner) {
  const host::ClassDescription description = host::describe(className);
  if (manner.isJson) {
    std::cout << jsonOf(description) << '\n';
    return;
  }
  std::cout << description.name;
  if (!description.superName.empty()) std::cout << " inherits " << description.superName;
  std::cout << '\n';
  printMembers("Constants", description.constants);
  printMembers("Shared methods", description.sharedMethods);
  printMembers("Properties", description.properties);
  printMembers("Methods", description.methods);
  printMembers("Events", description.events);
}

}  // namespace contacts
