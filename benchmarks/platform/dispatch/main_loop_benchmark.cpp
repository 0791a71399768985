// SPDX-License-Identifier: Apache-2.0
// The main queue beside other libraries' loops: asking whether one is on it, posting to it, and how long a post takes
// to be run. "post/share" is what the poster spends; "post/run" posts from another thread until all has been run;
// "post/asleep" wakes another thread, which posts to the loop that sleeps meanwhile. The times of the first two are those of the
// whole batch, of 1000 posts and of 20000 by each producer.
#include "benchmarks/second_thread.h"
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>

#include <QCoreApplication>
#include <QThread>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <uv.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <limits>
#include <mutex>
#include <semaphore>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

using namespace havrin;

constexpr double kForever = std::numeric_limits<double>::infinity();

// Each loop: post a closure from any thread, and run until a count is reached, on the thread that made it.

class Ours {
 public:
  template <class F>
  void post(F closure) {
    dispatch_async(main_, std::move(closure));
  }
  void runUntil(const std::int64_t& count, std::int64_t wanted) {
    while (count < wanted) RunLoop::main().runMode(NSDefaultRunLoopMode, kForever);
  }

 private:
  const DispatchQueue main_ = dispatch_get_main_queue();
};

class ConditionVariable {
 public:
  template <class F>
  void post(F closure) {
    {
      const std::lock_guard guard(mutex_);
      pending_.emplace_back(std::move(closure));
    }
    ready_.notify_one();
  }
  void runUntil(const std::int64_t& count, std::int64_t wanted) {
    std::vector<std::function<void()>> batch;
    while (count < wanted) {
      {
        std::unique_lock lock(mutex_);
        ready_.wait(lock, [this] { return !pending_.empty(); });
        batch.swap(pending_);
      }
      for (const auto& closure : batch) closure();
      batch.clear();
    }
  }

 private:
  std::mutex mutex_;
  std::condition_variable ready_;
  std::vector<std::function<void()>> pending_;
};

class LibUv {
 public:
  LibUv() {
    uv_loop_init(&loop_);
    uv_async_init(&loop_, &async_, [](uv_async_t* async) { static_cast<LibUv*>(async->data)->drain(); });
    async_.data = this;
  }
  ~LibUv() {
    uv_close(reinterpret_cast<uv_handle_t*>(&async_), nullptr);
    uv_run(&loop_, UV_RUN_DEFAULT);
    uv_loop_close(&loop_);
  }
  template <class F>
  void post(F closure) {
    {
      const std::lock_guard guard(mutex_);
      pending_.emplace_back(std::move(closure));
    }
    uv_async_send(&async_);
  }
  void runUntil(const std::int64_t& count, std::int64_t wanted) {
    while (count < wanted) uv_run(&loop_, UV_RUN_ONCE);
  }

 private:
  void drain() {
    {
      const std::lock_guard guard(mutex_);
      batch_.swap(pending_);
    }
    for (const auto& closure : batch_) closure();
    batch_.clear();
  }
  uv_loop_t loop_;
  uv_async_t async_;
  std::mutex mutex_;
  std::vector<std::function<void()>> pending_;
  std::vector<std::function<void()>> batch_;
};

class Asio {
 public:
  template <class F>
  void post(F closure) {
    asio::post(context_, std::move(closure));
  }
  void runUntil(const std::int64_t& count, std::int64_t wanted) {
    while (count < wanted) context_.run_one();
  }

 private:
  asio::io_context context_;
  asio::executor_work_guard<asio::io_context::executor_type> work_ = asio::make_work_guard(context_);
};

class GLib {
 public:
  template <class F>
  void post(F closure) {
    g_main_context_invoke_full(
        nullptr, G_PRIORITY_DEFAULT,
        [](gpointer data) -> gboolean {
          (*static_cast<F*>(data))();
          return G_SOURCE_REMOVE;
        },
        new F(std::move(closure)), [](gpointer data) { delete static_cast<F*>(data); });
  }
  void runUntil(const std::int64_t& count, std::int64_t wanted) {
    while (count < wanted) g_main_context_iteration(nullptr, TRUE);
  }
};

class Qt {
 public:
  template <class F>
  void post(F closure) {
    QMetaObject::invokeMethod(&receiver_, std::move(closure), ::Qt::QueuedConnection);
  }
  void runUntil(const std::int64_t& count, std::int64_t wanted) {
    while (count < wanted) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

 private:
  QObject receiver_;
};

constexpr std::int64_t kBatch = 1000;

// The closures are two words. Runs between the batches are not timed. GLib runs at once what the loop's own thread
// posts, so there another thread would be needed; it is left out here.
template <class Loop>
void share(benchmark::State& state) {
  Loop loop;
  std::int64_t count = 0;
  std::int64_t wanted = 0;
  std::int64_t step = 1;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    for (std::int64_t i = 0; i < kBatch; ++i) loop.post([&count, &step] { count += step; });
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    loop.runUntil(count, wanted += kBatch);
    state.SetIterationTime(took.count());
  }
}
BENCHMARK(share<Ours>)->Name("post/share/1000/ours")->UseManualTime();
BENCHMARK(share<ConditionVariable>)->Name("post/share/1000/condvar")->UseManualTime();
BENCHMARK(share<LibUv>)->Name("post/share/1000/uv")->UseManualTime();
BENCHMARK(share<Asio>)->Name("post/share/1000/asio")->UseManualTime();
BENCHMARK(share<Qt>)->Name("post/share/1000/qt")->UseManualTime();

