// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/loop_diagnosis.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/dispatch/worker_pool.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/class.h>

#include <cmath>
#include <cstddef>
#include <cstdio>
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

void describeLoop(std::string& text, RunLoopState& loop, bool isOwn) {
  const std::string begin = "  " + threadText(loop.threadNumber()) + ": ";
  if (isOwn) {
    const double now = monotonicSeconds();
    loop.delays.each([&](const PerformKey& key, double deadline) {
      char when[48];
      std::snprintf(when, sizeof when, deadline < now ? " is late by %.3f s\n" : " in %.3f s\n",
                    std::abs(deadline - now));
      text.append(begin).append(nameOf(key)).append(when);
    });
  }
  if (const std::size_t posted = loop.modes.posted())
    text.append(begin).append(std::to_string(posted)).append(" posted\n");
}

}  // namespace platform
}  // namespace havrin
