// A host variant, as Foundation object, as variant: what comes back is known beforehand, nothing is left over, and an
// instance that can't be had does no harm.

#include "bridge/variants.h"

#include "fuzz/samples.h"
#include "fuzz/started_host.h"
#include "fuzz/target.h"
#include "host/entries.h"
#include "host/exceptions.h"
#include "host/memory_blocks.h"
#include "host/variants.h"

#include <utility>

namespace {

host::Value roundTrip(const host::Value& value) {
  const auto variant = host::ObjectRef::adopt(host::newVariant(value));
  auto back = host::ObjectRef::adopt(NewVariantFromNSObject(GetVariantAsNSObject(variant.get())));
  host::takePendingException();
  return host::fromVariant(std::move(back));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const StartedHost kHost;
  Sample told;
  int failing = 0;
  const auto outcome = kHost.run([&] {
    Input input(data, size);
    failing = input.number() % 32;
    const Sample sample = takeSample(input);
    told = {nullptr, sample.expected, sample.isKnown, "", sample.depth};
    host::failNewInstance(failing);
    host::failMemoryBlock(failing);
    const host::Value once = roundTrip(sample.value);
    host::failNewInstance(0);
    host::failMemoryBlock(0);
    if (failing == 0) expectStays(once, roundTrip);
    return shown(once);
  });
  if (outcome.hasRaised) {
    expect(told.depth > kSafeDepth, "only values nested deeply raise");
    expectEqual(outcome.text, "NSInvalidArgumentException: a value nested more than 256 levels deep can't be converted",
                "what is raised");
  } else if (failing == 0 && told.isKnown) {
    expectEqual(outcome.text, told.expected, "what comes back");
  }
  return 0;
}
