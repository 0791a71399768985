// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/futex.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace futex {

bool wait(std::uint32_t& word, std::uint32_t expected, double seconds) {
  // Longer than a day is cut into days: the caller looks again anyway, and no conversion can overflow.
  timespec limit{};
  if (seconds != kForever) {
    const double wanted = std::clamp(seconds, 0.0, 86'400.0);
    limit.tv_sec = static_cast<time_t>(wanted);
    limit.tv_nsec = static_cast<long>((wanted - static_cast<double>(limit.tv_sec)) * 1e9);
  }
  const timespec* until = seconds == kForever ? nullptr : &limit;
  return syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, expected, until, nullptr, 0) == 0 || errno != ETIMEDOUT;
}

void wake(std::uint32_t& word, int threads) {
  syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, threads, nullptr, nullptr, 0);
}

}  // namespace futex
}  // namespace platform
}  // namespace havrin
