// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/mode_table.h>

#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <cstddef>
#include <utility>

namespace havrin {
inline namespace platform {

ModeTable::ModeTable() {
  modes_.push_back(std::make_unique<RunLoopMode>(NSRunLoopCommonModes));
  modes_.push_back(std::make_unique<RunLoopMode>(NSDefaultRunLoopMode));
  defaultMode_ = modes_.back().get();
  defaultMode_->isCommon = true;
}

RunLoopMode& ModeTable::modeNamed(std::string_view name) {
  for (const std::unique_ptr<RunLoopMode>& mode : modes_) {
    if (mode->name == name) return *mode;
  }
  return *modes_.emplace_back(std::make_unique<RunLoopMode>(name));
}

RunLoopModes ModeTable::modesFor(std::string_view name) {
  UnfairLockGuard guard(lock_);
  RunLoopMode& named = modeNamed(name);
  return {&named, named.isCommon ? modes_.front().get() : nullptr};
}

void ModeTable::addCommonMode(std::string_view name) {
  UnfairLockGuard guard(lock_);
  if (!ended_) modeNamed(name).isCommon = true;
}

void ModeTable::addSource(std::string_view mode) {
  UnfairLockGuard guard(lock_);
  if (!ended_) ++modeNamed(mode).sources;
}

void ModeTable::removeSource(std::string_view mode) {
  UnfairLockGuard guard(lock_);
  if (!ended_) --modeNamed(mode).sources;
}

ModeTable::Posted ModeTable::post(Work&& work, std::string_view mode) {
  Work refused;  // destroyed without the lock
  UnfairLockGuard guard(lock_);
  if (ended_) {
    refused = std::move(work);
    return Posted::kRefused;
  }
  WorkFifo& posted = modeNamed(mode).posted;
  const bool first = posted.empty();
  posted.push(std::move(work));
  return first ? Posted::kFirst : Posted::kBehindOthers;
}

// Each closure is taken out by itself, so that a nested loop goes on with the rest, and an exception leaves it where it
// is.
bool ModeTable::runPosted(const RunLoopModes& modes) {
  bool ran = false;
  for (RunLoopMode* mode : {modes.named, modes.common}) {
    if (mode == nullptr) continue;
    std::size_t left = 0;
    {
      UnfairLockGuard guard(lock_);
      left = mode->posted.size();
    }
    for (; left > 0; --left) {
      Work work;
      {
        UnfairLockGuard guard(lock_);
        if (mode->posted.empty()) break;
        work = mode->posted.pop();
      }
      work.run();
      ran = true;
    }
  }
  return ran;
}

bool ModeTable::hasPosted(const RunLoopModes& modes) {
  UnfairLockGuard guard(lock_);
  return !modes.named->posted.empty() || (modes.common != nullptr && !modes.common->posted.empty());
}

std::size_t ModeTable::posted() {
  UnfairLockGuard guard(lock_);
  std::size_t waiting = 0;
  for (const auto& mode : modes_) waiting += mode->posted.size();
  return waiting;
}

bool ModeTable::isAttached(const RunLoopModes& modes) {
  UnfairLockGuard guard(lock_);
  for (const RunLoopMode* mode : {modes.named, modes.common}) {
    if (mode != nullptr && (mode->sources > 0 || mode->delayed.size() > 0 || !mode->posted.empty())) return true;
  }
  return false;
}

ModeTable::All ModeTable::end() {
  UnfairLockGuard guard(lock_);
  ended_ = true;
  return std::exchange(modes_, {});
}

}  // namespace platform
}  // namespace havrin
