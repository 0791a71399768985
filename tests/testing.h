// What most tests use: the framework, the everyday parts of the standard library, and random numbers.
//
// A random test has a new seed each run and prints it, so that a failure can be run again:
//   HAVRIN_TEST_SEED=12345 build/dev/tests/text/text_test --gtest_filter='Base36*'
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

inline std::mt19937_64 seededGenerator() {
  const char* given = std::getenv("HAVRIN_TEST_SEED");
  const std::uint64_t seed = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
  std::printf("HAVRIN_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
  return std::mt19937_64{seed};
}
