// SPDX-License-Identifier: Apache-2.0
// What most tests use: the framework, the everyday parts of the standard library, random numbers, and threads that meet.
//
// A random test has a new seed each run and prints it, so that a failure can be run again:
//   HAVRIN_TEST_SEED=12345 build/dev/tests/text/text_test --gtest_filter='Base36*'
#pragma once

#include <gtest/gtest.h>

#include <barrier>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

inline constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The rows of a table: for (const auto& [text, number] : Rows<const char*, int>{{"one", 1}, {"two", 2}}) ...
template <class... Fields>
using Rows = std::initializer_list<std::tuple<Fields...>>;

inline std::mt19937_64 seededGenerator() {
  const char* given = std::getenv("HAVRIN_TEST_SEED");
  const std::uint64_t seed = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
  std::printf("HAVRIN_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
  return std::mt19937_64{seed};
}

/// Calls `body`, with a number from 0 on if it takes one, on `count` threads that begin together, and waits for their end.
template <class Body>
void onThreads(std::size_t count, const Body& body) {
  std::barrier start(static_cast<std::ptrdiff_t>(count));
  std::vector<std::jthread> threads;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([=, &start, &body] {
      start.arrive_and_wait();
      if constexpr (std::invocable<const Body&, std::size_t>) {
        body(i);
      } else {
        body();
      }
    });
  }
}
