// Random numbers for tests: a new seed each run, printed, so that a failure can be run again.
//
//   HAVRIN_TEST_SEED=12345 build/dev/tests/text/text_test --gtest_filter='Base36*'
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>

inline std::mt19937_64 seededGenerator() {
  const char* given = std::getenv("HAVRIN_TEST_SEED");
  const std::uint64_t seed = given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
  std::printf("HAVRIN_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
  return std::mt19937_64{seed};
}
