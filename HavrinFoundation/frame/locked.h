// SPDX-License-Identifier: Apache-2.0
// A box whose value can be reached only while its own lock is held. Typed form only.
//
//   Locked<std::vector<int>> seen({1, 2});
//   seen.perform([](auto& values) { values.push_back(3); });
//   seen.perform([](auto& values) { return values.size(); })          3
//   Locked<std::map<std::string, int>> plays{{}};                     an empty map; with ({{}}) it is ambiguous
//
// Calling perform on a box from inside its own operation ends the process with one line.
#pragma once

#include <HavrinFoundation/frame/unfair_lock.h>
#include <HavrinFoundation/platform/base/invoke.h>

#include <concepts>
#include <utility>

namespace havrin {

template <typename Type>
class Locked {
 public:
  /// A box that takes `content` over by moving it.
  explicit Locked(Type content) : content_(std::move(content)) {}
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

  /// The operation's result, by value; it gets the content to read, change or replace, and is called once, on the
  /// calling thread, with the lock held. What it leaves in the content stays, also when it throws.
  /// Throws: what the operation throws, unchanged, after the lock has been freed.
  template <std::invocable<Type&> Operation>
  auto perform(Operation&& operation) {
    UnfairLockGuard guard(*lock_.cell_);
    return detail::invoke(std::forward<Operation>(operation), content_);
  }

 private:
  // The lock is made before the content is taken over, and outlives it.
  UnfairLock lock_;
  Type content_ HAVRIN_THREAD_SAFETY(guarded_by(*lock_.cell_));
};

}  // namespace havrin
