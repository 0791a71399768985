// SPDX-License-Identifier: Apache-2.0
// Run-time diagnosis: lines on the error stream about mistakes that are otherwise silent. Internal.
//
//   if (diagnosing()) report(Finding::unknownKey, {"Station", "tilte"});
//
// HAVRIN_DIAGNOSIS switches it on: any value but the empty one and "0", read at the first use. What is looked up for a
// finding, and what is kept to recognise one, costs nothing while it is off. docs/diagnosis.md explains each finding.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace havrin {
inline namespace platform {

enum class DiagnosisSwitch : std::uint8_t { unread, off, on };
/// Tests store `unread` when they have changed the environment.
HAVRIN_EXPORT extern constinit std::atomic<DiagnosisSwitch> diagnosisSwitch;

/// Reads the environment when that has not been done. Result: whether diagnosis is on.
[[nodiscard]] HAVRIN_EXPORT bool readDiagnosisSwitch();

/// Whether diagnosis is on. Cost: a relaxed load while it is off.
[[nodiscard]] inline bool diagnosing() {
  return diagnosisSwitch.load(std::memory_order_relaxed) != DiagnosisSwitch::off && readDiagnosisSwitch();
}

/// What is recognised, with the parts of its text, which is in diagnosis.cpp.
enum class Finding : std::uint8_t {
  unansweredSelector,  // the message that has no effect, the class, the selector, a suggestion
  performOnWorker,     // the delayed work
  performLost,         // the delayed work
  unknownKey,          // the class, the key, a suggestion
  unansweredMessage,   // the method, the names of the loaded images, a suggestion
  lateImage,           // the method, the image
  twoImages,           // the method, the first image and its category, the second image and its category
  discardedToken,      // the class of the observed object, the key paths
  outlivedObserver,    // the same
  goneObserver,        // the class of the observed object, the key path
};

/// Writes the text of a finding, with `parts` in place of {0}, {1}, ..., and the calling thread, as one line to the
/// standard error. A line that has been written before is not written again. Threads: any.
HAVRIN_EXPORT void report(Finding finding, std::initializer_list<std::string_view> parts);

/// A part's contribution to `diagnostics()` (frame/diagnostics.h, whose source lists them all). `describe` appends lines,
/// each indented by two blanks; nothing where there is nothing to list.
struct DiagnosticsSection {
  std::string_view title;
  void (*describe)(std::string& text);
};
HAVRIN_EXPORT extern const DiagnosticsSection kAwaitedLocksSection;

/// "main thread", or "thread 4711"; "another thread" for 0, which is unknown.
[[nodiscard]] HAVRIN_EXPORT std::string threadText(pid_t thread);

}  // namespace platform
}  // namespace havrin
