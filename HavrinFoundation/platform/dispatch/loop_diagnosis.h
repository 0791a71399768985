// SPDX-License-Identifier: Apache-2.0
// What diagnosis reports about delayed work that no run loop will run. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/loop_delays.h>

namespace havrin {
inline namespace platform {

/// Reports work that is delayed on the calling thread when that is a worker of the queues, which runs no run loop.
void diagnoseDelayed(const PerformKey& key);
/// Reports the work that waits in the run loop of a thread that ends.
void diagnoseEnd(const LoopDelays& delays);

}  // namespace platform
}  // namespace havrin
