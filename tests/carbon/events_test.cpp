#include "platform/carbon/events.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::uint32_t kClass = 0x61627070;
constexpr EventParamName kName = 1;
constexpr EventParamName kOtherName = 2;
constexpr EventParamType kType = 3;
constexpr EventParamType kOtherType = 4;
constexpr EventTypeSpec kTypes[] = {{kClass, 1}, {kClass, 2}};

std::vector<std::string> calls;

// What a handler does, told by its user data: its name, and "+" when it runs the next one first, "!" when it takes the
// event.
OSStatus handle(EventHandlerCallRef next, EventRef event, void* userData) {
  const std::string name = static_cast<const char*>(userData);
  calls.push_back(name + std::to_string(GetEventKind(event)));
  const OSStatus behind = name.ends_with('+') ? CallNextEventHandler(next, event) : eventNotHandledErr;
  calls.push_back("/" + name);
  return name.ends_with('!') ? noErr : behind;
}

EventHandlerRef install(const char* name) {
  EventHandlerRef handler = nullptr;
  EXPECT_EQ(InstallEventHandler(GetApplicationEventTarget(), handle, std::size(kTypes), kTypes, const_cast<char*>(name),
                                &handler),
            noErr);
  return handler;
}

// The handlers' answer, and what they did in "calls".
OSStatus send(std::uint32_t eventClass, std::uint32_t kind) {
  calls.clear();
  EventRef event = nullptr;
  EXPECT_EQ(CreateEvent(kCFAllocatorDefault, eventClass, kind, 0, kEventAttributeNone, &event), noErr);
  const OSStatus status = SendEventToEventTarget(event, GetApplicationEventTarget());
  ReleaseEvent(event);
  return status;
}

}  // namespace

TEST(Events, GoToTheLatestHandlerFirst) {
  install("first");
  const EventHandlerRef middle = install("middle+");
  install("last");
  EXPECT_EQ(send(kClass, 2), eventNotHandledErr);
  EXPECT_EQ(calls, (std::vector<std::string>{"last2", "/last", "middle+2", "first2", "/first", "/middle+"}));
  EXPECT_EQ(RemoveEventHandler(middle), noErr);
  EXPECT_EQ(RemoveEventHandler(middle), paramErr);
  install("taker!");
  EXPECT_EQ(send(kClass, 1), noErr);
  EXPECT_EQ(calls, (std::vector<std::string>{"taker!1", "/taker!"}));
  EXPECT_EQ(send(kClass, 3), eventNotHandledErr);
  EXPECT_EQ(send(kClass + 1, 1), eventNotHandledErr);
  EXPECT_TRUE(calls.empty());
}

TEST(Events, LetAHandlerRemoveHandlersOnTheWay) {
  static EventHandlerRef first = install("first!");
  static EventHandlerRef own = nullptr;
  InstallEventHandler(
      GetApplicationEventTarget(),
      [](EventHandlerCallRef next, EventRef event, void*) {
        RemoveEventHandler(own);
        RemoveEventHandler(first);
        return CallNextEventHandler(next, event);
      },
      std::size(kTypes), kTypes, nullptr, &own);
  EXPECT_EQ(send(kClass, 1), eventNotHandledErr);
  EXPECT_TRUE(calls.empty());
}

TEST(Events, CarryParameters) {
  EventRef event = nullptr;
  ASSERT_EQ(CreateEvent(kCFAllocatorDefault, kClass, 1, 0, kEventAttributeNone, &event), noErr);
  EXPECT_EQ(GetEventClass(event), kClass);
  const int stored[] = {7, 8};
  for (int i = 0; i < 2; ++i) ASSERT_EQ(SetEventParameter(event, kName, kType, sizeof stored, stored), noErr);
  int read[] = {0, 0};
  ByteCount size = 0;
  EventParamType type = 0;
  EXPECT_EQ(GetEventParameter(event, kName, kType, &type, sizeof read[0], &size, read), noErr);
  EXPECT_EQ(size, sizeof stored);
  EXPECT_EQ(type, kType);
  EXPECT_EQ(read[0] * 10 + read[1], 70);
  using Key = std::pair<EventParamName, EventParamType>;
  for (const auto& [name, itsType] : {Key{kName, kOtherType}, Key{kOtherName, kType}}) {
    EXPECT_EQ(GetEventParameter(event, name, itsType, nullptr, sizeof read, nullptr, read), eventParameterNotFoundErr);
  }
  ReleaseEvent(event);
}
