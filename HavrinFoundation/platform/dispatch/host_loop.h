// SPDX-License-Identifier: Apache-2.0
// The main queue inside a foreign event loop. A program whose main thread already waits in another loop gives it
// one descriptor to watch, and calls one function when the descriptor is readable.
//
//   int descriptor = mainLoopDescriptor();      watch it for input, level-triggered
//   drainMainLoop();                            when it is readable: runs what is due, and returns
//
// Nothing else is needed: the descriptor is readable when something is queued on the main queue or posted to the main
// run loop's default mode, and when a delayed perform is due there; after a drain that left nothing it is not. A host
// that prefers time-outs of its own can ask for the next deadline. docs/event-loops.md has recipes.
//
// Left out: the run loops of other threads, other modes than the default mode, writing and error events.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <optional>

namespace havrin {
inline namespace platform {

/// The descriptor, made at the first call; it lives as long as the process and is the library's: do not read or close
/// it. The kind is one that epoll, poll and select take.
/// Throws: std::system_error when the system has no more descriptors. Threads: main; aborts on others.
[[nodiscard]] HAVRIN_EXPORT int mainLoopDescriptor();

/// Runs what is due in the main run loop's default mode, the main queue included, without waiting. What is queued
/// meanwhile leaves the descriptor readable, for the host to come back after its other work. Called from inside a
/// main-queue closure it leaves the main queue alone.
/// Throws: what a delayed perform throws. Threads: main; aborts on others.
HAVRIN_EXPORT void drainMainLoop();

/// When the next delayed perform of the default mode is due, as a reading of monotonicSeconds; empty when there is
/// none, so that a host may wait without limit. Threads: main; aborts on others.
[[nodiscard]] HAVRIN_EXPORT std::optional<double> mainLoopDeadline();

}  // namespace platform
}  // namespace havrin
