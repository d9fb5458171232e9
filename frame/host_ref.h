#pragma once

#include "frame/host_interface.h"

#include <type_traits>
#include <utility>

// Owns exactly one reference to a host object, array or string, or nothing.
template <class Handle>
class HostRef {
 public:
  constexpr HostRef() = default;
  // Takes over the reference that the caller was handed.
  static HostRef adopt(Handle handle) { return HostRef(handle); }
  // Adds a reference of its own.
  static HostRef share(Handle handle) {
    if (handle != nullptr) {
      if constexpr (std::is_same_v<Handle, REALstring>) {
        REALLockString(handle);
      } else {
        REALLockObject(handle);
      }
    }
    return HostRef(handle);
  }

  HostRef(HostRef&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  HostRef& operator=(HostRef&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~HostRef() {
    if (handle_ == nullptr) return;
    if constexpr (std::is_same_v<Handle, REALstring>) {
      REALUnlockString(handle_);
    } else {
      REALUnlockObject(handle_);
    }
  }

  [[nodiscard]] Handle get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

  // Gives the reference up to the caller.
  [[nodiscard]] Handle handOver() { return std::exchange(handle_, nullptr); }

 private:
  explicit HostRef(Handle handle) : handle_(handle) {}

  Handle handle_ = nullptr;
};

template <class Handle>
HostRef<Handle> adoptHost(Handle handle) {
  return HostRef<Handle>::adopt(handle);
}
