#include "apps/contacts/commands.h"
#include "apps/contacts/failure.h"
#include "apps/contacts/heap.h"
#include "apps/contacts/pick.h"
#include "apps/contacts/script.h"
#include "apps/contacts/session.h"
#include "host/error.h"
#include "host/exceptions.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {
namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

int fail(std::string_view reason) {
  constexpr std::string_view kHostsMark = "host: ";
  if (reason.starts_with(kHostsMark)) reason.remove_prefix(kHostsMark.size());
  std::cout.flush();
  std::cerr << "contacts: " << reason << '\n';
  return kFailed;
}

// No text is empty, and what is meant by one is told by its name.
void requireTexts(CLI::App& command) {
  static const CLI::Validator notEmpty([](std::string& text) { return text.empty() ? "is empty" : std::string(); }, "");
  for (CLI::Option* option : command.get_options()) {
    if (option->get_items_expected_max() == 0) continue;
    option->check(notEmpty);
    if (option->get_positional()) option->type_name("");
  }
  for (CLI::App* each : command.get_subcommands(nullptr)) requireTexts(*each);
}

// The arguments, and what they ask for.
class CommandLine {
 public:
  CommandLine();

  // The exit status when there is nothing to run.
  std::optional<int> parse(int argc, char** argv);
  // Answers whether what was looked for was found.
  bool run();

 private:
  using Run = std::function<void()>;

  // A subcommand with what all have in common.
  CLI::App* add(CLI::App& parent, const std::string& name, const std::string& description, Run run);
  CLI::App* addWriting(CLI::App& parent, const std::string& name, const std::string& description, Run run);
  void addReading();
  void addEditing();
  void addGroups();
  void addPhoto();
  void addSchema();

  CLI::App app_{"The contacts database, through the address book plug-in.", "contacts"};
  Run run_;
  bool isFound_ = true;
  std::string folder_;
  Manner manner_;
  std::vector<std::string> registered_;

  std::string name_;
  std::string second_;
  std::string file_;
  std::vector<std::string> names_;
  Query query_;
  PickOptions picking_;
  bool isOfGroups_ = false;
  bool isToGo_ = false;
};

CommandLine::CommandLine() {
  app_.require_subcommand(0, 1);
  app_.fallthrough();
  app_.failure_message([](const CLI::App*, const CLI::Error& error) {
    return std::string("contacts: ") + error.what() + "; contacts --help tells more\n";
  });
  app_.add_option("--folder", folder_, "The folder of vCards (else ADDRESSBOOK_FOLDER, else the user's own)");
  app_.add_flag("--json", manner_.isJson, "Print JSON");
  app_.add_flag("-q,--quiet", manner_.isQuiet, "Print nothing about what went well, nor warnings");
  addReading();
  addEditing();
  addGroups();
  addPhoto();
  addSchema();
  requireTexts(app_);
}

CLI::App* CommandLine::add(CLI::App& parent, const std::string& name, const std::string& description, Run run) {
  CLI::App* command = parent.add_subcommand(name, description);
  command->fallthrough();
  if (&parent == &app_) command->footer("--folder, --json and --quiet can stand here, too: contacts --help.");
  // The innermost subcommand's is the last that is called.
  command->callback([this, run = std::move(run), command] {
    if (command->get_subcommands().empty()) run_ = run;
  });
  return command;
}

CLI::App* CommandLine::addWriting(CLI::App& parent, const std::string& name, const std::string& description, Run run) {
  CLI::App* command = add(parent, name, description, std::move(run));
  command->add_flag("--dry-run", manner_.isDryRun, "Save nothing");
  return command;
}

