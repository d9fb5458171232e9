#include "tests/sweeps/sweep.h"

#include "host/entries.h"
#include "host/exceptions.h"
#include "host/memory_blocks.h"
#include "host/objects.h"
#include "platform/carbon/gestalt.h"
#include "platform/foundation/cf_dictionary.h"
#include "platform/foundation/exception.h"
#include "tests/bridge/shown_values.h"
#include "tests/objc/live_objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <span>
#include <thread>

namespace {

using host::Value;

// What is no NSException.
struct Foreign {};

struct SendFailure {
  bool isForeign = false;
  int toFailure = 0;
  std::thread::id thread;
  objc::Selector selector = nullptr;  // that failed
  NSObject receiver;
} sendFailure;

void beforeSend(objc::Object* receiver, objc::Selector selector) {
  SendFailure& state = sendFailure;
  if (state.toFailure == 0 || std::this_thread::get_id() != state.thread || --state.toFailure != 0) return;
  state.selector = selector;
  state.receiver = NSObject(receiver);
  if (state.isForeign) throw Foreign();
  NSException::raise("Refused"_ns, "because"_ns);
}

template <bool IsForeign>
void armSends(int nth) {
  sendFailure = {IsForeign, nth, std::this_thread::get_id(), nullptr, {}};
  objc_setSendHook(beforeSend);
}

bool disarmSends() {
  objc_setSendHook(nullptr);
  return sendFailure.toFailure == 0;
}

CFMutableDictionaryRef registry() {
  std::intptr_t found = 0;
  return Gestalt(0x56585269, &found) == noErr ? reinterpret_cast<CFMutableDictionaryRef>(found) : nullptr;
}

using Balance = std::map<std::string, long>;

// What there is of host objects, of platform objects and in the registry.
Balance balance() {
  Balance all = host::liveCounts();
  for (const auto& [name, count] : liveObjects()) all["platform's " + name] = count;
  all["registered"] = registry() == nullptr ? 0 : CFDictionaryGetCount(registry());
  return all;
}

// What there is more of than before.
std::string growthSince(const Balance& before) {
  std::string text;
  Balance grown = balance();
  for (const auto& [name, count] : before) grown[name] -= count;
  for (const auto& [name, count] : grown) {
    if (count != 0) text = joined(text, std::to_string(count) + " " + name);
  }
  return text;
}

// A wrapper that is alive is what the registry has for what it wraps. Of several for one address book it is the last.
bool isRegistered(const Value& wrapper) {
  const std::string name = wrapper.typeName();
  if (!name.starts_with("AB") || name == "ABPickerVXR" || name == "ABAddressBookVXR") return true;
  const Word wrapped = *reinterpret_cast<const Word*>(reinterpret_cast<char*>(wrapper.object()) + kObjectDataOffset);
  return wrapped == 0 || CFDictionaryGetValue(registry(), reinterpret_cast<const void*>(wrapped)) == wrapper.object();
}

// A new entry's identifier and the addresses in descriptions are others each time.
std::string comparable(std::string shown) {
  constexpr std::size_t kIdentifierSize = 38;
  if (shown.size() == kIdentifierSize && shown[9] == '-' && shown[14] == '-') return "'identifier'";
  for (std::size_t at = shown.find("0x"); at != std::string::npos; at = shown.find("0x", at + 1)) {
    shown.erase(at + 2, shown.find_first_not_of("0123456789abcdef", at + 2) - at - 2);
  }
  return shown;
}

bool isNeutral(const std::string& shown) {
  return shown == "Nil" || shown == "''" || shown == "[]" || shown == "{}" || shown.ends_with(" 0") ||
         shown.ends_with(" False");
}

// Of a dictionary and a date any entry and any field may be missing; cards have the time in them.
bool isPart(const std::string& part, const std::string& whole) {
  constexpr const char* kStarts[] = {"{", "Date ", "block BEGIN:VCARD"};
  return part == whole || isNeutral(part) || std::ranges::any_of(kStarts, [&](const char* start) {
           return part.starts_with(start) && whole.starts_with(start);
         });
}

void expectNoMoreThan(const Balance& before) {
  // An object whose init can't be sent stays, as there is nobody who could release it.
  const auto& [isForeign, toFailure, thread, selector, receiver] = sendFailure;
  const std::string name = selector == nullptr ? "" : sel_getName(selector);
  if (name.starts_with("init") &&
      growthSince(before) == std::string("1 platform's ") + class_getName(receiver.get()->isa)) {
    objc_release(receiver.get());
  }
  EXPECT_EQ(growthSince(before), "") << name;
}

Outcome made(const MemberCall& call, const Failure* failure, int nth) {
  Outcome outcome;
  Scene scene(call);
  const host::PluginScope scope;
  Value result;
  if (failure != nullptr) failure->arm(nth);
  try {
    result = scene.call();
  } catch (const NSException&) {
    outcome.thrown = "NSException";
  } catch (const Foreign&) {
    outcome.thrown = "Foreign";
  }
  outcome.hasFailed = failure != nullptr && failure->disarm();
  if (const auto pending = host::takePendingException()) outcome.pending = pending->what();
  outcome.result = comparable(shown(result));
  std::vector<Value> objects = scene.objects();
  if (result.typeName().ends_with("()")) {
    for (const Value& element : result.elements()) {
      outcome.elements.push_back(shown(element));
      objects.push_back(element);
    }
  } else if (std::holds_alternative<host::ObjectRef>(result.data())) {
    objects.push_back(result);
  }
  for (const Value& object : objects) EXPECT_TRUE(isRegistered(object)) << shown(object);
  return outcome;
}

// Makes the call. Adds a test failure when host or framework objects or entries of the registry are left over.
Outcome outcomeOf(const MemberCall& call, const Failure* failure = nullptr, int nth = 0) {
  const Balance before = balance();
  sendFailure = {};
  Outcome outcome = made(call, failure, nth);
  // For these there is now the shared object, which stays.
  if (!call.is("sharedAddressbook") || outcome.result == "Nil") expectNoMoreThan(before);
  return outcome;
}

// The first may make what is made once and stays.
Outcome secondOutcomeOf(const MemberCall& call) {
  SCOPED_TRACE(call.name());
  if (!call.is("sharedAddressbook")) made(call, nullptr, 0);
  return outcomeOf(call);
}

bool isPartOf(const Outcome& outcome, const Outcome& whole) {
  if (outcome.elements.empty()) return isPart(outcome.result, whole.result);
  return outcome.elements.size() <= whole.elements.size() &&
         std::ranges::equal(outcome.elements, std::span(whole.elements).first(outcome.elements.size()), isPart);
}

constexpr const char* kRefused = "NSExceptionVXR: A Cocoa Refused was not handled: because";

// Only some of the picker's members are; the framework may look for its records without the others' knowing.
bool isGuarded(const MemberCall& call) {
  if (std::string_view(call.owner->name()) != "ABPickerVXR") return true;
  return call.is("SelectedGroups") || call.is("SelectedRecords") || call.is("SelectedValues") ||
         call.is("SelectedStrings") || call.is("SelectedDictionaries");
}

// An object that is taken out of the notification centre has to get out.
bool endsObject(const MemberCall& call) {
  return call.is("class destructor") || (call.is("Create") && !call.isSelfEmpty);
}

void expectAllowed(const MemberCall& call, const Failure& failure, const Outcome& outcome, const Outcome& whole) {
  EXPECT_TRUE(isPartOf(outcome, whole)) << outcome.result << " of " << whole.result;
  if (&failure == &kSendThrows) {
    EXPECT_EQ(outcome.thrown, "Foreign");
    EXPECT_TRUE(outcome.pending.empty() || outcome.pending == whole.pending) << outcome.pending;
  } else if (&failure == &kSendRaises) {
    // A second exception, while the first is translated, is nobody's.
    if (whole.pending.starts_with("NSExceptionVXR")) return;
    EXPECT_TRUE(!isGuarded(call) || outcome.thrown.empty());
    EXPECT_EQ(outcome.pending, isGuarded(call) ? kRefused : "");
  } else {
    EXPECT_EQ(outcome.thrown, "");
    EXPECT_TRUE(&failure == &kMemoryBlockFails || !whole.pending.empty() || outcome.pending.empty());
  }
}

}  // namespace

