// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/random.h>

#include <HavrinFoundation/platform/base/misuse.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <sys/random.h>

namespace havrin {
inline namespace platform {

namespace {

constinit std::atomic<RandomSource*> installed{nullptr};

bool systemBits(std::uint64_t& bits) {
  for (;;) {
    const ssize_t count = getrandom(&bits, sizeof bits, 0);
    if (count == sizeof bits) return true;  // up to 256 bytes come whole or not at all
    if (count < 0 && errno != EINTR) return false;
  }
}

}  // namespace

RandomSource::~RandomSource() = default;

RandomSource* installRandomSource(RandomSource* source) { return installed.exchange(source); }

std::uint32_t arc4random_uniform(std::uint32_t bound) {
  if (bound < 2) return 0;
  if (RandomSource* source = installed.load(std::memory_order_acquire)) return source->uniform(bound);
  return ::arc4random_uniform(bound);
}

std::uint64_t secureRandomBits() {
  std::uint64_t bits = 0;
  RandomSource* source = installed.load(std::memory_order_acquire);
  if (!(source ? source->fill(bits) : systemBits(bits))) {
    abortOnMisuse("secure random bits", "the system's random-number generator failed");
  }
  return bits;
}

std::uint64_t hashSecret() {
  static const std::uint64_t kSecret = std::uint64_t{::arc4random()} << 32 | ::arc4random() | 1;
  return kSecret;
}

}  // namespace platform
}  // namespace havrin