void CommandLine::addReading() {
  add(app_, "list", "List all people", [this] { listPeople(manner_); });
  CLI::App* show = add(app_, "show", "Show all that is known about somebody", [this] { showPeople(names_, manner_); });
  show->add_option("PERSON", names_, "Unique id, name, part of a name or e-mail address")->required();
  CLI::App* find = add(app_, "find", "Find people", [this] { isFound_ = findPeople(query_, manner_); });
  find->add_option("TEXT", query_.text, "A text anywhere in the card, or what --property is compared with")->required();
  find->add_option("--property", query_.property, "The property to compare");
  find->add_option("--label", query_.label, "Of entries with this label");
  find->add_option("--key", query_.key, "The part of addresses to compare, such as City");
  find->add_option("--comparison", query_.comparison,
                   "How, such as Equal or PrefixMatch; to contain it when not given");
  CLI::App* exported = add(app_, "export", "Write vCards", [this] { exportPeople(query_.text, file_, manner_); });
  exported->add_option("TEXT", query_.text, "Of those who have this text; else all");
  exported->add_option("-o,--output", file_, "The file to write");
  add(app_, "watch", "Print each change to the contacts as it happens", [this] { watchChanges(manner_); });
  CLI::App* picked = add(app_, "pick", "Pick people in a window on the terminal, and print them", [this] {
    picking_.json = manner_.isJson;
    isFound_ = pick(picking_);
  });
  picked->add_option("TEXT", picking_.query, "What the search field starts with");
  picked->add_option("--property", picking_.property, "Print the picked people's values of this property, as in Email");
  picked->add_flag("--multiple", picking_.multiple, "Allow several people and values");
  picked->add_flag("--groups", picking_.groups, "Allow groups");
  CLI::App* classes = add(app_, "classes", "Show the classes that the plug-in offers to host code", [this] {
    if (name_.empty()) {
      listClasses(registered_, manner_);
    } else {
      describeClass(name_, manner_);
    }
  });
  CLI::App* script = add(app_, "run", "Run a program in the host's language", [this] {
    const bool isFile = !file_.empty() && file_ != "-";
    runScript(readWhole(isFile ? file_ : "-"), isFile ? file_ : "standard input");
  });
  script->add_option("FILE", file_, "The program; else the standard input");
  classes->add_option("CLASS", name_, "Show this class's members");
}

void CommandLine::addEditing() {
  const char* assignments =
      "PROPERTY[:LABEL][.KEY]=VALUE, such as First=Anna, Phone:mobile=123, Address:home.City=Bonn; "
      "+= for one more entry, no VALUE to remove";
  CLI::App* added = addWriting(app_, "add", "Add a person", [this] { addPerson(names_, manner_); });
  added->add_option("ASSIGNMENT", names_, assignments)->required();
  CLI::App* edit = addWriting(app_, "edit", "Change a person", [this] { editPerson(name_, names_, manner_); });
  edit->add_option("PERSON", name_, "Who")->required();
  edit->add_option("ASSIGNMENT", names_, assignments)->required();
  CLI::App* remove = addWriting(app_, "remove", "Remove people", [this] { removePeople(names_, manner_); });
  remove->add_option("PERSON", names_, "Whom")->required();
  CLI::App* import = addWriting(app_, "import", "Add the people of vCard files, all in one save",
                                [this] { importFiles(names_, manner_); });
  import->add_option("FILE", names_, "Files of any number of cards, - for the standard input")->required();
  CLI::App* me = addWriting(app_, "me", "Show or set the address book's owner", [this] {
    if (isToGo_) {
      clearOwner(manner_);
    } else if (name_.empty()) {
      printOwner(manner_);
    } else {
      setOwner(name_, manner_);
    }
  });
  CLI::Option* owner = me->add_option("PERSON", name_, "Who it is");
  me->add_flag("--clear", isToGo_, "Nobody any more")->excludes(owner);
}

