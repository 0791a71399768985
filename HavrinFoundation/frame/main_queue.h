// SPDX-License-Identifier: Apache-2.0
// A block on the main queue: at once when the caller is on it already, later when not.
//
//   GuaranteeMainQueue([view] { view->redraw(); });
//
// On the main queue, or on a queue that runs through it, the block has run when the call returns. Anywhere else it is
// queued and runs on the main thread's run loop. What counts is the queue, not the thread: the main thread inside a
// dispatch_sync to a private queue is not on the main queue.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/block.h>

namespace havrin {

/// Runs `block` once on the main queue: now, nested inside the caller, when the caller is on the main queue; else after
/// what has been queued there, and the call returns at once. Exported under this unadorned name.
/// Throws: what the block throws when it runs now; NSException (InvalidArgument) for a null block.
/// Threads: any.
HAVRIN_EXPORT void GuaranteeMainQueue(const Block<void()>& block) __asm__("GuaranteeMainQueue");

}  // namespace havrin
