// SPDX-License-Identifier: Apache-2.0
// Which threads wait for which unfair locks, under diagnosis. Internal.
//
// Without locks and allocations, since it is used inside a lock. A lock knows its holder by a number of its own; the
// system's thread number for it is noted when the thread is given that number.
#pragma once

#include <cstdint>

namespace havrin {
inline namespace platform {

struct AwaitedLock;

/// Notes the system's number of the calling thread, which locks know by `number`.
void noteLockingThread(std::uint32_t number);

/// Lists, while it exists, that the calling thread waits for a lock and which thread holds it. Does nothing for a null
/// lock, or when the list is full.
class LockWait {
 public:
  LockWait(const void* lock, std::uint32_t holder);
  ~LockWait();
  LockWait(const LockWait&) = delete;
  LockWait& operator=(const LockWait&) = delete;

 private:
  AwaitedLock* entry_ = nullptr;
};

}  // namespace platform
}  // namespace havrin
