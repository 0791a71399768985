// SPDX-License-Identifier: Apache-2.0
// The object behind a reference to a queue. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/dispatch/queue.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

using detail::Work;

class QueueState : public detail::QueueOwners {
 public:
  QueueState(const QueueState&) = delete;
  QueueState& operator=(const QueueState&) = delete;
  virtual ~QueueState();

  [[nodiscard]] static QueueState& of(const DispatchQueue& queue) { return *static_cast<QueueState*>(queue.owners_); }
  /// A reference that takes over the count with which a queue is made.
  [[nodiscard]] static DispatchQueue adopt(QueueState* state);
  /// One more reference.
  [[nodiscard]] DispatchQueue reference();

  [[nodiscard]] std::string_view label() const { return label_; }
  [[nodiscard]] void* specific(const void* key) const {
    const Specific* found = find(key);
    return found == nullptr ? nullptr : found->context.load(std::memory_order_acquire);
  }
  void setSpecific(const void* key, void* context, void (*destructor)(void*));

  /// Queues `work`, from any thread.
  virtual void append(Work&& work) = 0;
  /// Runs `block` on this thread as a closure of this queue, if that needs no waiting.
  /// Result: false when it has not been run. Throws: what the block throws.
  virtual bool callAtOnce(BlockView<void()> block) = 0;
  /// Whether at most one closure runs at a time.
  [[nodiscard]] virtual bool isSerial() const = 0;
  /// How many closures wait. Threads: any.
  [[nodiscard]] virtual std::size_t waiting() = 0;
  /// The queue through which this one's closures run; null for the process's own queues.
  [[nodiscard]] virtual DispatchQueue target() = 0;
  /// Aborts on the process's own queues.
  virtual void setTarget(const DispatchQueue& target);

  /// Runs `work`. An exception that leaves it ends the process with one line, since no caller could catch it.
  void runQueued(Work work) noexcept;

 protected:
  enum class Lifetime { kProcess, kCounted };
  QueueState(std::string_view label, Lifetime lifetime);

 private:
  // Entries are only added at the front and never removed while the queue lives, so that reading needs no lock: a
  // reader acquires the list's head, which a writer releases with the entry complete. A removed value leaves null in
  // its entry.
  struct Specific {
    const void* key;
    std::atomic<void*> context;
    void (*destructor)(void*);  // guarded by the lock
    Specific* next;
  };

  [[nodiscard]] Specific* find(const void* key) const {
    Specific* each = specifics_.load(std::memory_order_acquire);
    while (each != nullptr && each->key != key) each = each->next;
    return each;
  }

  const std::string label_;
  os_unfair_lock specificsLock_;
  std::atomic<Specific*> specifics_{nullptr};
};

}  // namespace platform
}  // namespace havrin
