// SPDX-License-Identifier: Apache-2.0
// Random numbers, and the one place where a test replaces them.
//
//   havrin::arc4random_uniform(6)        0 to 5, each equally likely
//   secureRandomBits()                   64 bits from the system's secure source
//
// Left out: seeded generators, distributions, random bytes in bulk.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// A number from 0 up to and without `bound`, each equally likely; 0 for a bound below 2, without drawing.
/// Threads: any. Aborts with one line when the system has no random numbers to give.
[[nodiscard]] HAVRIN_EXPORT std::uint32_t arc4random_uniform(std::uint32_t bound);

/// 64 bits from the system's secure random-number generator. Threads and failure as above.
[[nodiscard]] HAVRIN_EXPORT std::uint64_t secureRandomBits();

/// An odd number, constant in a process and different between processes, so that no input can be made to collide in a
/// hash table. Never taken from a test's source. Threads: any.
[[nodiscard]] HAVRIN_EXPORT std::uint64_t hashSecret();

/// Replaces every random number but hashSecret() in a test.
class HAVRIN_EXPORT RandomSource {
 public:
  RandomSource() = default;
  RandomSource(const RandomSource&) = delete;
  RandomSource& operator=(const RandomSource&) = delete;

  /// The answer of `arc4random_uniform` for a bound of 2 or more.
  [[nodiscard]] virtual std::uint32_t uniform(std::uint32_t bound) = 0;
  /// 64 bits in `bits`; false when the source fails, upon which the process is ended as if the system's had.
  [[nodiscard]] virtual bool fill(std::uint64_t& bits) = 0;

 protected:
  virtual ~RandomSource();
};

/// Puts `source` in place of the system's, or the system's back when it is null.
/// Result: the source that was installed before, null for the system's. Threads: any; for test programs.
HAVRIN_EXPORT RandomSource* installRandomSource(RandomSource* source);

}  // namespace platform
}  // namespace havrin
