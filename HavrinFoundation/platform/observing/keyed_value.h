// SPDX-License-Identifier: Apache-2.0
// A value under a key, as its getter returned it: an object, or a number that is boxed when somebody asks for the object.
//
//   KeyedValue(title).object()                 "Nord": the same object
//   KeyedValue::number(88.5).object()          NSNumber 88.5: a new one at each call
//   KeyedValue().object()                      null
//
// Observers often ask for both values of a change and read neither, or only one.
#pragma once

#include <HavrinFoundation/platform/object/boxing.h>

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

/// Cost: a copy of an object is one atomic count, of a number none. Threads: as Strong.
class KeyedValue {
 public:
  KeyedValue() noexcept = default;
  KeyedValue(std::nullptr_t) noexcept {}
  KeyedValue(NSObject* object) noexcept : KeyedValue(Strong<NSObject>(object)) {}
  template <std::derived_from<NSObject> Type>
  KeyedValue(Strong<Type> object) noexcept : bits_(reinterpret_cast<std::uintptr_t>(upcast(object.detach()))) {}
  template <class Number>
  requires(std::is_arithmetic_v<Number>) [[nodiscard]] static KeyedValue number(Number value) noexcept {
    KeyedValue made;
    std::memcpy(&made.bits_, &value, sizeof value);
    made.box_ = box<Number>;
    return made;
  }

  KeyedValue(const KeyedValue& other) noexcept : bits_(other.bits_), box_(other.box_) {
    if (NSObject* object = own()) retainObject(object);
  }
  KeyedValue(KeyedValue&& other) noexcept
      : bits_(std::exchange(other.bits_, 0)), box_(std::exchange(other.box_, nullptr)) {}
  KeyedValue& operator=(KeyedValue other) noexcept {
    std::swap(bits_, other.bits_);
    std::swap(box_, other.box_);
    return *this;
  }
  ~KeyedValue() {
    if (NSObject* object = own()) releaseObject(object);
  }

  [[nodiscard]] explicit operator bool() const noexcept { return box_ || bits_ != 0; }
  [[nodiscard]] Strong<NSObject> object() const { return box_ ? box_(bits_) : Strong<NSObject>(own()); }

 private:
  using Box = Strong<NSObject> (*)(std::uint64_t bits);

  static NSObject* upcast(NSObject* object) noexcept { return object; }
  template <class Number>
  static Strong<NSObject> box(std::uint64_t bits) {
    Number value;
    std::memcpy(&value, &bits, sizeof value);
    return Boxing<Number>::box(value);
  }
  [[nodiscard]] NSObject* own() const noexcept { return box_ ? nullptr : reinterpret_cast<NSObject*>(bits_); }

  std::uint64_t bits_ = 0;  // of the number, or the address of the object
  Box box_ = nullptr;       // null: an object, or nothing
};

}  // namespace platform
}  // namespace havrin
