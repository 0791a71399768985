// SPDX-License-Identifier: Apache-2.0
// Sleeping on a 32-bit word until another thread changes it. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <atomic>
#include <cstdint>
#include <limits>

namespace havrin {
inline namespace platform {
namespace futex {

inline constexpr double kForever = std::numeric_limits<double>::infinity();

/// Sleeps while `word` holds `expected`, at most `seconds`; may return early for no reason. The caller looks again.
/// Result: false when the time was up.
HAVRIN_EXPORT bool wait(std::uint32_t& word, std::uint32_t expected, double seconds = kForever);

/// Wakes at most `threads` of those that sleep on `word`, which may already be gone.
HAVRIN_EXPORT void wake(std::uint32_t& word, int threads);

inline bool wait(std::atomic<std::uint32_t>& word, std::uint32_t expected, double seconds = kForever) {
  return wait(reinterpret_cast<std::uint32_t&>(word), expected, seconds);
}
inline void wake(std::atomic<std::uint32_t>& word, int threads) {
  wake(reinterpret_cast<std::uint32_t&>(word), threads);
}

static_assert(sizeof(std::atomic<std::uint32_t>) == 4 && std::atomic<std::uint32_t>::is_always_lock_free);

}  // namespace futex
}  // namespace platform
}  // namespace havrin
