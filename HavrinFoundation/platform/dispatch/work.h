// SPDX-License-Identifier: Apache-2.0
// A closure that is run once: what queues and run loops store. Closures of at most three words, blocks among them, are
// stored inside it without an allocation. For dispatch_async and RunLoop::perform, which are templates.
//
//   detail::Work work([&] { ++count; });
//   work.run();                          count is one higher, the closure is destroyed, the work is empty
//
// Left out: results and arguments, copying, cancelling.
#pragma once

#include <HavrinFoundation/platform/object/block.h>

#include <concepts>
#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

namespace havrin::detail {

/// Threads: one at a time; it may move to another thread before it is run.
class Work {
 public:
  /// Empty: no closure.
  Work() = default;

  /// Moves or copies `closure` into the work.
  /// Throws: NSException (InvalidArgument) when it is a null block, function or function pointer; what copying throws.
  /// Cost: one allocation when the closure has more than three words, or may throw when it is moved.
  template <class Closure>
  requires(std::invocable<std::decay_t<Closure>&> &&
           !std::same_as<std::decay_t<Closure>, Work>) explicit Work(Closure&& closure) {
    using Stored = std::decay_t<Closure>;
    refuseNull(closure);
    if constexpr (kInside<Stored>) {
      ::new (static_cast<void*>(storage_)) Stored(std::forward<Closure>(closure));
      operations_ = &kOperations<Inside<Stored>>;
    } else {
      ::new (static_cast<void*>(storage_)) Stored*(new Stored(std::forward<Closure>(closure)));
      operations_ = &kOperations<Outside<Stored>>;
    }
  }

  Work(Work&& other) noexcept { takeFrom(other); }
  Work& operator=(Work&& other) noexcept {
    if (this != &other) {
      destroy();
      takeFrom(other);
    }
    return *this;
  }
  ~Work() { destroy(); }

  /// Whether there is a closure.
  explicit operator bool() const { return operations_ != nullptr; }

  /// Calls the closure, then destroys it, also when it throws; the work is empty as soon as the call begins. There must
  /// be a closure. Throws: what the closure throws.
  void run() {
    Work current(std::move(*this));
    current.operations_->run(current.storage_);
  }

 private:
  static constexpr std::size_t kStorage = 3 * sizeof(void*);

  struct Operations {
    void (*run)(void* storage);
    void (*relocate)(void* from, void* to) noexcept;  // null: copy the bytes
    void (*destroy)(void* storage) noexcept;          // null: nothing to do
  };

  // NOLINTBEGIN(misc-redundant-expression): for one closure the sizes are numbers, two of which happen to be equal
  template <class Stored>
  static constexpr bool kInside = sizeof(Stored) <= kStorage &&
                                  alignof(Stored) <= alignof(void*) && std::is_nothrow_move_constructible_v<Stored>;
  // NOLINTEND(misc-redundant-expression)

  template <class Stored>
  struct Inside {
    static Stored& closure(void* storage) { return *std::launder(static_cast<Stored*>(storage)); }
    static void run(void* storage) { closure(storage)(); }
    static void relocate(void* from, void* to) noexcept {
      ::new (to) Stored(std::move(closure(from)));
      closure(from).~Stored();
    }
    static void destroy(void* storage) noexcept { closure(storage).~Stored(); }
    static constexpr bool kMovesAsBytes = std::is_trivially_copyable_v<Stored>;
    static constexpr bool kDestroysNothing = std::is_trivially_destructible_v<Stored>;
  };

  template <class Stored>
  struct Outside {
    static Stored* closure(void* storage) { return *std::launder(static_cast<Stored**>(storage)); }
    static void run(void* storage) { (*closure(storage))(); }
    static void relocate(void*, void*) noexcept {}
    static void destroy(void* storage) noexcept { delete closure(storage); }
    static constexpr bool kMovesAsBytes = true;
    static constexpr bool kDestroysNothing = false;
  };

  template <class Kind>
  static constexpr Operations kOperations{&Kind::run, Kind::kMovesAsBytes ? nullptr : &Kind::relocate,
                                          Kind::kDestroysNothing ? nullptr : &Kind::destroy};

  template <class Closure>
  static void refuseNull(const Closure& closure) {
    if constexpr (std::is_pointer_v<Closure>) {
      if (closure == nullptr) throwNullBlock();
    } else if constexpr (requires { closure.operator bool(); }) {
      if (!closure) throwNullBlock();
    }
  }

  void takeFrom(Work& other) noexcept {
    operations_ = std::exchange(other.operations_, nullptr);
    if (operations_ == nullptr || operations_->relocate == nullptr) {
      std::memcpy(storage_, other.storage_, kStorage);
    } else {
      operations_->relocate(other.storage_, storage_);
    }
  }

  void destroy() noexcept {
    if (operations_ != nullptr && operations_->destroy != nullptr) operations_->destroy(storage_);
    operations_ = nullptr;
  }

  const Operations* operations_ = nullptr;
  alignas(void*) std::byte storage_[kStorage];
};

}  // namespace havrin::detail
