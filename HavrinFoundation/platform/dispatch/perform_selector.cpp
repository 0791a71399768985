// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/perform_selector.h>

#include <HavrinFoundation/platform/dispatch/run_loop_state.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <future>
#include <string>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

// A message that waits to be sent: three words, so that a run loop stores it without further memory.
struct Send {
  Strong<NSObject> target;
  Selector selector;
  Strong<NSObject> argument;

  void operator()() const { target->performSelector(selector, argument); }
};

// The arguments that a selector names are the colons in it.
void refuseSelector(Selector selector) {
  if (!selector) throw NSException(NSInvalidArgumentException, "perform: the selector is null");
  const std::string_view name = selector.name();
  if (std::count(name.begin(), name.end(), ':') > 1) {
    throw NSException(NSInvalidArgumentException,
                      "perform: " + std::string(name) + " takes more than one argument and cannot be performed");
  }
}

PerformKey keyOf(NSObject& target, Selector selector, NSObject* argument) {
  return {&target, selector.key(), argument};
}

[[noreturn]] void throwThreadEnded(Selector selector) {
  throw NSException(NSDestinationInvalidException,
                    "the thread ended before performing " + std::string(selector.name()));
}

}  // namespace

void performSelectorAfterDelay(NSObject& target, Selector selector, NSObject* argument, double delaySeconds,
                               std::string_view mode) {
  refuseSelector(selector);
  RunLoopState::current().performAfterDelay(keyOf(target, selector, argument), delaySeconds,
                                            Work(Send{&target, selector, argument}), mode);
}

void cancelPreviousPerformRequests(NSObject& target, Selector selector, NSObject* argument) {
  const Strong<NSObject> held(&target);
  const Strong<NSObject> heldArgument(argument);
  RunLoopState::current().cancelPerforms(keyOf(target, selector, argument), [argument](const void* other) {
    return static_cast<const NSObject*>(other)->isEqual(argument);
  });
}

void cancelPreviousPerformRequests(NSObject& target) {
  const Strong<NSObject> held(&target);
  RunLoopState::current().cancelPerforms(&target);
}

void reperformSelectorAfterDelay(NSObject& target, Selector selector, double delaySeconds) {
  if (RunLoopState::current().postponePerform(&target, selector.key(), delaySeconds)) return;
  refuseSelector(selector);
  const Strong<NSObject> held(&target);
  cancelPreviousPerformRequests(target, selector, nullptr);
  performSelectorAfterDelay(target, selector, nullptr, delaySeconds);
}

void performSelectorOnThread(NSObject& target, Selector selector, const NSThread& thread, NSObject* argument,
                             bool waitUntilDone) {
  refuseSelector(selector);
  Send send{&target, selector, argument};
  if (!waitUntilDone) {
    if (!thread.runLoop().perform(std::move(send))) throwThreadEnded(selector);
    return;
  }
  if (&thread.runLoop() == &RunLoop::current()) {
    send();
    return;
  }
  // The promise is broken when the closure is destroyed without having run.
  std::promise<void> done;
  std::future<void> finished = done.get_future();
  thread.runLoop().perform([send = std::move(send), done = std::move(done)]() mutable {
    struct Finish {
      std::promise<void>& done;
      ~Finish() { done.set_value(); }
    } const finish{done};
    send();
  });
  try {
    finished.get();
  } catch (const std::future_error&) {
    throwThreadEnded(selector);
  }
}

}  // namespace platform
}  // namespace havrin