template <class Loop>
void untilRun(benchmark::State& state) {
  constexpr std::int64_t kEach = 20'000;
  const auto producers = state.range(0);
  Loop loop;
  std::int64_t count = 0;
  std::int64_t wanted = 0;
  std::atomic<bool> over{false};
  std::counting_semaphore<> go(0);
  std::vector<std::thread> threads;
  for (std::int64_t t = 0; t < producers; ++t) {
    threads.emplace_back([&] {
      for (go.acquire(); !over; go.acquire()) {
        for (std::int64_t i = 0; i < kEach; ++i) loop.post([&count] { ++count; });
      }
    });
  }
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    go.release(producers);
    loop.runUntil(count, wanted += kEach * producers);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(took.count());
  }
  over = true;
  go.release(producers);
  for (std::thread& thread : threads) thread.join();
}

template <class Loop>
void asleep(benchmark::State& state) {
  Loop loop;
  std::int64_t count = 0;
  std::int64_t wanted = 0;
  std::counting_semaphore<> go(0);
  std::atomic<bool> over{false};
  // The poster has to be woken first, and the loop is asleep by then.
  std::thread poster([&] {
    for (go.acquire(); !over; go.acquire()) loop.post([&count] { ++count; });
  });
  for (auto _ : state) {
    go.release();
    loop.runUntil(count, ++wanted);
  }
  over = true;
  go.release();
  poster.join();
}

#define LOOP_BENCHMARKS(Loop, name)  \
  BENCHMARK(untilRun<Loop>)          \
      ->Name("post/run/20000/" name) \
      ->ArgName("producers")         \
      ->RangeMultiplier(2)           \
      ->Range(1, 8)                  \
      ->UseManualTime();             \
  BENCHMARK(asleep<Loop>)->Name("post/asleep/round_trip/" name)->UseRealTime()
LOOP_BENCHMARKS(Ours, "ours");
LOOP_BENCHMARKS(ConditionVariable, "condvar");
LOOP_BENCHMARKS(LibUv, "uv");
LOOP_BENCHMARKS(Asio, "asio");
LOOP_BENCHMARKS(GLib, "glib");
LOOP_BENCHMARKS(Qt, "qt");

int mainKey;
int mainValue;

void onMainQueue(benchmark::State& state) {
  dispatch_queue_set_specific(dispatch_get_main_queue(), &mainKey, &mainValue, nullptr);
  for (auto _ : state) benchmark::DoNotOptimize(dispatch_get_specific(&mainKey) == &mainValue);
}
BENCHMARK(onMainQueue)->Name("on_main/ask/direct/ours");

void onMainThroughTarget(benchmark::State& state) {
  const DispatchQueue through = dispatch_queue_create("through", DISPATCH_QUEUE_SERIAL, dispatch_get_main_queue());
  bool done = false;
  dispatch_async(through, [&] {
    for (auto _ : state) benchmark::DoNotOptimize(dispatch_get_specific(&mainKey) == &mainValue);
    done = true;
  });
  while (!done) RunLoop::main().runMode(NSDefaultRunLoopMode, kForever);
}
BENCHMARK(onMainThroughTarget)->Name("on_main/ask/through/ours");

void onAsioLoop(benchmark::State& state) {
  asio::io_context context;
  asio::post(context, [&] {
    const auto executor = context.get_executor();
    for (auto _ : state) benchmark::DoNotOptimize(executor.running_in_this_thread());
  });
  context.run();
}
BENCHMARK(onAsioLoop)->Name("on_main/ask/direct/asio");

void onQtThread(benchmark::State& state) {
  QThread* const mainThread = QThread::currentThread();
  for (auto _ : state) benchmark::DoNotOptimize(QThread::currentThread() == mainThread);
}
BENCHMARK(onQtThread)->Name("on_main/ask/direct/qt");

void onGlibContext(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(g_main_context_is_owner(g_main_context_default()));
}
BENCHMARK(onGlibContext)->Name("on_main/ask/direct/glib");

// Five seconds with one delayed perform at their end and nothing else: how often the thread was woken, and what that
// cost. An idle loop sleeps.
void idleOurs(benchmark::State& state) {
  constexpr double kSeconds = 5;
  for (auto _ : state) {
    rusage before{};
    getrusage(RUSAGE_THREAD, &before);
    bool done = false;
    RunLoop::current().performAfter(kSeconds, [&done] { done = true; });
    while (!done) RunLoop::current().runUntil(monotonicSeconds() + kSeconds);
    rusage after{};
    getrusage(RUSAGE_THREAD, &after);
    state.counters["wakeups"] = static_cast<double>(after.ru_nvcsw - before.ru_nvcsw);
  }
}
BENCHMARK(idleOurs)->Name("idle/five_seconds/ours")->Iterations(1)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  return runBesideSecondThread(argc, argv);
}
