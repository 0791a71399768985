// SPDX-License-Identifier: Apache-2.0
// Messages that are sent later, or on another thread, named by their selectors.
//
//   performSelectorAfterDelay(*field, selector<"search">, nullptr, 0.3);       send<"search">(field) in 0.3 s
//   cancelPreviousPerformRequests(*field, selector<"search">, nullptr);        or never
//   performSelectorOnThread(*view, selector<"show:">, *NSThread::mainThread(), image, true);
//
// A message takes no argument or one object. Target and argument are retained until the message has been sent, the
// request is cancelled, or its thread ends.
//
// Left out: performing in the background, in several modes at once, and the results of the messages.
#pragma once

#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/dispatch/thread.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/object.h>

#include <string_view>

namespace havrin {
inline namespace platform {

/// The exception of a perform whose thread has ended.
inline constexpr std::string_view NSDestinationInvalidException = "NSDestinationInvalidException";

/// Sends the message once, from the calling thread's run loop when it runs in `mode`, after `delaySeconds` at the
/// soonest; at its next pass when the delay is zero, negative or not a number.
/// Throws: NSException (InvalidArgument) for a null selector or one with two arguments or more; nothing is arranged.
HAVRIN_EXPORT void performSelectorAfterDelay(NSObject& target, Selector selector, NSObject* argument,
                                             double delaySeconds, std::string_view mode = NSDefaultRunLoopMode);

/// Cancels what was arranged on the calling thread's run loop, in any mode, for this very target, this selector and an
/// argument that `isEqual` to `argument`; null equals null only. Target and argument are released at once.
HAVRIN_EXPORT void cancelPreviousPerformRequests(NSObject& target, Selector selector, NSObject* argument);

/// Cancels everything that was arranged on the calling thread's run loop for this very target.
HAVRIN_EXPORT void cancelPreviousPerformRequests(NSObject& target);

/// The same as cancelPreviousPerformRequests without an argument and then performSelectorAfterDelay in the default
/// mode, in one step: only the last call of a burst sends the message.
/// Throws: as performSelectorAfterDelay.
/// Cost: when a request waits and moves later, the clock and one look-up.
HAVRIN_EXPORT void reperformSelectorAfterDelay(NSObject& target, Selector selector, double delaySeconds);

/// Sends the message on `thread`. At once, inside the call, when that is the calling thread and `waitUntilDone`; else
/// from its run loop when it runs in the default mode, and returns when it has been sent if `waitUntilDone`.
/// Throws: what the message throws when it is sent at once; NSException (DestinationInvalid) when the thread has ended,
/// or ends before it has come to the message for which the caller waits; as performSelectorAfterDelay.
HAVRIN_EXPORT void performSelectorOnThread(NSObject& target, Selector selector, const NSThread& thread,
                                           NSObject* argument, bool waitUntilDone);

}  // namespace platform
}  // namespace havrin
