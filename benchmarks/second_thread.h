// SPDX-License-Identifier: Apache-2.0
// Benchmarks in a process of more than one thread, as programs are: the standard library's counts leave their locked
// instructions out where there is one alone.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>

/// Runs what the command line asks for of the registered benchmarks, beside a thread that sleeps. The status of main.
inline int runBesideSecondThread(int argc, char** argv) {
  std::thread([] {
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
  }).detach();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
