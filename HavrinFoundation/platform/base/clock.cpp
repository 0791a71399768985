// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/clock.h>

#include <atomic>
#include <cmath>
#include <ctime>

namespace havrin {
inline namespace platform {
namespace {

constinit std::atomic<ClockSource*> installedSource{nullptr};
constinit std::atomic<std::uint64_t> installations{0};

timespec readingOf(clockid_t clock) {
  timespec reading;
  clock_gettime(clock, &reading);
  return reading;
}

double secondsOf(clockid_t clock) {
  const timespec reading = readingOf(clock);
  return static_cast<double>(reading.tv_sec) + static_cast<double>(reading.tv_nsec) * 1e-9;
}

}  // namespace

ClockSource::~ClockSource() = default;

double monotonicSeconds() {
  const ClockSource* source = installedSource.load(std::memory_order_acquire);
  return source == nullptr ? secondsOf(CLOCK_MONOTONIC) : source->monotonicSeconds();
}

double wallSecondsSince1970() {
  const ClockSource* source = installedSource.load(std::memory_order_acquire);
  return source == nullptr ? secondsOf(CLOCK_REALTIME) : source->wallSecondsSince1970();
}

std::int64_t coarseTick() {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  if (const ClockSource* source = installedSource.load(std::memory_order_acquire)) {
    // Two sources may begin at the same reading: their ticks lie years apart.
    constexpr int kYears = 52;
    const auto reading = static_cast<std::uint64_t>(std::llround(source->monotonicSeconds() * kPerSecond));
    return static_cast<std::int64_t>(reading + (installations.load(std::memory_order_relaxed) << kYears));
  }
  const timespec reading = readingOf(CLOCK_MONOTONIC_COARSE);
  return static_cast<std::int64_t>(reading.tv_sec) * kPerSecond + reading.tv_nsec;
}

ClockSource* installClockSource(ClockSource* source) {
  // Counted first: a reader that sees the new source sees its number, since the exchange releases both.
  installations.fetch_add(1, std::memory_order_relaxed);
  return installedSource.exchange(source, std::memory_order_acq_rel);
}

ClockSource* installedClockSource() { return installedSource.load(std::memory_order_acquire); }

}  // namespace platform
}  // namespace havrin
