// SPDX-License-Identifier: Apache-2.0
// The pending work of one mode of one run loop. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/dispatch/delayed_performs.h>
#include <HavrinFoundation/platform/dispatch/work_fifo.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

class RunLoopMode {
 public:
  explicit RunLoopMode(std::string_view modeName) : name(modeName) {}

  const std::string name;
  DelayedPerforms delayed;  // the loop's thread only

  // Guarded by the loop's lock.
  bool isCommon = false;
  WorkFifo posted;
  std::size_t sources = 0;
};

/// The modes whose work a loop runs while it runs in one of them.
struct RunLoopModes {
  RunLoopMode* named;
  RunLoopMode* common;  // null when the named mode is none of the common ones
};

}  // namespace platform
}  // namespace havrin
