// SPDX-License-Identifier: Apache-2.0
// What a program pays before it does anything: processor time and memory until it has printed one line, by the libraries
// that it is linked with; and the heap of a class at its first use.
#include <HavrinFoundation/platform/object/members.h>

#include <benchmark/benchmark.h>
#include <spawn.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

using namespace havrin;

struct Started {
  double seconds;
  double bytes;
};

// Runs a program to its end. Throws nothing: seconds are negative where it could not be run.
Started run(const char* path) {
  int ends[2];
  if (pipe(ends) != 0) return {-1, 0};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  std::string name = path;
  std::array<char*, 2> arguments{name.data(), nullptr};
  pid_t child = 0;
  const bool spawned = posix_spawn(&child, path, &actions, nullptr, arguments.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::array<char, 32> text{};
  if (spawned && read(ends[0], text.data(), text.size() - 1) < 0) text = {};
  close(ends[0]);
  int status = 0;
  rusage usage{};
  if (!spawned || wait4(child, &status, 0, &usage) != child || status != 0) return {-1, 0};
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return {seconds(usage.ru_utime) + seconds(usage.ru_stime), std::strtod(text.data(), nullptr)};
}

void start(benchmark::State& state, const char* path) {
  double bytes = 0;
  for (auto _ : state) {
    const Started started = run(path);
    if (started.seconds < 0) {
      state.SkipWithError(path);
      break;
    }
    state.SetIterationTime(started.seconds);
    bytes = started.bytes;
  }
  state.counters["MB"] = bytes / 1e6;
}

constexpr int kClasses = 50;

// Ten messages, two of them a property's.
template <int N>
class Ten : public Object<Ten<N>, NSObject> {
 public:
  std::int64_t value = 0;
  template <int I>
  std::int64_t read() {
    return value + I;
  }
  using Members =
      List<Property<"value", &Ten::value>, Method<"a", &Ten::template read<0>>, Method<"b", &Ten::template read<1>>,
           Method<"c", &Ten::template read<2>>, Method<"d", &Ten::template read<3>>,
           Method<"e", &Ten::template read<4>>, Method<"f", &Ten::template read<5>>,
           Method<"g", &Ten::template read<6>>, Method<"h", &Ten::template read<7>>>;
};

template <int... N>
std::int64_t useClasses(std::integer_sequence<int, N...>) {
  std::int64_t sum = 0;
  const auto use = [&](auto object) {
    send<"setValue:">(object, 1);
    sum += send<"a">(object) + send<"b">(object) + send<"c">(object) + send<"d">(object) + send<"e">(object) +
           send<"f">(object) + send<"g">(object) + send<"h">(object) + send<"value">(object);
  };
  (use(make<Ten<N>>()), ...);
  return sum;
}

// A class is made once in a process: one iteration.
void firstUse(benchmark::State& state) {
  const auto before = mallinfo2().uordblks;
  for (auto _ : state) benchmark::DoNotOptimize(useClasses(std::make_integer_sequence<int, kClasses>()));
  state.counters["bytes of heap a class"] = static_cast<double>(mallinfo2().uordblks - before) / kClasses;
}

void registerStart(const char* name, const char* path) {
  benchmark::RegisterBenchmark(name, start, path)->UseManualTime()->Iterations(50)->Unit(benchmark::kMicrosecond);
}

}  // namespace

int main(int count, char** arguments) {
  benchmark::Initialize(&count, arguments);
  benchmark::RegisterBenchmark("start/fifty_classes", firstUse)->Iterations(1)->Unit(benchmark::kMicrosecond);
  registerStart("start/plain", HAVRIN_START_PLAIN);
  registerStart("start/third_party", HAVRIN_START_THIRD_PARTY);
  registerStart("start/typed", HAVRIN_START_TYPED);
  registerStart("start/both", HAVRIN_START_BOTH);
  registerStart("start/qt", HAVRIN_START_QT);
  benchmark::RunSpecifiedBenchmarks();
}
