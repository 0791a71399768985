#include <HavrinFoundation/platform/base/clock.h>

#include <atomic>
#include <ctime>

namespace havrin::inline platform {
namespace {

constinit std::atomic<ClockSource*> installedSource{nullptr};

double secondsOf(clockid_t clock) {
  timespec reading;
  clock_gettime(clock, &reading);
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

ClockSource* installClockSource(ClockSource* source) {
  return installedSource.exchange(source, std::memory_order_acq_rel);
}

ClockSource* installedClockSource() { return installedSource.load(std::memory_order_acquire); }

}  // namespace havrin::inline platform
