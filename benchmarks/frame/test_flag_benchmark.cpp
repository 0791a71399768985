// SPDX-License-Identifier: Apache-2.0
// Whether the application runs under a test harness, beside the look-up of an absent name.
#include <HavrinFoundation/frame/test_flag.h>
#include <HavrinFoundation/frame/test_flag_messages.h>

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

using namespace havrin;

void ours(benchmark::State& state) {
  const NSProcessInfo& process = *NSProcessInfo::processInfo();
  for (auto _ : state) benchmark::DoNotOptimize(isExecutingTests(process));
}
void message(benchmark::State& state) {
  NSProcessInfo* process = NSProcessInfo::processInfo();
  for (auto _ : state) benchmark::DoNotOptimize(send<"isExecutingTests">(process));
}
void system(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(std::getenv("IS_EXECUTING_TEST"));
}

BENCHMARK(ours)->Name("test_flag/read/absent/ours");
BENCHMARK(message)->Name("test_flag/send/absent/ours");
BENCHMARK(system)->Name("test_flag/read/absent/getenv");

}  // namespace

BENCHMARK_MAIN();