void CommandLine::addGroups() {
  CLI::App* groups = add(app_, "groups", "Show the groups as a tree, or change them", [this] { printGroups(manner_); });
  const auto named = [this](CLI::App* command, const char* name, const char* meaning = "Unique id or name") {
    command->add_option(name, name_, meaning)->required();
  };
  const auto members = [this](CLI::App* command) { command->add_option("PERSON", names_, "Whom")->required(); };
  named(add(*groups, "members", "List a group's members", [this] { printMembers(name_, manner_); }), "GROUP");
  CLI::App* create = addWriting(*groups, "create", "Make a group", [this] { createGroup(name_, second_, manner_); });
  named(create, "NAME", "Its name");
  create->add_option("--in", second_, "The group to make it in");
  CLI::App* rename = addWriting(*groups, "rename", "Rename a group", [this] { renameGroup(name_, second_, manner_); });
  named(rename, "GROUP");
  rename->add_option("NAME", second_, "Its new name")->required();
  named(addWriting(*groups, "remove", "Remove a group; its members stay", [this] { removeGroup(name_, manner_); }),
        "GROUP");
  CLI::App* add = addWriting(*groups, "add", "Put people into a group", [this] { addMembers(name_, names_, manner_); });
  named(add, "GROUP");
  members(add);
  CLI::App* drop =
      addWriting(*groups, "drop", "Take people out of a group", [this] { removeMembers(name_, names_, manner_); });
  named(drop, "GROUP");
  members(drop);
  CLI::App* nest = addWriting(*groups, "nest", "Put a group into a group", [this] {
    if (isToGo_) {
      unnestGroup(name_, second_, manner_);
    } else {
      nestGroup(name_, second_, manner_);
    }
  });
  named(nest, "GROUP");
  nest->add_option("PARENT", second_, "The group to put it into")->required();
  nest->add_flag("--out", isToGo_, "Take it out instead");
}

void CommandLine::addPhoto() {
  CLI::App* photo = addWriting(app_, "photo", "Show, write, set or remove somebody's picture", [this] {
    if (!file_.empty()) {
      writePhoto(name_, file_, manner_);
    } else if (!second_.empty()) {
      setPhoto(name_, second_, manner_);
    } else if (isToGo_) {
      removePhoto(name_, manner_);
    } else {
      describePhoto(name_, manner_);
    }
  });
  photo->add_option("PERSON", name_, "Whose")->required();
  CLI::Option* get = photo->add_option("--get", file_, "The file to write it to, - for the standard output");
  CLI::Option* set = photo->add_option("--set", second_, "The file that has the new picture");
  CLI::Option* remove = photo->add_flag("--remove", isToGo_, "Remove it");
  get->excludes(set)->excludes(remove);
  set->excludes(remove);
}

void CommandLine::addSchema() {
  CLI::App* properties = addWriting(app_, "properties", "Show the properties that people have, or change them", [this] {
    if (!name_.empty()) {
      addProperty(isOfGroups_, name_, second_, manner_);
    } else if (!file_.empty()) {
      removeProperty(isOfGroups_, file_, manner_);
    } else {
      printProperties(isOfGroups_, manner_);
    }
  });
  properties->add_flag("--groups", isOfGroups_, "Those of groups");
  CLI::Option* type = properties->add_option("--type", second_, "The type of the added one")->default_str("string");
  CLI::Option* added = properties->add_option("--add", name_, "Add a property of this name");
  properties->add_option("--remove", file_, "Remove an added property of this name")->excludes(added);
  type->needs(added);
}

std::optional<int> CommandLine::parse(int argc, char** argv) {
  try {
    app_.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app_.exit(error) == 0 ? EXIT_SUCCESS : kWrongUsage;
  }
  if (!run_) {
    std::cerr << app_.help();
    return kWrongUsage;
  }
  if (second_.empty() && !name_.empty() && app_.got_subcommand("properties")) second_ = "string";
  return std::nullopt;
}

bool CommandLine::run() {
  if (!folder_.empty()) setenv("ADDRESSBOOK_FOLDER", folder_.c_str(), 1);
  registered_ = startHost(manner_);
  run_();
  return isFound_;
}

int main(int argc, char** argv) {
  CommandLine commandLine;
  if (const std::optional<int> status = commandLine.parse(argc, argv)) return *status;
  bool isFound = false;
  try {
    isFound = commandLine.run();
  } catch (const host::HostException& exception) {
    return fail(reasonOf(exception));
  } catch (const std::exception& error) {
    return fail(error.what());
  }
  std::cout.flush();
  if (!std::cout) return fail("the output could not be written");
  return isFound ? EXIT_SUCCESS : kFailed;
}

}  // namespace
}  // namespace contacts

int main(int argc, char** argv) {
  contacts::growHeapInLargeSteps();
  return contacts::main(argc, argv);
}
