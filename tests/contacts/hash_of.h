#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// As the store computes it for its journal and its cache: texts of 64 bytes and more go into four lanes as far as they
// fill them.
inline std::uint64_t hashOf(std::string_view bytes) {
  auto mix = [](std::uint64_t& hash, std::uint64_t word) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15;
    hash ^= hash >> 29;
  };
  std::array<std::uint64_t, 4> lanes{bytes.size() * 0x9E3779B97F4A7C15, 1, 2, 3};
  auto take = [&](std::uint64_t& lane) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data(), std::min<std::size_t>(bytes.size(), 8));
    bytes.remove_prefix(std::min<std::size_t>(bytes.size(), 8));
    mix(lane, word);
  };
  if (bytes.size() >= 64) {
    while (bytes.size() >= 32) std::ranges::for_each(lanes, take);
    for (std::size_t lane = 1; lane < lanes.size(); ++lane) mix(lanes[0], lanes[lane]);
  }
  while (!bytes.empty()) take(lanes[0]);
  return lanes[0];
}
