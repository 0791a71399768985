// SPDX-License-Identifier: Apache-2.0
// Debouncing and throttling, one call, with one key and with a thousand in turn. Every side reads the clock at each
// call, as its users do. "engine" is what stands under the message.
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/dispatch/perform_selector.h>
#include <HavrinFoundation/platform/object/members.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <uv.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <queue>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

using namespace havrin;

constexpr double kDelaySeconds = 0.3;

class Field : public Object<Field, NSObject> {
 public:
  void search() {}
  using Members = List<Method<"search", &Field::search>>;
};

std::size_t keys(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

void clockAlone(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(monotonicSeconds());
}
BENCHMARK(clockAlone)->Name("rate_limits/clock/alone/ours");

void debounceMessage(benchmark::State& state) {
  std::vector<Strong<Field>> fields(keys(state));
  for (auto& field : fields) field = make<Field>();
  std::size_t next = 0;
  for (auto _ : state) {
    send<"h_debounce:delay:">(*fields[next], selector<"search">, kDelaySeconds);
    if (++next == fields.size()) next = 0;
  }
  // With the selector: without it each of them would be looked for among all.
  for (auto& field : fields) cancelPreviousPerformRequests(*field, selector<"search">, nullptr);
}

void debounceEngine(benchmark::State& state) {
  std::vector<Strong<Field>> fields(keys(state));
  const Selector name = selector<"search">;
  for (auto& field : fields) {
    field = make<Field>();
    performSelectorAfterDelay(*field, name, nullptr, kDelaySeconds);
  }
  std::size_t next = 0;
  for (auto _ : state) {
    reperformSelectorAfterDelay(*fields[next], name, kDelaySeconds);
    if (++next == fields.size()) next = 0;
  }
  for (auto& field : fields) cancelPreviousPerformRequests(*field, name, nullptr);
}

// A deadline for each key, and a heap that learns of the later ones only when the old ones come.
void debouncePriorityQueue(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  std::unordered_map<std::size_t, Clock::time_point> deadlines;
  std::priority_queue<std::pair<Clock::time_point, std::size_t>> heap;
  std::size_t next = 0;
  for (auto _ : state) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(300);
    deadlines[next] = deadline;
    heap.emplace(deadline, next);
    if (heap.size() > 2 * keys(state)) heap.pop();
    if (++next == keys(state)) next = 0;
  }
}

void debounceUv(benchmark::State& state) {
  uv_loop_t loop;
  uv_loop_init(&loop);
  std::vector<uv_timer_t> timers(keys(state));
  for (uv_timer_t& timer : timers) uv_timer_init(&loop, &timer);
  std::size_t next = 0;
  for (auto _ : state) {
    uv_update_time(&loop);
    uv_timer_start(
        &timers[next], [](uv_timer_t*) {}, 300, 0);
    if (++next == timers.size()) next = 0;
  }
  for (uv_timer_t& timer : timers) uv_close(reinterpret_cast<uv_handle_t*>(&timer), nullptr);
  uv_run(&loop, UV_RUN_DEFAULT);
  uv_loop_close(&loop);
}

void debounceQt(benchmark::State& state) {
  std::vector<std::unique_ptr<QTimer>> timers(keys(state));
  for (auto& timer : timers) {
    timer = std::make_unique<QTimer>();
    timer->setSingleShot(true);
    timer->setInterval(300);
  }
  std::size_t next = 0;
  for (auto _ : state) {
    timers[next]->start();
    if (++next == timers.size()) next = 0;
  }
}

// One source for each key, whose ready time moves.
void debounceGlib(benchmark::State& state) {
  std::vector<GSource*> sources(keys(state));
  for (GSource*& source : sources) {
    source = g_timeout_source_new(300);
    g_source_attach(source, nullptr);
  }
  std::size_t next = 0;
  for (auto _ : state) {
    g_source_set_ready_time(sources[next], g_get_monotonic_time() + 300'000);
    if (++next == sources.size()) next = 0;
  }
  for (GSource* source : sources) {
    g_source_destroy(source);
    g_source_unref(source);
  }
}

void debounceAsio(benchmark::State& state) {
  asio::io_context context;
  std::vector<asio::steady_timer> timers;
  for (std::size_t i = 0; i < keys(state); ++i) timers.emplace_back(context);
  std::size_t next = 0;
  for (auto _ : state) {
    timers[next].expires_after(std::chrono::milliseconds(300));
    timers[next].async_wait([](const auto&) {});
    if (++next == timers.size()) {
      next = 0;
      context.poll();  // the handlers of what was replaced
    }
  }
  context.stop();
}

#define DEBOUNCE_BENCHMARK(function, name) \
  BENCHMARK(function)->Name("debounce/call/" name)->ArgName("keys")->Arg(1)->Arg(1000)
DEBOUNCE_BENCHMARK(debounceMessage, "ours");
DEBOUNCE_BENCHMARK(debounceEngine, "engine");
DEBOUNCE_BENCHMARK(debouncePriorityQueue, "priority_queue");
DEBOUNCE_BENCHMARK(debounceUv, "uv");
DEBOUNCE_BENCHMARK(debounceQt, "qt");
DEBOUNCE_BENCHMARK(debounceGlib, "glib");
DEBOUNCE_BENCHMARK(debounceAsio, "asio");

#define GROWTH_BENCHMARK(function, name) \
  BENCHMARK(function)->Name("growth/debounce/" name)->ArgName("size")->RangeMultiplier(10)->Range(1, 100'000)
GROWTH_BENCHMARK(debounceMessage, "ours");
GROWTH_BENCHMARK(debouncePriorityQueue, "priority_queue");
GROWTH_BENCHMARK(debounceUv, "uv");

void throttleMessage(benchmark::State& state) {
  const auto field = make<Field>();
  for (auto _ : state) send<"h_throttle:delay:">(*field, selector<"search">, 1000.0);
}
BENCHMARK(throttleMessage)->Name("throttle/dropped/one/ours");

void throttleMap(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  std::unordered_map<std::string, Clock::time_point> last;
  last["search"] = Clock::now();
  const std::string name = "search";
  int runs = 0;
  for (auto _ : state) {
    const auto found = last.find(name);
    if (found == last.end() || Clock::now() - found->second > std::chrono::seconds(1000)) ++runs;
  }
  benchmark::DoNotOptimize(runs);
}
BENCHMARK(throttleMap)->Name("throttle/dropped/one/map");

void throttleQt(benchmark::State& state) {
  QElapsedTimer timer;
  timer.start();
  int runs = 0;
  for (auto _ : state) {
    if (timer.hasExpired(1'000'000)) ++runs;
  }
  benchmark::DoNotOptimize(runs);
}
BENCHMARK(throttleQt)->Name("throttle/dropped/one/qt");

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
