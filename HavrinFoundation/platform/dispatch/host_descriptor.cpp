// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/host_descriptor.h>

#include <HavrinFoundation/platform/base/clock.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <system_error>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace {

void watch(int both, int one) {
  epoll_event readable{};
  readable.events = EPOLLIN;
  if (epoll_ctl(both, EPOLL_CTL_ADD, one, &readable) != 0) {
    throw std::system_error(errno, std::system_category(), "epoll_ctl");
  }
}

void empty(int descriptor) {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t length = read(descriptor, &count, sizeof count);
}

}  // namespace

HostDescriptor::Descriptor::Descriptor(int descriptor, const char* what) : descriptor_(descriptor) {
  if (descriptor < 0) throw std::system_error(errno, std::system_category(), what);
}

HostDescriptor::Descriptor::~Descriptor() { close(descriptor_); }

HostDescriptor::HostDescriptor()
    : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd"),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd_create"),
      both_(epoll_create1(EPOLL_CLOEXEC), "epoll_create1") {
  watch(both_.get(), event_.get());
  watch(both_.get(), timer_.get());
}

void HostDescriptor::signal() { eventfd_write(event_.get(), 1); }

void HostDescriptor::clear() {
  empty(event_.get());
  empty(timer_.get());
}

void HostDescriptor::expect(double deadline) {
  if (deadline < armed_) arm(deadline);
}

void HostDescriptor::expectOnly(std::optional<double> deadline) {
  if (const double wanted = deadline.value_or(kNever); wanted != armed_) arm(wanted);
}

void HostDescriptor::arm(double deadline) {
  armed_ = deadline;
  itimerspec setting{};  // all zero: never
  if (installedClockSource() != nullptr) {
    // The system's timer knows nothing of a test's clock, whose owner wakes the loop when it moves.
    if (deadline <= monotonicSeconds()) signal();
  } else if (deadline != kNever) {
    // Rounded up, so that the deadline has passed when the timer says so; zero would mean never, and a century is
    // never.
    const double at = std::min(std::max(deadline, 1e-9), monotonicSeconds() + 100.0 * 365 * 86'400);
    const double whole = std::floor(at);
    setting.it_value.tv_sec = static_cast<time_t>(whole);
    setting.it_value.tv_nsec = std::min(999'999'999L, static_cast<long>(std::ceil((at - whole) * 1e9)));
  }
  timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
}

}  // namespace platform
}  // namespace havrin
