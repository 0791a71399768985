// SPDX-License-Identifier: Apache-2.0
// The state of the process as text, for a person who looks for a mistake. What is reported without asking is in
// docs/diagnosis.md.
//
//   std::fputs(diagnostics().c_str(), stderr);
//
//           images
//             HavrinFoundation: NSObject(KeyValueCoding), NSDictionary(KeyValueCoding), ...
//           observers
//             Station 0x5581d2c0 title: Board 0x5581e6f0
//           delayed work
//             main thread: -[Field search] in 0.250 s
//           queues
//             main: 2 waiting
//             global: 0 waiting
//           awaited locks
//             none
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <string>

namespace havrin {

/// The loaded images with their categories; the observed keys with their observers; the delayed work of the calling
/// thread, and how much work is posted to each run loop; how much work waits in each queue; the locks that threads wait
/// for, with their holders.
/// Result: a title for each part, and under it lines that begin with two blanks. The text is for people: its form may
/// change. The queues that the program has made, the threads' numbers and the locks are there only where diagnosis is on.
/// Choice: uncontended locks and the delayed work of other threads are not listed, because recording them would cost every
/// lock and every debounce.
/// Cost: linear in what is listed. Runs no code of the program; takes the lock of each part in turn.
/// Threads: any. Changes that other threads make meanwhile may or may not be listed.
[[nodiscard]] HAVRIN_EXPORT std::string diagnostics();

}  // namespace havrin
