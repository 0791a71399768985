// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/dispatch/queue_state.h>

#include <HavrinFoundation/platform/base/misuse.h>

#include <exception>
#include <string>

namespace havrin {
inline namespace platform {
namespace {

// On a global queue: the destructor is code of the program, which must not run inside whatever replaced the value.
void destroyLater(void* context, void (*destructor)(void*)) {
  if (context == nullptr || destructor == nullptr) return;
  dispatch_async(dispatch_get_global_queue(), [context, destructor] { destructor(context); });
}

[[noreturn]] void endProcess(std::string_view label, std::string_view why) {
  abortOnMisuse("an exception left a closure on the queue " + std::string(label), why);
}

}  // namespace

QueueState::QueueState(std::string_view label, Lifetime lifetime)
    : QueueOwners(lifetime == Lifetime::kProcess ? kImmortal : 1), label_(label) {}

QueueState::~QueueState() {
  for (Specific* each = specifics_.load(std::memory_order_relaxed); each != nullptr;) {
    destroyLater(each->context.load(std::memory_order_relaxed), each->destructor);
    delete std::exchange(each, each->next);
  }
}

DispatchQueue QueueState::adopt(QueueState* state) {
  DispatchQueue queue;
  queue.owners_ = state;
  return queue;
}

DispatchQueue QueueState::reference() {
  DispatchQueue borrowed = adopt(this);
  DispatchQueue counted = borrowed;
  borrowed.owners_ = nullptr;  // the copy was counted, this handle was not
  return counted;
}

void QueueState::setSpecific(const void* key, void* context, void (*destructor)(void*)) {
  void* replaced = nullptr;
  void (*replacedDestructor)(void*) = nullptr;
  {
    UnfairLockGuard guard(specificsLock_);
    if (Specific* found = find(key)) {
      replaced = found->context.exchange(context, std::memory_order_acq_rel);
      replacedDestructor = std::exchange(found->destructor, destructor);
    } else if (context != nullptr) {
      // Readers walk the list without the lock, so an entry is linked when it is complete and stays until the queue goes.
      Specific* first = specifics_.load(std::memory_order_relaxed);
      specifics_.store(new Specific{key, context, destructor, first}, std::memory_order_release);
    }
  }
  destroyLater(replaced, replacedDestructor);
}

void QueueState::setTarget(const DispatchQueue&) {
  abortOnMisuse("dispatch_set_target_queue", "the target of a global queue or of the main queue cannot be set");
}

void QueueState::runQueued(Work work) noexcept {
  try {
    work.run();
  } catch (const std::exception& exception) {
    endProcess(label_, exception.what());
  } catch (...) {
    endProcess(label_, "it is not derived from std::exception");
  }
}

}  // namespace platform
}  // namespace havrin
