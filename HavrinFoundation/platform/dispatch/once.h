// SPDX-License-Identifier: Apache-2.0
// Something that happens once in a process.
//
//   static dispatch_once_t once;
//   dispatch_once(&once, [] { table = readTable(); });       all callers return after the one call has returned
//
// Left out: retrying. A block that throws ends the process, since it would be neither done nor undone.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/block.h>

#include <atomic>
#include <cstdint>

namespace havrin {
inline namespace platform {

/// Whether it has happened; zero at first, and in memory that lives as long as the process.
struct dispatch_once_t {
  std::uint32_t state = 0;
};

namespace once {

inline constexpr std::uint32_t kDone = 0xffff'ffff;

HAVRIN_EXPORT void runOrWait(dispatch_once_t* predicate, BlockView<void()> block);

}  // namespace once

/// Calls `block` if no call with this predicate has begun in the process; else waits until that one has returned.
/// Aborts when the block asks for the same predicate again.
/// Cost: one load when it has happened.
inline void dispatch_once(dispatch_once_t* predicate, BlockView<void()> block) {
  if (std::atomic_ref(predicate->state).load(std::memory_order_acquire) != once::kDone) [[unlikely]] {
    once::runOrWait(predicate, block);
  }
}

}  // namespace platform
}  // namespace havrin
