#include "host/entries.h"
#include "host/events.h"
#include "picker/picker.h"
#include "platform/contacts/people_picker.h"
#include "tests/kit/host.h"
#include "tests/picker/terminal_session.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <utility>

namespace {

// A program with a picker whose events reach host code; prints the name of each and what is selected then.
int showPicker(const std::function<void(const host::Value& picker, const std::string& event)>& handle) {
  {
    const Host host{.contacts = {person("Ada", "Lovelace", "p1", {"EMAIL:a@b", "EMAIL:c@d", "TEL:12"}),
                                 person("Grace", "Hopper", "p2", {"EMAIL:e@f"}), group("Work", "g1", {"p2"})}};
    host::Value picker = host.make("ABPickerVXR");
    picker.call("Create");
    picker.call("AddProperty", "Email");
    picker.call("AddProperty", "Phone");
    auto reference = reinterpret_cast<ABPickerRef>(static_cast<std::uintptr_t>(picker.get("Handle").integer()));
    ABPickerSetDelegate(reference, GetApplicationEventTarget());
    std::vector<EventTypeSpec> types;
    for (std::uint32_t kind = 1; kind <= 6; ++kind) types.push_back({kEventClassABPeoplePicker, kind});
    EventHandlerRef handler = nullptr;
    InstallEventHandler(GetApplicationEventTarget(), MyEventHandler, types.size(), types.data(), nullptr, &handler);
    globalinstance = picker.object();
    for (const char* event : {"GroupSelectionChanged", "NameSelectionChanged", "ValueSelectionChanged",
                              "DisplayedPropertyChanged", "GroupDoubleClicked", "NameDoubleClicked"}) {
      host::handleEvent(picker, event, [&handle, event](const host::Value& self, auto) { handle(self, event); });
    }
    picker.set("Visible", true);
    while (picker.get("Visible") == true) host::idle(1);
    RemoveEventHandler(handler);
    globalinstance = nullptr;
    picker = nullptr;
  }
  std::cout.flush();
  return testing::Test::HasFailure() ? 1 : 0;
}

void print(const host::Value& picker, const std::string& event) {
  std::cout << event;
  for (const char* list : {"SelectedGroups", "SelectedRecords"}) {
    for (const host::Value& record : picker.call(list).elements()) std::cout << ' ' << record.call("uniqueId").text();
  }
  for (const host::Value& value : picker.call("SelectedValues").elements()) std::cout << ' ' << value.text();
  std::cout << '\n';
}

}  // namespace

TEST(WindowEvents, TellWhatTheUserDoes) {
  TerminalSession session(24, 80, [] { return showPicker(print); });
  if (!session.waitFor("Grace Hopper")) GTEST_SKIP() << "there is no window: " << session.screen().text();
  for (const auto& [keys, shown] : {
           std::pair("\x1bOB\x1bOB", ">*Grace"),  // nothing is below her
           std::pair("\x1bOA\x1bOC\x1bOB", ">*other c@d"),
           std::pair("\x10", "Phone"),
           std::pair("\x1bOD\x1bOD\x1bOB", ">*Work"),
       }) {
    session.type(keys);
    ASSERT_TRUE(session.waitFor(shown)) << session.screen().text();
  }
  session.type("\r\r");
  EXPECT_EQ(session.finish(), 0);
  EXPECT_EQ(session.output(),
            "NameSelectionChanged p2:ABPerson e@f\n"
            "ValueSelectionChanged p2:ABPerson e@f\n"
            "NameSelectionChanged p1:ABPerson a@b\n"
            "ValueSelectionChanged p1:ABPerson a@b\n"
            "ValueSelectionChanged p1:ABPerson c@d\n"
            "DisplayedPropertyChanged p1:ABPerson 12\n"
            "ValueSelectionChanged p1:ABPerson 12\n"
            "GroupSelectionChanged g1:ABGroup p2:ABPerson\n"
            "NameSelectionChanged g1:ABGroup p2:ABPerson\n"
            "ValueSelectionChanged g1:ABGroup p2:ABPerson\n"
            "NameDoubleClicked g1:ABGroup p2:ABPerson\n");
}

TEST(WindowEvents, MayHideAndReplaceThePicker) {
  for (const char* action : {"hide", "create"}) {
    TerminalSession session(24, 80, [action] {
      return showPicker([action](const host::Value& picker, const std::string& event) {
        if (event != "NameSelectionChanged") return;
        std::cout << action << '\n';
        std::string(action) == "hide" ? picker.set("Visible", false) : void(picker.call("Create"));
      });
    });
    if (!session.waitFor("Grace Hopper")) GTEST_SKIP() << "there is no window: " << session.screen().text();
    session.type("\x1bOB");
    EXPECT_EQ(session.finish(), 0) << session.screen().text();
    EXPECT_EQ(session.output(), std::string(action) + "\n");
  }
}
