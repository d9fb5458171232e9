#include "host/events.h"
#include "host/exceptions.h"
#include "picker/picker.h"
#include "platform/contacts/people_picker.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* kEvents[] = {"GroupSelectionChanged",    "NameSelectionChanged", "ValueSelectionChanged",
                                   "DisplayedPropertyChanged", "GroupDoubleClicked",   "NameDoubleClicked"};

constexpr const char* kUnsupported = "UnsupportedOperationException: This function is only for Mac OS X Carbon.";

// What the handler behind the picker's saw, and what it answered.
int passedOn = 0;
constexpr OSStatus kPassedOn = -1234;

// Installs the picker's handler for the kinds 0 to 7 of two classes, with another one behind it.
struct Chain {
  static constexpr std::uint32_t kOtherClass = 0x6F746872;

  Chain() {
    std::vector<EventTypeSpec> types;
    for (std::uint32_t kind = 0; kind < 8; ++kind) {
      types.push_back({kEventClassABPeoplePicker, kind});
      types.push_back({kOtherClass, kind});
    }
    const auto install = [&](EventHandlerUPP handler, EventHandlerRef* installed) {
      InstallEventHandler(GetApplicationEventTarget(), handler, types.size(), types.data(), nullptr, installed);
    };
    install(
        [](EventHandlerCallRef, EventRef, void*) {
          ++passedOn;
          return kPassedOn;
        },
        &behind);
    install(MyEventHandler, &pickers);
  }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  ~Chain() {
    RemoveEventHandler(behind);
    RemoveEventHandler(pickers);
    globalinstance = nullptr;
  }

  static OSStatus send(std::uint32_t eventClass, std::uint32_t kind) {
    EventRef event = nullptr;
    CreateEvent(kCFAllocatorDefault, eventClass, kind, 0, kEventAttributeNone, &event);
    const OSStatus status = SendEventToEventTarget(event, GetApplicationEventTarget());
    ReleaseEvent(event);
    return status;
  }
  // Whether the event goes past the picker's handler.
  static bool passesOn(std::uint32_t eventClass, std::uint32_t kind) {
    passedOn = 0;
    return send(eventClass, kind) == kPassedOn && passedOn == 1;
  }

  EventHandlerRef behind = nullptr;
  EventHandlerRef pickers = nullptr;
};

}  // namespace

TEST(PickerEvents, ReachTheHandlerOfTheirKindOrPassOn) {
  const Host host{};
  const host::Value picker = host.make("ABPickerVXR");
  const host::Value other = host.make("ABPickerVXR");
  std::vector<std::string> raised;
  for (const char* event : kEvents) {
    host::handleEvent(picker, event, [&raised, event, &picker](const host::Value& self, auto arguments) {
      EXPECT_EQ(self, picker);
      EXPECT_TRUE(arguments.empty());
      raised.emplace_back(event);
    });
  }
  const Chain chain;
  globalinstance = picker.object();
  for (std::uint32_t kind = 1; kind <= 6; ++kind) {
    passedOn = 0;
    EXPECT_EQ(Chain::send(kEventClassABPeoplePicker, kind), noErr);
    EXPECT_EQ(passedOn, 0);
  }
  EXPECT_EQ(raised, std::vector<std::string>(std::begin(kEvents), std::end(kEvents)));
  EXPECT_TRUE(Chain::passesOn(kEventClassABPeoplePicker, 0));
  EXPECT_TRUE(Chain::passesOn(kEventClassABPeoplePicker, 7));
  EXPECT_TRUE(Chain::passesOn(Chain::kOtherClass, 1));
  globalinstance = nullptr;
  EXPECT_TRUE(Chain::passesOn(kEventClassABPeoplePicker, 1));
  EXPECT_EQ(raised.size(), std::size(kEvents));

  host::handleEvent(other, "NameDoubleClicked", [](const host::Value&, auto) {});
  globalinstance = other.object();
  EXPECT_TRUE(Chain::passesOn(kEventClassABPeoplePicker, 1));
  EXPECT_FALSE(Chain::passesOn(kEventClassABPeoplePicker, 6));
  host.make("ABPickerVXR").call("Create");
  EXPECT_EQ(globalinstance, other.object());  // another object's end leaves its place alone
}

TEST(PickerEvents, PassOnInTheDevelopmentEnvironment) {
  const Host host{.runtime = false};
  const host::Value picker = host.make("ABPickerVXR");
  host::handleClassEvent("ABPickerVXR", "GroupSelectionChanged", [](const host::Value&, auto) { FAIL(); });
  const Chain chain;
  globalinstance = picker.object();
  EXPECT_TRUE(Chain::passesOn(kEventClassABPeoplePicker, 1));
}

TEST(PickerEvents, KeepTheObjectWhileItsHandlerRuns) {
  const Host host{};
  host::Value picker = host.make("ABPickerVXR");
  picker.call("Create");
  const Chain chain;
  globalinstance = picker.object();
  host::handleClassEvent("ABPickerVXR", "GroupSelectionChanged", [&](const host::Value& self, auto) {
    picker = nullptr;
    EXPECT_NE(self.get("Handle"), 0);
  });
  EXPECT_EQ(Chain::send(kEventClassABPeoplePicker, 1), noErr);
  EXPECT_EQ(globalinstance, nullptr);
  EXPECT_STREQ(host::takePendingException()->what(), kUnsupported);
  EXPECT_TRUE(Chain::passesOn(kEventClassABPeoplePicker, 1));
}

TEST(PickerEvents, AreRefusedInCarbonsOwnWay) {
  const Host host{};
  const host::Value picker = host.make("ABPickerVXR");
  EXPECT_EQ(thrownBy([&] { picker.call("RemoveEvents"); }), kUnsupported);
  EXPECT_EQ(thrownBy([&] { picker.call("InstallEvents", nullptr); }), kUnsupported);
  EXPECT_EQ(globalinstance, nullptr);
  EXPECT_EQ(eventHandler, &MyEventHandler);
}
