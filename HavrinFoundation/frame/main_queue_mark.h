// SPDX-License-Identifier: Apache-2.0
// The mark by which GuaranteeMainQueue recognises the main queue: a queue-specific value. Internal; not installed.
#pragma once

namespace havrin {

// Each holds its own address, so that it equals no other key or value in the process.
extern void* const kMainQueueKey;
extern void* const kMainQueueValue;

/// Marks the main queue, at the first call; run when the library is loaded.
void SetMainQueueIdentifier();

}  // namespace havrin
