// SPDX-License-Identifier: Apache-2.0
// Dispatch queues: closures run in order, one at a time or side by side, somewhere else or here.
//
//   DispatchQueue line = dispatch_queue_create("com.example.line", DISPATCH_QUEUE_SERIAL);
//   dispatch_async(line, [] { work(); });                              returns at once; runs on a worker thread
//   dispatch_sync(line, [&] { result = state; });                      runs here, after what was queued before
//   dispatch_async(dispatch_get_main_queue(), [] { redraw(); });       runs on the main thread's run loop
//
// The **current queue** is the one whose closure is running: after a dispatch_sync the queue that was named, not the
// caller's. The main thread has the main queue as current queue whenever it is in no other queue's closure, also in a
// plain main() before any run loop. Other threads that run no queue's closure have none.
//
// The main thread is the process's first thread, whichever thread used a queue first. Its run loop runs the main queue
// (run_loop.h), or a foreign event loop does (host_loop.h). Worker threads start when something is queued on another
// queue and end after some idle seconds; none of them keeps the process alive.
//
// An exception that leaves a queued closure ends the process with one line; one that leaves a closure of dispatch_sync
// reaches the caller.
//
// Left out: barriers, groups, semaphores, sources, timers (run_loop.h has delayed work), priorities, suspending,
// dispatch_main, queues in the child of a fork.
#pragma once

#include <HavrinFoundation/platform/dispatch/work.h>
#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/block.h>

#include <atomic>
#include <concepts>
#include <cstdint>
#include <string_view>
#include <utility>

namespace havrin {

inline namespace platform {
class DispatchQueue;
class QueueState;
}  // namespace platform

namespace detail {
// The part of a queue that its references see.
class HAVRIN_EXPORT QueueOwners {
 protected:
  explicit constexpr QueueOwners(std::uint32_t count) : count_(count) {}
  ~QueueOwners() = default;

  // The process's own queues are never destroyed and count nothing.
  static constexpr std::uint32_t kImmortal = 0;

 private:
  friend class platform::DispatchQueue;

  std::atomic<std::uint32_t> count_;
};

HAVRIN_EXPORT void queueWork(const DispatchQueue& queue, Work&& work);
}  // namespace detail

inline namespace platform {

/// A shared reference to a queue; null by default. A queue lives as long as there is a reference to it or a closure on
/// it.
/// Threads: copies may be used from any thread.
class HAVRIN_EXPORT DispatchQueue {
 public:
  DispatchQueue() = default;
  DispatchQueue(const DispatchQueue& other) noexcept : owners_(other.owners_) {
    if (isCounted()) owners_->count_.fetch_add(1, std::memory_order_relaxed);
  }
  DispatchQueue(DispatchQueue&& other) noexcept : owners_(std::exchange(other.owners_, nullptr)) {}
  DispatchQueue& operator=(DispatchQueue other) noexcept {
    std::swap(owners_, other.owners_);
    return *this;
  }
  ~DispatchQueue() {
    if (isCounted() && owners_->count_.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy(owners_);
  }

  /// The text the queue was made with; lives as long as the queue.
  [[nodiscard]] std::string_view label() const;
  explicit operator bool() const { return owners_ != nullptr; }
  /// True for two references to one queue.
  friend bool operator==(const DispatchQueue&, const DispatchQueue&) = default;

 private:
  friend class QueueState;

  [[nodiscard]] bool isCounted() const {
    return owners_ != nullptr && owners_->count_.load(std::memory_order_relaxed) != detail::QueueOwners::kImmortal;
  }
  static void destroy(detail::QueueOwners* owners);

  detail::QueueOwners* owners_ = nullptr;
};

/// How many closures of a queue may run at once: one, in the order of their queueing; or any number, begun in that
/// order.
enum dispatch_queue_attr_t { DISPATCH_QUEUE_SERIAL, DISPATCH_QUEUE_CONCURRENT };

/// The queue whose closures run on the main thread. Cost: no counting; the queue is never destroyed.
[[nodiscard]] HAVRIN_EXPORT DispatchQueue dispatch_get_main_queue();

/// The process's concurrent queue, whose closures run on worker threads: as many as there are processors, and more, up
/// to 64, while those make no progress.
[[nodiscard]] HAVRIN_EXPORT DispatchQueue dispatch_get_global_queue();

/// A new queue. Its closures run as closures of `target`, the global queue when that is null.
/// Result: `label` is copied; it names the queue in messages about misuse.
[[nodiscard]] HAVRIN_EXPORT DispatchQueue dispatch_queue_create(std::string_view label, dispatch_queue_attr_t attribute,
                                                                const DispatchQueue& target = DispatchQueue());

/// Makes the closures of `queue` that have not begun run as closures of `target`, the global queue when that is null:
/// closures of all queues that target one serial queue run one at a time. The process's own queues have no target.
/// Aborts when `target` runs through `queue` itself, or `queue` is one of the process's own.
/// Throws: NSException (InvalidArgument) when `queue` is null.
HAVRIN_EXPORT void dispatch_set_target_queue(const DispatchQueue& queue, const DispatchQueue& target);

/// Queues a closure to be run once and returns at once. The closure, or its copy, is destroyed when it has run.
/// Throws: NSException (InvalidArgument) when the queue, block or function is null; nothing is queued.
/// Cost: no allocation for a block, or for a closure of at most three words.
template <class Closure>
requires std::invocable < std::decay_t<Closure>
& > void dispatch_async(const DispatchQueue& queue, Closure&& closure) {
  detail::queueWork(queue, detail::Work(std::forward<Closure>(closure)));
}

/// Runs `block` as a closure of `queue`, after everything queued before, and returns when it has run. It runs on the
/// calling thread; on the main thread when `queue` is the main queue or runs through it.
/// Aborts when the caller already holds `queue`, or a serial queue through which it runs: that could never begin.
/// Throws: what the block throws; NSException (InvalidArgument) when the queue or the block is null.
HAVRIN_EXPORT void dispatch_sync(const DispatchQueue& queue, BlockView<void()> block);

/// The value under `key` of the current queue, or else of the nearest queue through which its closure runs. Null when
/// none of them has one, or there is no current queue. Keys are compared as addresses.
/// Cost: linear in the keys of these queues; takes no lock.
[[nodiscard]] HAVRIN_EXPORT void* dispatch_get_specific(const void* key);

/// The value under `key` of this queue alone; null when it has none.
/// Throws: NSException (InvalidArgument) when `queue` is null.
[[nodiscard]] HAVRIN_EXPORT void* dispatch_queue_get_specific(const DispatchQueue& queue, const void* key);

/// Sets the value under `key`, or removes it when `context` is null. The destructor given with a value is called with
/// it on the global queue, some time after the value is replaced or removed or the queue is destroyed.
/// Throws: NSException (InvalidArgument) when `queue` is null.
HAVRIN_EXPORT void dispatch_queue_set_specific(const DispatchQueue& queue, const void* key, void* context,
                                               void (*destructor)(void*));

/// Whether this is the process's first thread.
[[nodiscard]] HAVRIN_EXPORT bool isMainThread();

}  // namespace platform
}  // namespace havrin
