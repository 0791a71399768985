// SPDX-License-Identifier: Apache-2.0
// The delayed work of one run loop, over all of its modes. Internal to the layer; used on the loop's thread.
#pragma once

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/delayed_performs.h>
#include <HavrinFoundation/platform/dispatch/run_loop_mode.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace havrin {
inline namespace platform {

class LoopDelays {
 public:
  explicit LoopDelays(RunLoopMode& defaultMode) : defaultMode_(&defaultMode), modes_{&defaultMode} {}

  /// Adds work that is due after `delaySeconds`; a delay that is not above zero, NaN included, is over at once.
  /// Result: when it is due.
  double schedule(const PerformKey& key, double delaySeconds, Work&& work, RunLoopMode& mode);
  /// Moves the only request of the default mode with this target, this selector and no argument to `delaySeconds` from
  /// now, as if it had been cancelled and arranged again.
  /// Result: when it is due. Empty, and nothing has changed, when there is none, when another request of the default
  /// mode has this target and selector, or when one of another mode has them and no argument.
  /// Cost: the clock and one look-up; when it moves later, no other request is touched.
  [[nodiscard]] std::optional<double> postpone(const void* target, const void* selector, double delaySeconds);
  /// Takes away every request, of any mode, with this target, this selector and the same argument, and destroys its
  /// work. Null is only the same as null; of two others that differ `sameArgument` decides.
  /// Cost: constant for each request taken away, on average.
  void cancel(const PerformKey& key, BlockView<bool(const void* argument)> sameArgument);
  /// Takes away every request with this target, and destroys its work. Cost: linear in all requests.
  void cancel(const void* target);
  /// DelayedPerforms::each in every mode.
  void each(BlockView<void(const PerformKey& key, double deadline)> body) const {
    for (const RunLoopMode* mode : modes_) mode->delayed.each(body);
  }
  /// Forgets the modes, which are about to be destroyed.
  void end() { modes_.clear(); }

  /// Runs what is due now, except what is arranged meanwhile. Result: whether anything has run.
  bool runDue(const RunLoopModes& modes);
  /// When the next work is due; empty when there is none.
  [[nodiscard]] static std::optional<double> nextDeadline(const RunLoopModes& modes);

 private:
  [[nodiscard]] DueTime dueAfter(double delaySeconds);

  std::uint64_t nextRank_ = 0;
  RunLoopMode* const defaultMode_;
  std::vector<RunLoopMode*> modes_;  // those that have held delayed work
};

// Inline: a burst of debounced calls comes through here, a call each.

inline DueTime LoopDelays::dueAfter(double delaySeconds) {
  return {monotonicSeconds() + (delaySeconds > 0 ? delaySeconds : 0), nextRank_++};
}

inline std::optional<double> LoopDelays::postpone(const void* target, const void* selector, double delaySeconds) {
  for (const RunLoopMode* mode : modes_) {
    if (mode != defaultMode_ && mode->delayed.holds(target, selector)) return std::nullopt;
  }
  const DueTime due = dueAfter(delaySeconds);
  return defaultMode_->delayed.postpone(target, selector, due) ? std::optional(due.deadline) : std::nullopt;
}

}  // namespace platform
}  // namespace havrin
