// SPDX-License-Identifier: Apache-2.0
// The date line of a protocol header: random instants over nine years as "Tue, 05 Mar 2024 14:30:00 GMT".
#include <HavrinFoundation/platform/time/date_format.h>

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>
#include <absl/time/time.h>
#include <benchmark/benchmark.h>
#include <fmt/chrono.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <string>

namespace {

using namespace havrin;

constexpr const char* kPattern = "EEE',' dd MMM yyyy HH':'mm':'ss z";
constexpr std::size_t kCount = 1024;  // a power of two

const std::array<std::int64_t, kCount>& instants() {
  static const std::array<std::int64_t, kCount> made = [] {
    std::mt19937_64 random(1123);
    std::uniform_int_distribution<std::int64_t> within(1'420'070'400, 1'704'067'200);  // 2015 to 2023
    std::array<std::int64_t, kCount> result;
    for (std::int64_t& instant : result) instant = within(random);
    return result;
  }();
  return made;
}

std::string strftimeText(std::int64_t second) {
  const time_t time = second;
  tm fields{};
  gmtime_r(&time, &fields);
  char text[64];
  return {text, std::strftime(text, sizeof text, "%a, %d %b %Y %H:%M:%S GMT", &fields)};
}

template <class Text>
void over(benchmark::State& state, Text text) {
  for (const std::int64_t instant : instants()) {
    if (text(instant) != strftimeText(instant)) std::abort();
  }
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(text(instants()[i++ & (kCount - 1)]));
}

std::unique_ptr<icu::SimpleDateFormat> icuFormat() {
  UErrorCode status = U_ZERO_ERROR;
  auto format =
      std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(kPattern), icu::Locale("en_US_POSIX"), status);
  format->setTimeZone(*icu::TimeZone::getGMT());
  return format;
}
std::string icuText(const icu::SimpleDateFormat& format, std::int64_t second) {
  icu::UnicodeString units;
  std::string text;
  return format.format(static_cast<double>(second) * 1000, units).toUTF8String(text);
}

void ours(benchmark::State& state) {
  const DateFormat format(kPattern, Locale::posix(), Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  over(state, [&](std::int64_t second) {
    return format.string(Date::fromTimeIntervalSince1970(static_cast<double>(second)));
  });
}
void withStrftime(benchmark::State& state) { over(state, strftimeText); }
void withFmt(benchmark::State& state) {
  over(state, [](std::int64_t second) {
    return fmt::format("{:%a, %d %b %Y %H:%M:%S GMT}", fmt::gmtime(static_cast<time_t>(second)));
  });
}
void withAbsl(benchmark::State& state) {
  over(state, [](std::int64_t second) {
    return absl::FormatTime("%a, %d %b %E4Y %H:%M:%S GMT", absl::FromUnixSeconds(second), absl::UTCTimeZone());
  });
}
void withQt(benchmark::State& state) {
  const QLocale c = QLocale::c();
  const QString pattern = QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'");
  over(state, [&](std::int64_t second) {
    return c.toString(QDateTime::fromSecsSinceEpoch(second, Qt::UTC), pattern).toStdString();
  });
}
void withIcuReused(benchmark::State& state) {
  const auto format = icuFormat();
  over(state, [&](std::int64_t second) { return icuText(*format, second); });
}
void withIcuCreated(benchmark::State& state) {
  over(state, [](std::int64_t second) { return icuText(*icuFormat(), second); });
}

BENCHMARK(ours)->Name("dates/rfc1123/text/ours");
BENCHMARK(withStrftime)->Name("dates/rfc1123/text/strftime");
BENCHMARK(withFmt)->Name("dates/rfc1123/text/fmt");
BENCHMARK(withAbsl)->Name("dates/rfc1123/text/absl");
BENCHMARK(withQt)->Name("dates/rfc1123/text/qt");
BENCHMARK(withIcuReused)->Name("dates/rfc1123/text/icu_reused");
BENCHMARK(withIcuCreated)->Name("dates/rfc1123/text/icu_created");

}  // namespace

BENCHMARK_MAIN();
