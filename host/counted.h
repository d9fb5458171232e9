#pragma once

#include "frame/host_types.h"

#include <utility>

namespace host {

// Reference counting as the host's entries do it; null is allowed.
void lock(REALobject object);
void unlock(REALobject object);
void lock(REALstring string);
void unlock(REALstring string);

// Owns exactly one reference to an object, array or string, or nothing.
template <class Handle>
class Counted {
 public:
  Counted() = default;
  // Takes over the reference that the caller was handed.
  static Counted adopt(Handle handle) { return Counted(handle); }
  // Adds a reference of its own.
  static Counted share(Handle handle) {
    lock(handle);
    return Counted(handle);
  }

  Counted(const Counted& other) : Counted(share(other.handle_)) {}
  Counted(Counted&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Counted& operator=(Counted other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Counted() { unlock(handle_); }

  [[nodiscard]] Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }
  // Gives the reference up to the caller.
  [[nodiscard]] Handle leak() { return std::exchange(handle_, nullptr); }

 private:
  explicit Counted(Handle handle) : handle_(handle) {}

  Handle handle_ = nullptr;
};

using ObjectRef = Counted<REALobject>;
using StringRef = Counted<REALstring>;

}  // namespace host
