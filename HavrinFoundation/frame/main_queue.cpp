// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/main_queue.h>

#include <HavrinFoundation/frame/main_queue_mark.h>
#include <HavrinFoundation/image.h>  // its initialisers mark the main queue: without them every call would be queued
#include <HavrinFoundation/platform/dispatch/once.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/object/exception.h>

namespace havrin {

constinit void* const kMainQueueKey = const_cast<void**>(&kMainQueueKey);
constinit void* const kMainQueueValue = const_cast<void**>(&kMainQueueValue);

void SetMainQueueIdentifier() {
  static constinit dispatch_once_t onceToken;
  dispatch_once(&onceToken, [] {
    dispatch_queue_set_specific(dispatch_get_main_queue(), kMainQueueKey, kMainQueueValue, nullptr);
  });
}

void GuaranteeMainQueue(const Block<void()>& block) {
  if (!block) throw NSException(NSInvalidArgumentException, "GuaranteeMainQueue: expected a block, got null");
  if (dispatch_get_specific(kMainQueueKey) == kMainQueueValue) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): holds the block while it runs
    const Block<void()> kept = block;
    kept();
  } else {
    dispatch_async(dispatch_get_main_queue(), block);
  }
}

}  // namespace havrin
