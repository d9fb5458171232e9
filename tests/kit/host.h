#pragma once

#include "host/exceptions.h"
#include "host/options.h"
#include "host/value.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/kit/cards.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct Host;

// What a Host holds while it runs.
class HostSession {
 public:
  explicit HostSession(const Host& settings);
  HostSession(const HostSession&) = delete;
  HostSession& operator=(const HostSession&) = delete;
  ~HostSession();

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }

 private:
  ContactsFolder folder_;
  std::map<std::string, long> platformObjects_;
  std::optional<host::PluginScope> scope_;
};

// A host with the plug-in loaded, over a contacts folder of its own; one a process. In a program that the plug-in's
// objects are linked into it is those that are started; otherwise the plug-in of the build is loaded. At its end, the
// test fails if host or platform objects are left over; values of the test must be gone by then.
//
//   Host host{.contacts = {person("Ada", "Lovelace", "p1"), group("Work", "g1")}, .version = 2011.4};
struct Host {
  std::vector<Card> contacts = {};
  double version = 2013.0;
  bool runtime = true;
  std::vector<std::string> without = {};           // as host::Options has it
  std::vector<std::string> withoutSelectors = {};  // that no framework object answers
  bool foreignClasses = true;                      // the family's other classes, NSExceptionVXR among them
  bool plugin = true;                              // false: nobody calls REALPluginMain
  std::function<void(const std::string& text)> messageBox = {};
  std::function<void()> yield = {};
  HostSession session = HostSession(*this);

  template <class... Arguments>
  host::Value shared(std::string_view className, std::string_view member, Arguments&&... arguments) const {
    return host::callShared(className, member, std::forward<Arguments>(arguments)...);
  }
  // Host code's "new".
  template <class... Arguments>
  host::Value make(std::string_view className, Arguments&&... arguments) const {
    return host::newObject(className, std::forward<Arguments>(arguments)...);
  }
  [[nodiscard]] const std::filesystem::path& folder() const { return session.folder(); }
};

// The text of the host's exception or error that the action throws; "nothing thrown".
std::string thrownBy(const std::function<void()>& action);
