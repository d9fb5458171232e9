#pragma once

#include "platform/objc/handle.h"

#include <utility>

// Owns exactly one reference to a framework object, or nothing.
template <objc::HandleType Handle>
class Retained {
 public:
  constexpr Retained() = default;
  // Takes over the reference that the caller was handed.
  static Retained adopt(Handle handle) { return Retained(handle); }
  // Adds a reference of its own.
  static Retained share(Handle handle) {
    if (handle) objc_retain(handle.get());
    return Retained(handle);
  }

  Retained(const Retained& other) : Retained(share(other.handle_)) {}
  Retained(Retained&& other) noexcept : handle_(std::exchange(other.handle_, Handle())) {}
  Retained& operator=(Retained other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Retained() {
    if (handle_) objc_release(handle_.get());
  }

  [[nodiscard]] Handle get() const { return handle_; }
  const Handle* operator->() const { return &handle_; }
  explicit operator bool() const { return static_cast<bool>(handle_); }

  // Gives the reference up to the caller.
  [[nodiscard]] Handle leak() { return std::exchange(handle_, Handle()); }
  // Gives the reference to the thread's autorelease pool.
  Handle autorelease() {
    if (handle_) objc_autorelease(handle_.get());
    return leak();
  }

 private:
  explicit Retained(Handle handle) : handle_(handle) {}

  Handle handle_;
};
