// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/run_loop_source.h>

#include <HavrinFoundation/platform/dispatch/run_loop_state.h>

#include <atomic>
#include <string>
#include <utility>

namespace havrin {
inline namespace platform {

struct RunLoopSource::State {
  State(std::shared_ptr<RunLoop> itsLoop, std::string_view itsMode, Block<void()> itsHandler)
      : loop(std::move(itsLoop)), mode(itsMode), handler(std::move(itsHandler)) {}

  const std::shared_ptr<RunLoop> loop;
  const std::string mode;
  Block<void()> handler;  // the loop's thread only; null when detached
  std::atomic<bool> signalled{false};
};

RunLoopSource::RunLoopSource(Block<void()> handler, std::string_view mode)
    : state_(std::make_shared<State>(RunLoop::current().shared_from_this(), mode, std::move(handler))) {
  if (!state_->handler) throwNullBlock();
  RunLoopState::of(*state_->loop).modes.addSource(mode);
}

RunLoopSource::~RunLoopSource() {
  state_->handler = nullptr;
  RunLoopState::of(*state_->loop).modes.removeSource(state_->mode);
}

void RunLoopSource::signal() {
  if (state_->signalled.exchange(true, std::memory_order_acq_rel)) return;
  state_->loop->perform(
      [state = state_] {
        // Before the handler: a signal that comes while it runs asks for another run.
        state->signalled.store(false, std::memory_order_release);
        if (const Block<void()> handler = state->handler) handler();
      },
      state_->mode);
}

}  // namespace platform
}  // namespace havrin
