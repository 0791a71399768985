// SPDX-License-Identifier: Apache-2.0
// Calendar days, month and day, and added days in New York: the computation with the calendar in hand, and the whole
// call, which finds the user's zone anew each time. Random instants over nine years.
#include <HavrinFoundation/dates/date_arithmetic.h>
#include <HavrinFoundation/platform/time/calendar.h>

#include <QDateTime>
#include <QTimeZone>
#include <absl/time/time.h>
#include <benchmark/benchmark.h>
#include <cctz/time_zone.h>
#include <date/tz.h>
#include <unicode/gregocal.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>

namespace {

using namespace havrin;

constexpr const char* kZone = "America/New_York";
constexpr std::size_t kCount = 1024;  // a power of two

struct Pair {
  std::int64_t from;
  std::int64_t to;
};

const std::array<Pair, kCount>& pairs() {
  static const std::array<Pair, kCount> made = [] {
    std::mt19937_64 random(2024);
    std::uniform_int_distribution<std::int64_t> instants(1'420'070'400, 1'704'067'200);  // 2015 to 2023
    std::array<Pair, kCount> result;
    for (Pair& pair : result) pair = {instants(random), instants(random)};
    return result;
  }();
  return made;
}

Date dateAt(std::int64_t second) { return Date::fromTimeIntervalSince1970(static_cast<double>(second)); }

void require(bool right) {
  if (!right) std::abort();
}

/// Runs `answer(pair)` over all pairs in turn, after a look whether it answers as `expected` does.
template <class Answer, class Expected>
void over(benchmark::State& state, Answer answer, Expected expected) {
  for (const Pair& pair : pairs()) require(answer(pair) == expected(pair));
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(answer(pairs()[i++ & (kCount - 1)]));
}

const Calendar& newYork() {
  static const Calendar calendar(CalendarIdentifier::gregorian, TimeZone::named(kZone).value());
  return calendar;
}

std::int64_t daysOurs(const Pair& pair) { return newYork().days(dateAt(pair.from), dateAt(pair.to)); }
bool monthAndDayOurs(const Pair& pair) {
  return newYork().monthAndDay(dateAt(pair.from)) == newYork().monthAndDay(dateAt(pair.to));
}
/// A number of days that the pair gives.
std::int64_t countOf(const Pair& pair) { return pair.to % 400 - 200; }
std::int64_t addOurs(const Pair& pair) {
  return static_cast<std::int64_t>(
      newYork().dateByAddingDays(dateAt(pair.from), countOf(pair)).timeIntervalSince1970());
}

/// The whole calls find America/New_York in TZ.
void setZone() { setenv("TZ", kZone, 1); }

tm localTime(std::int64_t second) {
  const time_t time = second;
  tm fields{};
  localtime_r(&time, &fields);
  return fields;
}
std::int64_t daysOf(const tm& fields) {
  using namespace std::chrono;
  return sys_days(year(fields.tm_year + 1900) / month(static_cast<unsigned>(fields.tm_mon + 1)) /
                  day(static_cast<unsigned>(fields.tm_mday)))
      .time_since_epoch()
      .count();
}

cctz::civil_second cctzLocal(const cctz::time_zone& zone, std::int64_t second) {
  return cctz::convert(cctz::time_point<cctz::seconds>(cctz::seconds(second)), zone);
}
absl::CivilSecond abslLocal(const absl::TimeZone& zone, std::int64_t second) {
  return absl::ToCivilSecond(absl::FromUnixSeconds(second), zone);
}
std::unique_ptr<icu::Calendar> icuCalendar() {
  UErrorCode status = U_ZERO_ERROR;
  return std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone(kZone), status);
}
void startOfDay(icu::Calendar& calendar, std::int64_t second) {
  UErrorCode status = U_ZERO_ERROR;
  calendar.setTime(static_cast<double>(second) * 1000, status);
  calendar.set(UCAL_HOUR_OF_DAY, 0);
  calendar.set(UCAL_MINUTE, 0);
  calendar.set(UCAL_SECOND, 0);
  calendar.set(UCAL_MILLISECOND, 0);
}
std::int64_t icuDays(icu::Calendar& calendar, const Pair& pair) {
  UErrorCode status = U_ZERO_ERROR;
  startOfDay(calendar, pair.to);
  const UDate to = calendar.getTime(status);
  startOfDay(calendar, pair.from);
  return calendar.fieldDifference(to, UCAL_DATE, status);
}

// --- days between ---------------------------------------------------------------------------------------------------

void daysComputation(benchmark::State& state) { over(state, daysOurs, daysOurs); }

