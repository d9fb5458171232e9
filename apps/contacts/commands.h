#pragma once

#include "apps/contacts/output.h"

#include <string>
#include <vector>

// One function a subcommand. They print to the standard output and throw Failure, host::Error or host::HostException
// when they can't do their work; then nothing is saved.
namespace contacts {

// Every person, one display name a line, in the order of the address book; whole as JSON.
void listPeople(const Manner& manner);

// Everything that is known about each.
void showPeople(const std::vector<std::string>& names, const Manner& manner);

// What a person is to have; without a property, some text anywhere.
struct Query {
  std::string text;
  std::string property;
  std::string label;
  std::string key;
  std::string comparison;  // a constant's name, with or without its kAB
};
// Answers whether anybody was found.
bool findPeople(const Query& query, const Manner& manner);

void addPerson(const std::vector<std::string>& assignments, const Manner& manner);
void editPerson(const std::string& name, const std::vector<std::string>& assignments, const Manner& manner);
void removePeople(const std::vector<std::string>& names, const Manner& manner);

// The groups as a tree.
void printGroups(const Manner& manner);
void printMembers(const std::string& group, const Manner& manner);
// Within the parent where one is named.
void createGroup(const std::string& name, const std::string& parent, const Manner& manner);
void renameGroup(const std::string& group, const std::string& name, const Manner& manner);
// The group alone: its members stay.
void removeGroup(const std::string& group, const Manner& manner);
void addMembers(const std::string& group, const std::vector<std::string>& people, const Manner& manner);
void removeMembers(const std::string& group, const std::vector<std::string>& people, const Manner& manner);
void nestGroup(const std::string& group, const std::string& parent, const Manner& manner);
void unnestGroup(const std::string& group, const std::string& parent, const Manner& manner);

// Files of any number of vCards, "-" for the standard input, in one save.
void importFiles(const std::vector<std::string>& files, const Manner& manner);
// The vCards of all whom the text finds, to the file or the standard output.
void exportPeople(const std::string& text, const std::string& file, const Manner& manner);

// Shows the picture as well where the terminal can draw it.
void describePhoto(const std::string& name, const Manner& manner);
// "-" for the standard output.
void writePhoto(const std::string& name, const std::string& file, const Manner& manner);
void setPhoto(const std::string& name, const std::string& file, const Manner& manner);
void removePhoto(const std::string& name, const Manner& manner);

// The address book's owner.
void printOwner(const Manner& manner);
void setOwner(const std::string& name, const Manner& manner);
void clearOwner(const Manner& manner);

// The schema of people, or of groups.
void printProperties(bool ofGroups, const Manner& manner);
void addProperty(bool toGroups, const std::string& name, const std::string& type, const Manner& manner);
void removeProperty(bool fromGroups, const std::string& name, const Manner& manner);

// Every change to the contacts, as another process makes it, a line each; goes on until the program is ended.
void watchChanges(const Manner& manner);

// The classes that the plug-in registered.
void listClasses(const std::vector<std::string>& registered, const Manner& manner);
// Every member of the class as the host sees it.
void describeClass(const std::string& className, const Manner& manner);

}  // namespace contacts
