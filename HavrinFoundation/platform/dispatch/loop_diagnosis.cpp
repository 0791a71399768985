// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/loop_diagnosis.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/worker_pool.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/class.h>

#include <string>

namespace havrin {
inline namespace platform {
namespace {

// "-[Field search]", or "a closure" for work without a key.
std::string nameOf(const PerformKey& key) {
  if (key.target == nullptr) return "a closure";
  const Selector selector(static_cast<const SelectorRecord*>(key.selector));
  return methodName(*dispatchClass(static_cast<const NSObject*>(key.target)), selector.name());
}

}  // namespace

void diagnoseDelayed(const PerformKey& key) {
  if (WorkerPool::shared().isWorker()) report(Finding::performOnWorker, {nameOf(key)});
}

void diagnoseEnd(const LoopDelays& delays) {
  delays.each([](const PerformKey& key, double) { report(Finding::performLost, {nameOf(key)}); });
}

}  // namespace platform
}  // namespace havrin
