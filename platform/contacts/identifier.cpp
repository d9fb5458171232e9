#include "platform/contacts/identifier.h"

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace contacts {
namespace {

std::uint64_t fnv1a(std::string_view text, std::uint64_t hash) {
  constexpr std::uint64_t kPrime = 0x100000001B3;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * kPrime;
  return hash;
}

// The hash's last step mixes its high bits only; this spreads every input bit over all of them.
std::uint64_t mixed(std::uint64_t hash) {
  hash = (hash ^ hash >> 33) * 0xFF51AFD7ED558CCD;
  hash = (hash ^ hash >> 33) * 0xC4CEB9FE1A85EC53;
  return hash ^ hash >> 33;
}

// The bits of version and variant are set here.
std::string uuidText(std::uint64_t high, std::uint64_t low, unsigned version) {
  high = (high & ~std::uint64_t{0xF000}) | version << 12;
  low = low >> 2 | std::uint64_t{1} << 63;
  char text[37];
  std::snprintf(text, sizeof text, "%08X-%04X-%04X-%04X-%04X%08X", static_cast<unsigned>(high >> 32),
                static_cast<unsigned>(high >> 16 & 0xFFFF), static_cast<unsigned>(high & 0xFFFF),
                static_cast<unsigned>(low >> 48), static_cast<unsigned>(low >> 32 & 0xFFFF),
                static_cast<unsigned>(low & 0xFFFFFFFF));
  return text;
}

}  // namespace

std::string newIdentifier() {
  std::uint64_t halves[2];
  // Never fails for so few bytes once the system has started.
  if (getentropy(halves, sizeof halves) != 0) std::abort();
  constexpr unsigned kRandom = 4;
  return uuidText(halves[0], halves[1], kRandom);
}

std::string derivedIdentifier(std::string_view seed) {
  constexpr std::uint64_t kFirstBasis = 0xCBF29CE484222325;
  constexpr std::uint64_t kSecondBasis = 0x9AE16A3B2F90404F;
  constexpr unsigned kCustom = 8;
  return uuidText(mixed(fnv1a(seed, kFirstBasis)), mixed(fnv1a(seed, kSecondBasis)), kCustom);
}

}  // namespace contacts
