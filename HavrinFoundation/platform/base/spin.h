// SPDX-License-Identifier: Apache-2.0
// Waiting without giving up the processor, for times shorter than a sleep and a wake-up. Internal to the layer.
#pragma once

namespace havrin {
inline namespace platform {

/// Tells the processor eight times that this thread spins, which leaves its sibling thread more of the core.
/// Cost: 0.1 to 0.4 us. In one row, since the time of a loop of single pauses depends on where its jump is placed.
inline void pauseProcessor() noexcept {
#if defined(__x86_64__)
  asm volatile("pause; pause; pause; pause; pause; pause; pause; pause" ::: "memory");
#elif defined(__aarch64__)
  asm volatile("isb; isb; isb; isb; isb; isb; isb; isb" ::: "memory");  // "yield" takes no time on most cores
#else
  asm volatile("" ::: "memory");
#endif
}

}  // namespace platform
}  // namespace havrin