void daysDate(benchmark::State& state) {
  const date::time_zone* zone = date::locate_zone(kZone);
  const auto dayOf = [zone](std::int64_t second) {
    return date::floor<date::days>(zone->to_local(date::sys_seconds(std::chrono::seconds(second))));
  };
  over(
      state, [&](const Pair& pair) { return (dayOf(pair.to) - dayOf(pair.from)).count(); }, daysOurs);
}
void daysCctz(benchmark::State& state) {
  cctz::time_zone zone;
  require(cctz::load_time_zone(kZone, &zone));
  over(
      state,
      [&](const Pair& pair) {
        return cctz::civil_day(cctzLocal(zone, pair.to)) - cctz::civil_day(cctzLocal(zone, pair.from));
      },
      daysOurs);
}
void daysAbsl(benchmark::State& state) {
  absl::TimeZone zone;
  require(absl::LoadTimeZone(kZone, &zone));
  over(
      state,
      [&](const Pair& pair) {
        return absl::CivilDay(abslLocal(zone, pair.to)) - absl::CivilDay(abslLocal(zone, pair.from));
      },
      daysOurs);
}
void daysLocaltime(benchmark::State& state) {
  setZone();
  tzset();
  over(
      state, [](const Pair& pair) { return daysOf(localTime(pair.to)) - daysOf(localTime(pair.from)); }, daysOurs);
}
void daysQt(benchmark::State& state) {
  const QTimeZone zone(kZone);
  over(
      state,
      [&](const Pair& pair) {
        return QDateTime::fromSecsSinceEpoch(pair.from, zone)
            .date()
            .daysTo(QDateTime::fromSecsSinceEpoch(pair.to, zone).date());
      },
      daysOurs);
}
void daysIcuReused(benchmark::State& state) {
  const auto calendar = icuCalendar();
  over(
      state, [&](const Pair& pair) { return icuDays(*calendar, pair); }, daysOurs);
}
void daysIcuCreated(benchmark::State& state) {
  over(
      state, [](const Pair& pair) { return icuDays(*icuCalendar(), pair); }, daysOurs);
}

void daysWhole(benchmark::State& state) {
  setZone();
  over(
      state, [](const Pair& pair) { return numberOfCalendarDays(dateAt(pair.from), dateAt(pair.to)); }, daysOurs);
}
void daysWholeFromLink(benchmark::State& state) {
  unsetenv("TZ");
  const auto answer = [](const Pair& pair) { return numberOfCalendarDays(dateAt(pair.from), dateAt(pair.to)); };
  over(state, answer, answer);
}
void daysWholeLocaltime(benchmark::State& state) {
  setZone();
  over(
      state,
      [](const Pair& pair) {
        tzset();
        return daysOf(localTime(pair.to)) - daysOf(localTime(pair.from));
      },
      daysOurs);
}
void daysWholeLocaltimeFromLink(benchmark::State& state) {
  unsetenv("TZ");
  const auto answer = [](const Pair& pair) {
    tzset();
    return daysOf(localTime(pair.to)) - daysOf(localTime(pair.from));
  };
  over(state, answer, answer);
}

// --- month and day --------------------------------------------------------------------------------------------------

void monthAndDayComputation(benchmark::State& state) { over(state, monthAndDayOurs, monthAndDayOurs); }

void monthAndDayCctz(benchmark::State& state) {
  cctz::time_zone zone;
  require(cctz::load_time_zone(kZone, &zone));
  over(
      state,
      [&](const Pair& pair) {
        const auto from = cctzLocal(zone, pair.from);
        const auto to = cctzLocal(zone, pair.to);
        return from.month() == to.month() && from.day() == to.day();
      },
      monthAndDayOurs);
}
void monthAndDayQt(benchmark::State& state) {
  const QTimeZone zone(kZone);
  over(
      state,
      [&](const Pair& pair) {
        const QDate from = QDateTime::fromSecsSinceEpoch(pair.from, zone).date();
        const QDate to = QDateTime::fromSecsSinceEpoch(pair.to, zone).date();
        return from.month() == to.month() && from.day() == to.day();
      },
      monthAndDayOurs);
}
void monthAndDayIcu(benchmark::State& state) {
  const auto calendar = icuCalendar();
  const auto fieldsOf = [&](std::int64_t second) {
    UErrorCode status = U_ZERO_ERROR;
    calendar->setTime(static_cast<double>(second) * 1000, status);
    return std::pair(calendar->get(UCAL_MONTH, status), calendar->get(UCAL_DATE, status));
  };
  over(
      state, [&](const Pair& pair) { return fieldsOf(pair.from) == fieldsOf(pair.to); }, monthAndDayOurs);
}

void monthAndDayWhole(benchmark::State& state) {
  setZone();
  over(
      state, [](const Pair& pair) { return isSameMonthAndDay(dateAt(pair.from), dateAt(pair.to)); }, monthAndDayOurs);
}
void monthAndDayWholeLocaltime(benchmark::State& state) {
  setZone();
  over(
      state,
      [](const Pair& pair) {
        tzset();
        const tm from = localTime(pair.from);
        const tm to = localTime(pair.to);
        return from.tm_mon == to.tm_mon && from.tm_mday == to.tm_mday;
      },
      monthAndDayOurs);
}

