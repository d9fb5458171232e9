#include "apps/contacts/commands.h"
#include "apps/contacts/pick.h"
#include "apps/contacts/session.h"
#include "host/error.h"
#include "host/exceptions.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int kFailed = 1;
constexpr int kNothingPicked = 1;
constexpr int kWrongUsage = 2;

// What went wrong, in the plug-in's words: a framework exception's reason rather than the message round it.
std::string reasonOf(const host::HostException& exception) {
  if (exception.object().typeName() == "NSExceptionVXR") {
    if (std::string reason = exception.object().get("Reason").text(); !reason.empty()) return reason;
  }
  return exception.what();
}

int fail(const std::string& reason) {
  std::cout.flush();
  std::cerr << "contacts: " << reason << '\n';
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("The contacts database, through the address book plug-in.", "contacts");
  app.require_subcommand(1);
  std::string folder;
  app.add_option("--folder", folder, "The folder of vCards (else ADDRESSBOOK_FOLDER, else the user's own)");
  const CLI::App* list = app.add_subcommand("list", "List all people");
  const CLI::App* watch = app.add_subcommand("watch", "Print each change to the contacts as it happens");
  CLI::App* classes = app.add_subcommand("classes", "Show the classes that the plug-in offers to host code");
  std::string className;
  classes->add_option("CLASS", className, "Show this class's members");
  CLI::App* pick = app.add_subcommand("pick", "Pick people in a window on the terminal, and print them");
  contacts::PickOptions picking;
  pick->add_option("--property", picking.property, "Print the picked people's values of this property, as in Email");
  pick->add_flag("--multiple", picking.multiple, "Allow several people and values");
  pick->add_flag("--groups", picking.groups, "Allow groups");
  pick->add_flag("--json", picking.json, "Print a JSON list");
  pick->add_option("QUERY", picking.query, "Start with this text in the search field");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? EXIT_SUCCESS : kWrongUsage;
  }

  try {
    if (!folder.empty()) setenv("ADDRESSBOOK_FOLDER", folder.c_str(), 1);
    const std::vector<std::string> registered = contacts::startHost();
    if (*list) contacts::listPeople();
    if (*watch) contacts::watchChanges();
    if (*pick && !contacts::pick(picking)) return kNothingPicked;
    if (*classes && className.empty()) {
      for (const std::string& name : registered) std::cout << name << '\n';
    } else if (*classes) {
      contacts::describeClass(className);
    }
  } catch (const host::HostException& exception) {
    return fail(reasonOf(exception));
  } catch (const host::Error& error) {
    return fail(error.what());
  }
  std::cout.flush();
  return std::cout ? EXIT_SUCCESS : fail("the output could not be written");
}
