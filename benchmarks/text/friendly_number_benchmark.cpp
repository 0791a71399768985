// SPDX-License-Identifier: Apache-2.0
// Compact numbers: "thousands" are 1,000 to 99,999 ("12.3k"), "all" every magnitude alike, both signs. Every side ends
// with a string of the same text.
#include <HavrinFoundation/text/friendly_number.h>

#include <QString>
#include <absl/strings/str_format.h>
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kInputs = 4096;

std::vector<std::int64_t> numbers(bool thousands) {
  std::mt19937_64 generator(7);
  std::vector<std::int64_t> result(kInputs);
  for (auto& number : result) {
    if (thousands) {
      number = static_cast<std::int64_t>(1'000 + generator() % 99'000);
    } else {
      const auto shift = 1 + generator() % 63;
      number = static_cast<std::int64_t>(generator() >> shift) * (generator() % 2 == 0 ? 1 : -1);
    }
  }
  return result;
}

// What every peer formats: a sign, a quotient with its decimals, a unit.
struct Parts {
  bool negative, whole;
  std::uint64_t magnitude;
  double quotient;
  int decimals;
  char unit;
};

Parts partsOf(std::int64_t number) {
  Parts parts{};
  parts.negative = number < 0;
  parts.magnitude = parts.negative ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
  parts.whole = parts.magnitude <= 999;
  const bool thousands = parts.magnitude <= 999'999;
  parts.quotient = static_cast<double>(parts.magnitude) / (thousands ? 1000.0 : 1e6);
  parts.decimals = parts.quotient < 100.0 ? 1 : 0;
  parts.unit = thousands ? 'k' : 'm';
  return parts;
}

std::string ours(std::int64_t number) { return havrin::friendlyNumber(number); }

std::string fmt(std::int64_t number) {
  const Parts parts = partsOf(number);
  const char* const sign = parts.negative ? "-" : "";
  if (parts.whole) return fmt::format(FMT_STRING("{}{}"), sign, parts.magnitude);
  return fmt::format(FMT_STRING("{}{:.{}f}{}"), sign, parts.quotient, parts.decimals, parts.unit);
}

std::string toChars(std::int64_t number) {
  const Parts parts = partsOf(number);
  char text[40];
  char* at = text;
  if (parts.negative) *at++ = '-';
  if (parts.whole) {
    at = std::to_chars(at, text + sizeof text, parts.magnitude).ptr;
  } else {
    at = std::to_chars(at, text + sizeof text, parts.quotient, std::chars_format::fixed, parts.decimals).ptr;
    *at++ = parts.unit;
  }
  return {text, at};
}

std::string absl(std::int64_t number) {
  const Parts parts = partsOf(number);
  const char* const sign = parts.negative ? "-" : "";
  if (parts.whole) return absl::StrFormat("%s%d", sign, parts.magnitude);
  return absl::StrFormat("%s%.*f%c", sign, parts.decimals, parts.quotient, parts.unit);
}

QString qstring(std::int64_t number) {
  const Parts parts = partsOf(number);
  QString text = parts.whole ? QString::number(static_cast<qulonglong>(parts.magnitude))
                             : QString::number(parts.quotient, 'f', parts.decimals) + QLatin1Char(parts.unit);
  if (parts.negative) text.prepend(QLatin1Char('-'));
  return text;
}

std::string snprintf(std::int64_t number) {
  const Parts parts = partsOf(number);
  const char* const sign = parts.negative ? "-" : "";
  char text[40];
  const int length =
      parts.whole ? std::snprintf(text, sizeof text, "%s%lu", sign, parts.magnitude)
                  : std::snprintf(text, sizeof text, "%s%.*f%c", sign, parts.decimals, parts.quotient, parts.unit);
  return {text, static_cast<std::size_t>(length)};
}

template <class Format>
void measure(const char* name, Format format) {
  for (const bool thousands : {true, false}) {
    const std::string label = std::string("friendly_number/") + (thousands ? "thousands/" : "all/") + name;
    benchmark::RegisterBenchmark(label.c_str(), [=](benchmark::State& state) {
      const auto inputs = numbers(thousands);
      for (const auto number : inputs) {
        // Qt rounds ties of its shortest digits up, where printf looks at the double.
        const auto text = QString(format(number).data()).toStdString();
        if (text != ours(number) && std::string(name) != "qstring") std::abort();
      }
      std::size_t i = 0;
      for (auto _ : state) {
        auto text = format(inputs[i++ % kInputs]);
        benchmark::DoNotOptimize(text);
      }
    });
  }
}

[[maybe_unused]] const bool registered = [] {
  measure("ours", ours);
  measure("fmt", fmt);
  measure("to_chars", toChars);
  measure("absl", absl);
  measure("qstring", qstring);
  measure("snprintf", snprintf);
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
