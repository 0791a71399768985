// SPDX-License-Identifier: Apache-2.0
// The main queue inside a bare epoll loop: a whole program. It prints what it did and ends with 0 when all of it
// happened, with 1 when the loop would have waited for ever.
#include <HavrinFoundation/platform/dispatch/host_loop.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <cstdio>
#include <sys/epoll.h>
#include <thread>
#include <unistd.h>

int main() {
  using namespace havrin;
  const int epoll = epoll_create1(EPOLL_CLOEXEC);
  epoll_event wanted{};
  wanted.events = EPOLLIN;
  wanted.data.fd = mainLoopDescriptor();
  epoll_ctl(epoll, EPOLL_CTL_ADD, mainLoopDescriptor(), &wanted);

  int left = 3;
  const auto note = [&left](const char* what) {
    std::printf("%s on the %s thread\n", what, isMainThread() ? "main" : "wrong");
    if (isMainThread()) --left;
  };
  std::thread worker([&] {
    dispatch_async(dispatch_get_main_queue(), [&] { note("a queued closure"); });
    dispatch_sync(dispatch_get_main_queue(), [&] { note("a synchronous call"); });
  });
  RunLoop::main().performAfter(0.01, [&] { note("a delayed perform"); });

  while (left > 0) {
    epoll_event event{};
    if (epoll_wait(epoll, &event, 1, 10'000) != 1) return 1;
    drainMainLoop();
  }
  worker.join();
  // Nothing is left, so a host may now wait without limit.
  epoll_event event{};
  const bool atRest = epoll_wait(epoll, &event, 1, 0) == 0 && !mainLoopDeadline();
  close(epoll);
  return atRest ? 0 : 1;
}
