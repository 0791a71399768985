// SPDX-License-Identifier: Apache-2.0
// The main queue, a delay and the asynchronous map for coroutines, which await them instead of passing blocks. Not in the
// umbrella header: a file that uses it includes it.
//
//   Detached refresh(Strong<Board> board, Strong<NSArray> stations) {
//     Strong<NSArray> covers = co_await asyncMapped(stations, loadCover);      one after the other
//     co_await onMainQueue();                                                  from here on the main queue
//     board->show(covers);
//     co_await delay(0.3);                                                     and from here 0.3 s later
//     board->settle();
//   }
//
// Arguments of a coroutine that it uses after its first co_await are kept in the coroutine when it takes them by value,
// as Strong: a borrowed pointer may be gone by then. What a lambda captures is in the lambda, which has to outlive the
// coroutine.
// An operation that is over when it is awaited does not suspend the coroutine, so a loop of such operations uses constant
// stack. A coroutine that waits for what never comes (a completion that is not called, a run loop that does not run) is
// not resumed and keeps its memory.
// clang 14 keeps what std::this_thread::get_id() returned over a co_await, although the thread may be another one: ask
// isMainThread().
// Cost: one allocation for each co_await that suspends or maps.
// Left out: results and cancelling of coroutines; queues other than the main queue.
#pragma once

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/frame/main_queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <atomic>
#include <coroutine>
#include <exception>
#include <memory>
#include <utility>

namespace havrin {

/// The result of a coroutine that nobody waits for: it starts at the call and ends by itself. An exception that leaves it
/// ends the process.
struct Detached {
  struct promise_type {
    Detached get_return_object() noexcept { return {}; }
    std::suspend_never initial_suspend() noexcept { return {}; }
    std::suspend_never final_suspend() noexcept { return {}; }
    void return_void() noexcept {}
    [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
  };
};

namespace detail {

// Joins a coroutine with what it waits for, which may come before the coroutine is suspended, on any thread, and more
// than once. Whichever is second resumes the coroutine.
template <class Result>
struct Awaited {
  std::coroutine_handle<> coroutine;
  Result result;
  std::atomic_flag hasCome;
  std::atomic<int> steps{0};

  void come(Result with) {
    if (hasCome.test_and_set()) return;
    result = std::move(with);
    if (steps.fetch_add(1) == 1) coroutine.resume();
  }
  // Returns false when it has come already, so that the coroutine goes on.
  [[nodiscard]] bool suspend() { return steps.fetch_add(1) == 0; }
};

struct MainQueueAwaiter {
  [[nodiscard]] bool await_ready() const noexcept { return false; }
  [[nodiscard]] bool await_suspend(std::coroutine_handle<> coroutine) const {
    const auto awaited = std::make_shared<Awaited<bool>>();
    awaited->coroutine = coroutine;
    GuaranteeMainQueue([awaited] { awaited->come(true); });
    return awaited->suspend();
  }
  void await_resume() const noexcept {}
};

struct DelayAwaiter {
  double seconds;
  [[nodiscard]] bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> coroutine) const {
    RunLoop::current().performAfter(seconds, [coroutine] { coroutine.resume(); });
  }
  void await_resume() const noexcept {}
};

struct AsyncMapAwaiter {
  Strong<NSArray> array;
  AsyncTransform transform;
  std::shared_ptr<Awaited<Strong<NSArray>>> awaited = std::make_shared<Awaited<Strong<NSArray>>>();

  [[nodiscard]] bool await_ready() const noexcept { return !array; }
  [[nodiscard]] bool await_suspend(std::coroutine_handle<> coroutine) const {
    const auto joined = awaited;  // the coroutine may end, and this with it, before the message returns
    joined->coroutine = coroutine;
    send<"asyncMap:result:">(array, transform, [joined](NSArray* results) { joined->come(Strong<NSArray>(results)); });
    return joined->suspend();
  }
  [[nodiscard]] Strong<NSArray> await_resume() const { return std::move(awaited->result); }
};

}  // namespace detail

/// Awaiting it goes on on the main queue: at once when the coroutine is there already, else after what has been queued
/// there. Threads: any.
[[nodiscard]] inline detail::MainQueueAwaiter onMainQueue() noexcept { return {}; }

/// Awaiting it goes on when so many seconds have passed and the calling thread's run loop runs, on that thread. A delay
/// that is zero, negative or NaN is over at the loop's next pass.
[[nodiscard]] inline detail::DelayAwaiter delay(double seconds) noexcept { return {seconds}; }

/// Awaiting it sends `asyncMap:result:` and gives the results, on the thread of the last completion. Null for a null
/// array. A result that comes a second time is dropped.
/// Throws, where it is awaited: what the message throws.
[[nodiscard]] inline detail::AsyncMapAwaiter asyncMapped(NSArray* array, AsyncTransform transform) {
  return {array, std::move(transform)};
}

}  // namespace havrin
