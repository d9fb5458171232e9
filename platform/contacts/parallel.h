#pragma once

#include <cstddef>
#include <functional>

namespace contacts {

// How many pieces of work make a stretch.
inline constexpr std::size_t kStretch = 128;

// Calls work(begin, end) for each stretch of [0, count), on all of the machine's processors where there are several
// stretches; each begins at a multiple of kStretch. Returns when all have ended. Throws what work threw, after which
// stretches that hadn't begun are left out.
void inStretches(std::size_t count, const std::function<void(std::size_t, std::size_t)>& work);

}  // namespace contacts
