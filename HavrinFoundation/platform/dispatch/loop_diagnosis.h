// SPDX-License-Identifier: Apache-2.0
// What diagnosis reports about delayed work that no run loop will run. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/loop_delays.h>
#include <HavrinFoundation/platform/dispatch/run_loop_state.h>

#include <string>

namespace havrin {
inline namespace platform {

/// Reports work that is delayed on the calling thread when that is a worker of the queues, which runs no run loop.
void diagnoseDelayed(const PerformKey& key);
/// Reports the work that waits in the run loop of a thread that ends.
void diagnoseEnd(const LoopDelays& delays);

/// Appends lines about the work that waits in a loop; of the delayed work only when the calling thread is the loop's.
void describeLoop(std::string& text, RunLoopState& loop, bool isOwn);

}  // namespace platform
}  // namespace havrin
