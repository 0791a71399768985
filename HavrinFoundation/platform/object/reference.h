// SPDX-License-Identifier: Apache-2.0
// References to objects: `Strong` owns a share, `Weak` reads nil from the moment the last share goes.
//
//   Strong<Station> station = make<Station>("Nord");   counts and class are in front of the object
//   Weak<Station> later = station;
//   station = nullptr;                                 destroyed here
//   later.lock()                                       null
//
// Both convert from and to plain pointers; a plain pointer borrows. A returned `Strong` needs
// no release. Left out: autorelease pools, unowned references, reference counts that the program may read.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>  // std::hash
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

class ClassObject;
class NSObject;

/// The header in front of every object. The counts outlive the object: a weak reference reads them after destruction.
struct ObjectHeader {
  std::atomic<ClassObject*> cls;
  std::atomic<std::uint32_t> strong;
  std::atomic<std::uint32_t> weak;  // all strong references together hold one; kHasAssociations may be set

  static constexpr std::uint32_t kHasAssociations = 0x8000'0000;
  static constexpr std::uint32_t kDestroying = 0x8000'0000;  // strong, while destructors run: cannot come back to 0
  static constexpr std::uint32_t kDestroyed = 0xC000'0000;   // strong, when destructors have run
  static constexpr std::uint32_t kImmortal = 0x4000'0000;    // strong, of constant objects

  // One billion references is where a count could meet the bits above; nothing that fits memory holds as many.
  constexpr explicit ObjectHeader(ClassObject* first, std::uint32_t count = 1) : cls(first), strong(count), weak(1) {}
};
static_assert(sizeof(ObjectHeader) == 16);

[[nodiscard]] inline ObjectHeader& headerOf(const NSObject* object) {
  return reinterpret_cast<ObjectHeader*>(const_cast<NSObject*>(object))[-1];
}

/// The class that messages to the object go through: its own, or the notifying one while it is observed. Acquired,
/// since another thread may just have made that one for it.
[[nodiscard]] inline ClassObject* dispatchClass(const NSObject* object) {
  return headerOf(object).cls.load(std::memory_order_acquire);
}

/// The last strong reference is gone: observations end, destructors run, memory goes with the last weak reference.
HAVRIN_EXPORT void destroyObject(NSObject* object) noexcept;
HAVRIN_EXPORT void freeObject(NSObject* object) noexcept;

inline void retainObject(const NSObject* object) noexcept {
  headerOf(object).strong.fetch_add(1, std::memory_order_relaxed);
}
inline void releaseObject(NSObject* object) noexcept {
  if (headerOf(object).strong.fetch_sub(1, std::memory_order_acq_rel) == 1) destroyObject(object);
}
/// True when a share was taken: the object lives and is not being destroyed.
[[nodiscard]] inline bool tryRetainObject(const NSObject* object) noexcept {
  auto& strong = headerOf(object).strong;
  std::uint32_t count = strong.load(std::memory_order_relaxed);
  while (count != 0 && count < ObjectHeader::kDestroying) {
    if (strong.compare_exchange_weak(count, count + 1, std::memory_order_acquire, std::memory_order_relaxed)) {
      return true;
    }
  }
  return false;
}

/// An owning reference, or null.
/// Cost: a copy and its end are one atomic count each. Threads: copies may live on any thread; one `Strong` is a
/// variable like any other.
template <class Type>
class Strong {
 public:
  using Object = Type;

  constexpr Strong() noexcept = default;
  constexpr Strong(std::nullptr_t) noexcept {}
  Strong(Type* object) noexcept : object_(object) {
    if (object) retainObject(object);
  }
  Strong(const Strong& other) noexcept : Strong(other.object_) {}
  Strong(Strong&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class Other>
  requires std::convertible_to<Other*, Type*> Strong(const Strong<Other>& other)
  noexcept : Strong(static_cast<Type*>(other.get())) {}
  template <class Other>
  requires std::convertible_to<Other*, Type*> Strong(Strong<Other>&& other)
  noexcept : object_(other.detach()) {}
  Strong& operator=(Strong other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Strong() {
    if (object_) releaseObject(object_);
  }

  /// Takes over a share that the caller already holds.
  [[nodiscard]] static Strong adopt(Type* object) noexcept {
    Strong result;
    result.object_ = object;
    return result;
  }
  /// Gives the share away: the caller releases it.
  [[nodiscard]] Type* detach() noexcept { return std::exchange(object_, nullptr); }

  [[nodiscard]] Type* get() const noexcept { return object_; }
  operator Type*() const noexcept { return object_; }
  Type* operator->() const noexcept { return object_; }
  Type& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

 private:
  Type* object_ = nullptr;
};

/// A zeroing reference: null from the moment the last strong reference goes, before any destructor runs.
/// Cost: `lock` is one compare-exchange loop on the count; no table, no lock. Threads: as `Strong`.
template <class Type>
class Weak {
 public:
  using Object = Type;

  constexpr Weak() noexcept = default;
  constexpr Weak(std::nullptr_t) noexcept {}
  Weak(Type* object) noexcept : object_(object) {
    if (object_) headerOf(object_).weak.fetch_add(1, std::memory_order_relaxed);
  }
  template <class Other>
  requires std::convertible_to<Other*, Type*> Weak(const Strong<Other>& object)
  noexcept : Weak(static_cast<Type*>(object.get())) {}
  Weak(const Weak& other) noexcept : object_(other.object_) {
    if (object_) headerOf(object_).weak.fetch_add(1, std::memory_order_relaxed);
  }
  Weak(Weak&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Weak& operator=(Weak other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Weak() {
    constexpr std::uint32_t kLast = 1;
    if (object_ &&
        (headerOf(object_).weak.fetch_sub(1, std::memory_order_acq_rel) & ~ObjectHeader::kHasAssociations) == kLast) {
      freeObject(object_);
    }
  }

  /// The object, held; null when its last strong reference has gone.
  [[nodiscard]] Strong<Type> lock() const noexcept {
    if (!object_ || !tryRetainObject(object_)) return nullptr;
    return Strong<Type>::adopt(static_cast<Type*>(object_));
  }
  /// The address that was stored, whether or not the object lives: for comparison only. It is not reused while this
  /// reference holds it.
  [[nodiscard]] const NSObject* address() const noexcept { return object_; }

 private:
  NSObject* object_ = nullptr;
};

}  // namespace platform
}  // namespace havrin

template <class Type>
struct std::hash<havrin::Strong<Type>> {
  std::size_t operator()(const havrin::Strong<Type>& reference) const noexcept {
    return std::hash<Type*>()(reference.get());
  }
};
