// SPDX-License-Identifier: Apache-2.0
// The message form of the unfair lock: a class of its own, with the lock word inside the object. It shares nothing with
// the typed lock (unfair_lock.h).
//
//   const auto lock = make<message::UnfairLock>();
//   send<"withLock:">(lock, [&] { ++counter; });
//   send<"lock">(lock)                                a copy of the word, not a lock: 0 when free
//
// A thread that takes a lock it already holds ends the process with one line.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/object/members.h>

namespace havrin::message {

class HAVRIN_EXPORT UnfairLock : public Object<UnfairLock, NSObject> {
 public:
  /// A free lock.
  UnfairLock() = default;

  /// The lock itself, freed.
  Strong<UnfairLock> init();
  /// Calls the block once, on the calling thread, with the lock held. The reference to it is released before the lock
  /// is freed. Throws: what the block throws, after the lock has been freed; NSException (InvalidArgument) for no
  /// block.
  void withLock(BlockView<void()> block);
  /// The lock word as it is now, by value.
  [[nodiscard]] os_unfair_lock lock();

  using Members = List<Method<"init", &UnfairLock::init>, Method<"withLock:", &UnfairLock::withLock>,
                       Method<"lock", &UnfairLock::lock>>;

 private:
  os_unfair_lock lock_{};
};

}  // namespace havrin::message
