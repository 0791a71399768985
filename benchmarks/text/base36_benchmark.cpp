// SPDX-License-Identifier: Apache-2.0
// Base-36 text, both ways. "small" is below 2,000,000, "full" all of 64 bits, both signs. Writing ends with a string in
// upper case on every side.
#include <HavrinFoundation/text/base36.h>

#include <QString>
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kInputs = 1024;

std::vector<std::int64_t> integers(bool small) {
  std::mt19937_64 generator(7);
  std::vector<std::int64_t> result(kInputs);
  for (auto& integer : result) {
    integer = static_cast<std::int64_t>(generator());
    if (small) integer %= 2'000'000;
  }
  return result;
}

std::string writeOurs(std::int64_t integer) { return havrin::base36Value(integer); }

std::string writeToChars(std::int64_t integer) {
  char text[16];
  char* const end = std::to_chars(text, text + sizeof text, integer, 36).ptr;
  for (char* c = text; c != end; ++c) *c = *c >= 'a' ? static_cast<char>(*c - 32) : *c;
  return {text, end};
}

QString writeQString(std::int64_t integer) { return QString::number(static_cast<qlonglong>(integer), 36).toUpper(); }

std::optional<std::int64_t> readOurs(const std::string& text) { return havrin::base36ValueAsBase10(text); }

std::optional<std::int64_t> readFromChars(const std::string& text) {
  std::int64_t integer;
  const char* const end = text.data() + text.size();
  const auto [read, error] = std::from_chars(text.data(), end, integer, 36);
  if (error != std::errc() || read != end) return std::nullopt;
  return integer;
}

std::optional<std::int64_t> readStrtoll(const std::string& text) {
  errno = 0;
  char* end;
  const long long integer = std::strtoll(text.c_str(), &end, 36);
  if (errno != 0 || *end != '\0') return std::nullopt;
  return integer;
}

template <class Write>
void measureWriting(const char* label, bool small, Write write) {
  benchmark::RegisterBenchmark(label, [=](benchmark::State& state) {
    const auto inputs = integers(small);
    for (const auto integer : inputs) {
      if (readOurs(QString(write(integer).data()).toStdString()) != integer) std::abort();
    }
    std::size_t i = 0;
    for (auto _ : state) {
      auto text = write(inputs[i++ % kInputs]);
      benchmark::DoNotOptimize(text);
    }
  });
}

template <class Text, class Read>
void measureReading(const char* label, bool small, Read read) {
  benchmark::RegisterBenchmark(label, [=](benchmark::State& state) {
    std::vector<Text> inputs;
    for (const auto integer : integers(small)) {
      inputs.push_back(Text(writeOurs(integer).c_str()));
      if (read(inputs.back()) != integer) std::abort();
    }
    std::size_t i = 0;
    for (auto _ : state) {
      auto integer = read(inputs[i++ % kInputs]);
      benchmark::DoNotOptimize(integer);
    }
  });
}

std::optional<std::int64_t> readQString(const QString& text) {
  bool ok = false;
  const qlonglong integer = text.toLongLong(&ok, 36);
  if (!ok) return std::nullopt;
  return integer;
}

[[maybe_unused]] const bool registered = [] {
  measureWriting("base36/write/small/ours", true, writeOurs);
  measureWriting("base36/write/small/to_chars", true, writeToChars);
  measureWriting("base36/write/small/qstring", true, writeQString);
  measureWriting("base36/write/full/ours", false, writeOurs);
  measureWriting("base36/write/full/to_chars", false, writeToChars);
  measureWriting("base36/write/full/qstring", false, writeQString);
  measureReading<std::string>("base36/read/small/ours", true, readOurs);
  measureReading<std::string>("base36/read/small/from_chars", true, readFromChars);
  measureReading<std::string>("base36/read/small/strtoll", true, readStrtoll);
  measureReading<QString>("base36/read/small/qstring", true, readQString);
  measureReading<std::string>("base36/read/full/ours", false, readOurs);
  measureReading<std::string>("base36/read/full/from_chars", false, readFromChars);
  measureReading<std::string>("base36/read/full/strtoll", false, readStrtoll);
  measureReading<QString>("base36/read/full/qstring", false, readQString);
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
