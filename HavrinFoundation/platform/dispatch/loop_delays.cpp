// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/loop_delays.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

// Whichever of the two modes has the work that is due first; null when neither has any.
RunLoopMode* modeOfFirst(const RunLoopModes& modes) {
  const std::optional<DueTime> named = modes.named->delayed.first();
  if (modes.common == nullptr || modes.common->delayed.size() == 0) return named ? modes.named : nullptr;
  return !named || *modes.common->delayed.first() < *named ? modes.common : modes.named;
}

}  // namespace

double LoopDelays::schedule(const PerformKey& key, double delaySeconds, Work&& work, RunLoopMode& mode) {
  const DueTime due = dueAfter(delaySeconds);
  if (std::find(modes_.begin(), modes_.end(), &mode) == modes_.end()) modes_.push_back(&mode);
  mode.delayed.schedule(key, due, std::move(work));
  return due.deadline;
}

// By index: code that is called or destroyed may arrange work in a further mode.
// NOLINTBEGIN(modernize-loop-convert)
void LoopDelays::cancel(const PerformKey& key, BlockView<bool(const void*)> sameArgument) {
  for (std::size_t i = 0; i < modes_.size(); ++i) modes_[i]->delayed.cancel(key, sameArgument);
}

void LoopDelays::cancel(const void* target) {
  for (std::size_t i = 0; i < modes_.size(); ++i) modes_[i]->delayed.cancel(target);
}
// NOLINTEND(modernize-loop-convert)

bool LoopDelays::runDue(const RunLoopModes& modes) {
  RunLoopMode* mode = modeOfFirst(modes);
  if (mode == nullptr) return false;
  const double now = monotonicSeconds();
  const std::uint64_t firstNewRank = nextRank_;
  bool ran = false;
  for (; mode != nullptr; mode = modeOfFirst(modes)) {
    const DueTime due = *mode->delayed.first();
    if (due.deadline > now || due.rank >= firstNewRank) break;
    Work work = mode->delayed.takeFirst();
    work.run();
    ran = true;
  }
  return ran;
}

std::optional<double> LoopDelays::nextDeadline(const RunLoopModes& modes) {
  RunLoopMode* mode = modeOfFirst(modes);
  return mode == nullptr ? std::nullopt : std::optional(mode->delayed.first()->deadline);
}

}  // namespace platform
}  // namespace havrin
