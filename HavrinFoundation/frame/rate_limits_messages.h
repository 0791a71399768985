// SPDX-License-Identifier: Apache-2.0
// NSObject(Helpers): thinning out repeated sends of one message to one object. Messages only.
//
//   send<"h_debounce:delay:">(field, selector<"search">, 0.3);    search once, 0.3 s after the last of a burst of calls
//   send<"h_throttle:delay:">(board, selector<"refresh">, 1.0);   refresh at once, then not again until more than 1 s
//                                                                 has passed since it ended; calls between are dropped
//
// The message named takes no argument, or one object, which is null. Delays are in seconds of monotonicSeconds. A
// receiver that does not respond to the selector is left alone: that is, one whose class has no row for it. Of the
// layer's own methods `removeAllObjects` and `removeLastObject` have rows; the others are C++ members alone, which a
// selector does not reach. Wrap such a member in a Method of a class of yours. With HAVRIN_DIAGNOSIS in the environment a
// misspelt selector is reported. docs/rate-limits.md draws both on a time line.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/message.h>

namespace havrin {
inline namespace platform {

/// Sends the message later, once for all calls that come less than the delay after one another, from the default mode of
/// the run loop of the thread that made the last call; never within the call. A delay that is zero, negative or not a
/// number is over at the loop's next pass. The receiver is kept alive until then.
/// Throws: NSException (InvalidArgument) for a selector with two arguments or more.
/// Threads: any; calls made on different threads do not debounce one another.
template <>
struct Message<NSObject, "h_debounce:delay:"> : Signature<void(Selector, double)> {};

/// Sends the message now, on the calling thread, unless it has been sent this way before and no more than the interval
/// has passed since it returned; then the call is dropped. A negative interval drops nothing; one that is not a number
/// drops all but the first call. A message that throws counts as not sent.
/// Throws: what the message throws; NSException (InvalidArgument) for a selector with two arguments or more.
/// Threads: one at a time for each receiver.
template <>
struct Message<NSObject, "h_throttle:delay:"> : Signature<void(Selector, double)> {};

/// When each throttled message of this object last returned: NSNumber seconds under the selector's name. Null until one
/// has been throttled.
template <>
struct Message<NSObject, "h_throttleTimestamps"> : Signature<Strong<NSMutableDictionary>()> {};
/// Puts this very dictionary in its place; null, or an empty one, lets the next call of every selector through.
template <>
struct Message<NSObject, "setH_throttleTimestamps:"> : Signature<void(NSMutableDictionary*)> {};

}  // namespace platform
}  // namespace havrin
