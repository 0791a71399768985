// SPDX-License-Identifier: Apache-2.0
// The main queue inside a GLib main loop: a whole program. It prints what it did and ends with 0 when all of it
// happened, with 1 when ten seconds passed without.
#include <HavrinFoundation/platform/dispatch/host_loop.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <glib-unix.h>
#include <glib.h>

#include <cstdio>
#include <thread>

namespace {

gboolean drain(gint, GIOCondition, gpointer) {
  havrin::drainMainLoop();
  return G_SOURCE_CONTINUE;
}

gboolean giveUp(gpointer loop) {
  g_main_loop_quit(static_cast<GMainLoop*>(loop));
  return G_SOURCE_REMOVE;
}

}  // namespace

int main() {
  using namespace havrin;
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  const guint source = g_unix_fd_add(mainLoopDescriptor(), G_IO_IN, drain, nullptr);
  const guint limit = g_timeout_add(10'000, giveUp, loop);

  int left = 3;
  const auto note = [&](const char* what) {
    std::printf("%s on the %s thread\n", what, isMainThread() ? "main" : "wrong");
    if (isMainThread() && --left == 0) g_main_loop_quit(loop);
  };
  std::thread worker([&] {
    dispatch_async(dispatch_get_main_queue(), [&] { note("a queued closure"); });
    dispatch_sync(dispatch_get_main_queue(), [&] { note("a synchronous call"); });
  });
  RunLoop::main().performAfter(0.01, [&] { note("a delayed perform"); });

  g_main_loop_run(loop);
  worker.join();
  g_source_remove(source);
  g_source_remove(limit);
  g_main_loop_unref(loop);
  return left == 0 && !mainLoopDeadline() ? 0 : 1;
}
