// SPDX-License-Identifier: Apache-2.0
// The modes of one run loop, and the posted work and the sources that keep them attached. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/dispatch/run_loop_mode.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

class ModeTable {
 public:
  enum class Posted { kRefused, kFirst, kBehindOthers };
  using All = std::vector<std::unique_ptr<RunLoopMode>>;

  /// The common modes and the default mode, which is one of them.
  ModeTable();

  [[nodiscard]] RunLoopMode& defaultMode() { return *defaultMode_; }
  /// The mode of that name, made when there is none. Threads: the loop's own.
  [[nodiscard]] RunLoopModes modesFor(std::string_view name);
  void addCommonMode(std::string_view name);
  void addSource(std::string_view mode);
  void removeSource(std::string_view mode);

  /// Appends work to a mode; when the table has ended, destroys it.
  [[nodiscard]] Posted post(Work&& work, std::string_view mode);
  /// Runs one batch of posted work: what was there at the beginning. Result: whether anything has run.
  bool runPosted(const RunLoopModes& modes);
  [[nodiscard]] bool hasPosted(const RunLoopModes& modes);
  /// How much posted work waits. Threads: any.
  [[nodiscard]] std::size_t posted();
  /// Whether a mode has work or a source.
  [[nodiscard]] bool isAttached(const RunLoopModes& modes);

  /// Whether the loop's thread has ended. Threads: the loop's own.
  [[nodiscard]] bool ended() const { return ended_; }
  /// Refuses work from now on. Result: all modes, to be destroyed by the caller. Threads: the loop's own.
  [[nodiscard]] All end();

 private:
  [[nodiscard]] RunLoopMode& modeNamed(std::string_view name) HAVRIN_THREAD_SAFETY(requires_capability(lock_));

  // Also guards the members of RunLoopMode that say so. The loop's thread alone writes `ended_` and reads it unlocked.
  os_unfair_lock lock_;
  All modes_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));  // only ever added to; the first is what is common
  bool ended_ = false;
  RunLoopMode* defaultMode_;
};

}  // namespace platform
}  // namespace havrin
