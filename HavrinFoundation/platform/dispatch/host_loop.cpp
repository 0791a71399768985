// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/host_loop.h>

#include <HavrinFoundation/platform/base/misuse.h>
#include <HavrinFoundation/platform/dispatch/host_descriptor.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop_state.h>

namespace havrin {
inline namespace platform {
namespace {

RunLoopState& mainLoop(const char* function) {
  if (!isMainThread()) abortOnMisuse(function, "must be called on the main thread");
  return RunLoopState::of(RunLoop::main());
}

}  // namespace

int mainLoopDescriptor() { return mainLoop("mainLoopDescriptor").hostDescriptor().descriptor(); }

void drainMainLoop() {
  RunLoopState& loop = mainLoop("drainMainLoop");
  // Cleared first: what comes from now on makes the descriptor readable again.
  loop.hostDescriptor().clear();
  struct ReportAfterwards {
    RunLoopState& loop;
    ~ReportAfterwards() { loop.reportToHost(); }
  } const report{loop};
  loop.runDue();
}

std::optional<double> mainLoopDeadline() { return mainLoop("mainLoopDeadline").nextDeadline(); }

}  // namespace platform
}  // namespace havrin
