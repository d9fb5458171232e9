#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

// This program's own openat, write, fsync, renameat and their like stand before the C library's. They count, record and
// break the calls on request, and are otherwise what they stand for.
namespace file_faults {

struct Fault {
  enum class Effect { kKill, kFail, kShortWrite };

  Effect effect = Effect::kKill;
  int error = 0;          // for kFail
  bool isSticky = false;  // also of all later calls that can have that effect
  int at = 0;             // before which call, counted from 0, of those that can have that effect
};

// A call that changed something, or made it durable.
struct Call {
  std::string name;    // as in C
  ino_t inode = 0;     // of the file that was written or synced, or that is renamed, before the call
  ino_t folder = 0;    // that has, or is to have, the name
  std::string target;  // the name, where there is one
};

void start(const std::optional<Fault>& fault);

struct Seen {
  int count = 0;       // of calls that could have the fault's effect
  bool isHit = false;  // whether one had
  std::vector<Call> calls;
};

// Everything since the start; from now on calls are as they were.
Seen stop();

}  // namespace file_faults