// --- added days -----------------------------------------------------------------------------------------------------

void addComputation(benchmark::State& state) { over(state, addOurs, addOurs); }

void addCctz(benchmark::State& state) {
  cctz::time_zone zone;
  require(cctz::load_time_zone(kZone, &zone));
  over(
      state,
      [&](const Pair& pair) {
        const cctz::civil_second from = cctzLocal(zone, pair.from);
        const cctz::civil_second to(from.year(), from.month(), from.day() + countOf(pair), from.hour(), from.minute(),
                                    from.second());
        return zone.lookup(to).pre.time_since_epoch().count();
      },
      addOurs);
}
void addAbsl(benchmark::State& state) {
  absl::TimeZone zone;
  require(absl::LoadTimeZone(kZone, &zone));
  over(
      state,
      [&](const Pair& pair) {
        const absl::CivilSecond from = abslLocal(zone, pair.from);
        const absl::CivilSecond to(from.year(), from.month(), from.day() + countOf(pair), from.hour(), from.minute(),
                                   from.second());
        return absl::ToUnixSeconds(zone.At(to).pre);
      },
      addOurs);
}
void addQt(benchmark::State& state) {
  const QTimeZone zone(kZone);
  over(
      state,
      [&](const Pair& pair) {
        return QDateTime::fromSecsSinceEpoch(pair.from, zone).addDays(countOf(pair)).toSecsSinceEpoch();
      },
      addOurs);
}
void addIcu(benchmark::State& state) {
  const auto calendar = icuCalendar();
  over(
      state,
      [&](const Pair& pair) {
        UErrorCode status = U_ZERO_ERROR;
        calendar->setTime(static_cast<double>(pair.from) * 1000, status);
        calendar->add(UCAL_DATE, static_cast<std::int32_t>(countOf(pair)), status);
        return static_cast<std::int64_t>(calendar->getTime(status) / 1000);
      },
      addOurs);
}

void addWhole(benchmark::State& state) {
  setZone();
  over(
      state,
      [](const Pair& pair) {
        return static_cast<std::int64_t>(dateByAddingDays(dateAt(pair.from), countOf(pair)).timeIntervalSince1970());
      },
      addOurs);
}
void addWholeMktime(benchmark::State& state) {
  setZone();
  over(
      state,
      [](const Pair& pair) {
        tzset();
        tm fields = localTime(pair.from);
        fields.tm_mday += static_cast<int>(countOf(pair));
        fields.tm_isdst = -1;
        return static_cast<std::int64_t>(mktime(&fields));
      },
      addOurs);
}

BENCHMARK(daysComputation)->Name("dates/days/computation/ours");
BENCHMARK(daysDate)->Name("dates/days/computation/date");
BENCHMARK(daysCctz)->Name("dates/days/computation/cctz");
BENCHMARK(daysAbsl)->Name("dates/days/computation/absl");
BENCHMARK(daysLocaltime)->Name("dates/days/computation/localtime_r");
BENCHMARK(daysQt)->Name("dates/days/computation/qt");
BENCHMARK(daysIcuReused)->Name("dates/days/computation/icu_reused");
BENCHMARK(daysIcuCreated)->Name("dates/days/computation/icu_created");
BENCHMARK(daysWhole)->Name("dates/days/whole_call/ours");
BENCHMARK(daysWholeLocaltime)->Name("dates/days/whole_call/tzset_localtime_r");
BENCHMARK(daysWholeFromLink)->Name("dates/days/whole_call_link/ours");
BENCHMARK(daysWholeLocaltimeFromLink)->Name("dates/days/whole_call_link/tzset_localtime_r");
BENCHMARK(monthAndDayComputation)->Name("dates/month_day/computation/ours");
BENCHMARK(monthAndDayCctz)->Name("dates/month_day/computation/cctz");
BENCHMARK(monthAndDayQt)->Name("dates/month_day/computation/qt");
BENCHMARK(monthAndDayIcu)->Name("dates/month_day/computation/icu_reused");
BENCHMARK(monthAndDayWhole)->Name("dates/month_day/whole_call/ours");
BENCHMARK(monthAndDayWholeLocaltime)->Name("dates/month_day/whole_call/tzset_localtime_r");
BENCHMARK(addComputation)->Name("dates/add_days/computation/ours");
BENCHMARK(addCctz)->Name("dates/add_days/computation/cctz");
BENCHMARK(addAbsl)->Name("dates/add_days/computation/absl");
BENCHMARK(addQt)->Name("dates/add_days/computation/qt");
BENCHMARK(addIcu)->Name("dates/add_days/computation/icu_reused");
BENCHMARK(addWhole)->Name("dates/add_days/whole_call/ours");
BENCHMARK(addWholeMktime)->Name("dates/add_days/whole_call/tzset_mktime");

}  // namespace

BENCHMARK_MAIN();