const Failure kNewInstanceFails{"new instance", [](int nth) { host::failNewInstance(nth); },
                                [] { return host::failNewInstance(0) == 0; }};
const Failure kMemoryBlockFails{"memory block", [](int nth) { host::failMemoryBlock(nth); },
                                [] { return host::failMemoryBlock(0) == 0; }};
const Failure kSendRaises{"raising send", armSends<false>, disarmSends};
const Failure kSendThrows{"throwing send", armSends<true>, disarmSends};

void sweep(const Failure& failure) {
  int failures = 0;
  for (const MemberCall& call : callsOfAll()) {
    if (endsObject(call) && (&failure == &kSendRaises || &failure == &kSendThrows)) continue;
    const bool makesShared = call.is("sharedAddressbook");
    const Outcome whole = makesShared ? Outcome{.result = "ABAddressBookVXR"} : secondOutcomeOf(call);
    // Without an object for the exception the application ends.
    if (&failure == &kNewInstanceFails && whole.pending.starts_with("NSExceptionVXR")) continue;
    for (int nth = 1;; ++nth) {
      SCOPED_TRACE(call.name() + ", " + failure.name + " " + std::to_string(nth));
      const Outcome outcome = outcomeOf(call, &failure, nth);
      if (!outcome.hasFailed) break;
      ++failures;
      expectAllowed(call, failure, outcome, whole);
    }
  }
  EXPECT_GT(failures, 0);
}

std::vector<MemberCall> callsOfAll() {
  std::vector<MemberCall> all;
  for (const host::HostClass* owner : host::pluginClasses())
    std::ranges::copy(callsOf(*owner), std::back_inserter(all));
  return all;
}

std::vector<Outcome> outcomesOfAll() {
  std::vector<Outcome> all;
  for (const MemberCall& call : callsOfAll()) {
    all.push_back(secondOutcomeOf(call));
  }
  return all;
}

void expectPartOf(const std::vector<Outcome>& poor, const std::vector<Outcome>& rich, bool mayBeRefused) {
  const std::vector<MemberCall> calls = callsOfAll();
  ASSERT_EQ(poor.size(), rich.size());
  for (std::size_t i = 0; i < poor.size(); ++i) {
    SCOPED_TRACE(calls[i].name());
    EXPECT_TRUE(isPartOf(poor[i], rich[i])) << poor[i].result << " of " << rich[i].result;
    EXPECT_TRUE(mayBeRefused || poor[i].pending == rich[i].pending) << poor[i].pending;
    EXPECT_EQ(poor[i].thrown, "");
  }
}
