#pragma once

#include "host/calls.h"
#include "host/declarations.h"
#include "host/value.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace host {

// How far a value is from what a declaration takes: 0 for the very type, more the more it must be widened; nothing when
// it doesn't fit. Numbers fit where their value does.
std::optional<int> distance(const Value& value, const Type& type);

// The bytes that a value of the type takes in memory.
std::size_t sizeOf(const Type& type);

// A value in the form in which it crosses to a plug-in, with a reference of its own for strings, objects and arrays.
class NativeValue {
 public:
  // The value must fit the type.
  NativeValue(const Type& type, const Value& value);
  // Takes over what lies at the address, with its reference.
  static NativeValue adopt(const Type& type, const void* address);
  // Reads what lies at the address and adds a reference.
  static NativeValue share(const Type& type, const void* address);
  // Calls the function, which returns a value of the type or, for no type, nothing.
  static NativeValue resultOf(NativeCall& call, void* function, const Type& type);

  NativeValue(NativeValue&& other) noexcept : type_(other.type_), bits_(std::exchange(other.bits_, 0)) {}
  NativeValue& operator=(NativeValue&&) = delete;
  ~NativeValue();

  [[nodiscard]] Value value() const;
  void passTo(NativeCall& call) const;
  // For passing by reference; what is there afterwards is this value.
  [[nodiscard]] void* address() { return &bits_; }
  // Writes it to the address; its reference goes along.
  void leakTo(void* address);

 private:
  explicit NativeValue(const Type& type) : type_(&type) {}

  [[nodiscard]] REALstring string() const { return reinterpret_cast<REALstring>(static_cast<Word>(bits_)); }
  [[nodiscard]] REALobject object() const { return reinterpret_cast<REALobject>(static_cast<Word>(bits_)); }

  const Type* type_;        // the declaration's or the array's
  std::uint64_t bits_ = 0;  // in its lowest bytes, as in memory
};

}  // namespace host
