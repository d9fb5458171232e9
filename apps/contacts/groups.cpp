#include "apps/contacts/commands.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/json.h"
#include "apps/contacts/people.h"
#include "apps/contacts/session.h"
#include "apps/contacts/text.h"

#include <iostream>
#include <string_view>
#include <utility>

namespace contacts {
namespace {

void require(const host::Value& answer, const std::string& whatFailed) {
  if (!static_cast<bool>(answer)) throw Failure(whatFailed);
}

void setName(const host::Value& group, const std::string& name) {
  require(isUtf8(name) && group.call("setValue", name, "GroupName") == true,
          "\"" + printable(name) + "\" can't be a group's name");
}

void printTree(const std::vector<host::Value>& groups, const std::string& indent) {
  for (const host::Value& group : groups) {
    std::cout << indent << printable(nameOf(group)) << " (" << group.call("members").size() << ")\n";
    printTree(group.call("subgroups").elements(), indent + "  ");
  }
}

// Each person by name, each a change of the group, then one save.
void changeMembers(const std::string& name, const std::vector<std::string>& people, const char* member,
                   std::string_view done, std::string_view failed, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value group = findGroup(book, name);
  std::vector<host::Value> changed;
  for (const std::string& each : people) {
    changed.push_back(findPerson(book, each));
    require(group.call(member, changed.back()),
            printable(nameOf(changed.back())) + std::string(failed) + printable(nameOf(group)));
  }
  save(book, manner);
  for (const host::Value& person : changed) say(manner, done, person);
}

void changeNesting(const std::string& name, const std::string& parentName, const char* member, std::string_view failed,
                   std::string_view done, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value group = findGroup(book, name);
  const host::Value parent = findGroup(book, parentName);
  require(parent.call(member, group), printable(nameOf(group)) + std::string(failed) + printable(nameOf(parent)));
  save(book, manner);
  say(manner, done, group);
}

}  // namespace

void printGroups(const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const std::vector<host::Value> groups = book.call("groups").elements();
  if (manner.isJson) {
    std::vector<NamedTexts> objects;
    for (const host::Value& group : groups) {
      const std::vector<host::Value> parents = group.call("parentGroups").elements();
      objects.push_back({{"id", group.call("uniqueId").text()}, {"name", nameOf(group)}});
      if (!parents.empty()) objects.back().emplace_back("parent", parents.front().call("uniqueId").text());
    }
    std::cout << jsonOf(objects) << '\n';
    return;
  }
  std::vector<host::Value> roots;
  for (const host::Value& group : groups) {
    if (group.call("parentGroups").size() == 0) roots.push_back(group);
  }
  printTree(roots, "");
}

void printMembers(const std::string& group, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  printPeople(findGroup(book, group).call("members").elements(), book, manner);
}

void createGroup(const std::string& name, const std::string& parent, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value above = parent.empty() ? host::Value() : findGroup(book, parent);
  const host::Value group = host::newObject("ABGroupVXR", book);
  setName(group, name);
  if (!above.isNil()) require(above.call("addSubgroup", group), printable(name) + " can't be in " + printable(parent));
  save(book, manner);
  say(manner, "Created", group);
}

void renameGroup(const std::string& group, const std::string& name, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value found = findGroup(book, group);
  setName(found, name);
  save(book, manner);
  say(manner, "Renamed", found);
}

void removeGroup(const std::string& group, const Manner& manner) {
  const host::Value book = openAddressBook(manner);
  const host::Value found = findGroup(book, group);
  require(book.call("removeRecord", found), printable(nameOf(found)) + " can't be removed");
  save(book, manner);
  say(manner, "Removed", found);
}

void addMembers(const std::string& group, const std::vector<std::string>& people, const Manner& manner) {
  changeMembers(group, people, "addMember", "Added", " is already in ", manner);
}

void removeMembers(const std::string& group, const std::vector<std::string>& people, const Manner& manner) {
  changeMembers(group, people, "removeMember", "Took out", " is not in ", manner);
}

void nestGroup(const std::string& group, const std::string& parent, const Manner& manner) {
  changeNesting(group, parent, "addSubgroup", " can't be put into ", "Nested", manner);
}

void unnestGroup(const std::string& group, const std::string& parent, const Manner& manner) {
  changeNesting(group, parent, "removeSubgroup", " is not in ", "Took out", manner);
}

}  // namespace contacts
