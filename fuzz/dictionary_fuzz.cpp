// A host Dictionary, as NSDictionary, as Dictionary; one that contains itself is refused.

#include "bridge/dictionaries.h"

#include "fuzz/samples.h"
#include "fuzz/started_host.h"
#include "fuzz/target.h"
#include "host/arrays.h"
#include "host/entries.h"
#include "host/exceptions.h"
#include "platform/foundation/exception.h"

namespace {

host::Value roundTrip(const host::Value& value) {
  const auto back = host::Value::adopt(NSDictionaryRB(NewNSDictionary(static_cast<REALdictionary>(value.object()))));
  host::takePendingException();
  return back;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const StartedHost kHost;
  Sample told;
  int failing = 0;
  bool isCyclic = false;
  const auto outcome = kHost.run([&] {
    Input input(data, size);
    const std::uint8_t choice = input.number();
    failing = choice % 32;
    isCyclic = choice / 32 == 7;
    const Sample sample = takeDictionary(input);
    told = {nullptr, sample.expected, sample.isKnown, "", sample.depth};
    if (isCyclic) {
      const host::Value list = host::objectArray({sample.value});
      sample.value.assign("Value", "itself", list);
      try {
        roundTrip(sample.value);
      } catch (const NSException&) {
        host::takePendingException();
        sample.value.call("Remove", "itself");
        throw;
      }
      expect(false, "what contains itself raises");
    }
    host::failNewInstance(failing);
    const host::Value once = roundTrip(sample.value);
    host::failNewInstance(0);
    if (failing == 0) expectStays(once, roundTrip);
    return shown(once);
  });
  if (outcome.hasRaised) {
    expect(isCyclic || told.depth > kSafeDepth, "only values nested deeply raise");
  } else if (failing == 0 && told.isKnown) {
    expectEqual(outcome.text, told.expected, "what comes back");
  }
  return 0;
}
