// Walks every zone of the system and every transition from 1900 to 2100, a day before to a day behind it, and compares
// what the layer answers with the C library's localtime_r and mktime, in a process of its own for each zone. Takes
// minutes; run by name:
//
//   ninja -C build/dev zone_walk && build/dev/tests/platform/time/zone_walk [ZONE...]
//
// Prints the differences by kind. Each kind that is expected has its reason here; any other ends the walk with status 1.
#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/zone_rules.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

using namespace havrin;
namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kFirst = -2'208'988'800;  // 1900-01-01
constexpr std::int64_t kLast = 4'102'444'800;    // 2100-01-01
constexpr std::int64_t kStep = 900;

enum Kind : std::size_t {
  offsets,
  fields,
  uniqueReadings,
  repeatedReadings,
  skippedReadings,
  addedDays,
  addedDaysOverlap,
  addedDaysGap,
  addedDaysSkippedDay,
  startsOfDay,
  kKinds,
};

struct KindOfDifference {
  const char* what;
  const char* reason;  // null: not expected
};

constexpr KindOfDifference kKindsOfDifference[kKinds] = {
    {"offset from GMT", nullptr},
    {"month, day, hour, minute, second, weekday", nullptr},
    {"the instant of a reading that occurs once", nullptr},
    {"the instants of a reading that occurs twice", nullptr},
    {"the instants around a reading that is skipped", nullptr},
    {"a day later or earlier, to a reading that occurs once", nullptr},
    {"a day later or earlier, to a reading that occurs twice", nullptr},
    {"a day later or earlier, to a reading that is skipped",
     "mktime is free to choose a side of the gap; the layer always moves forward by it"},
    {"a day later or earlier, to a day that the zone skipped", nullptr},
    {"the first instant of a day", nullptr},
};

struct Tally {
  std::array<std::int64_t, kKinds> compared{};
  std::array<std::int64_t, kKinds> different{};
  std::array<std::int64_t, kKinds> example{};  // an instant
};

tm localTime(std::int64_t second) {
  const time_t time = second;
  tm fields{};
  localtime_r(&time, &fields);
  return fields;
}

std::int64_t readingOf(const tm& fields) {  // as if the wall clock showed GMT
  tm copy = fields;
  return timegm(&copy);
}

class Walk {
 public:
  explicit Walk(const TimeZone& zone) : rules_(zone.rules()), calendar_(CalendarIdentifier::gregorian, zone) {}

  Tally run() {
    std::int64_t offset = localTime(kFirst).tm_gmtoff;
    for (std::int64_t day = kFirst; day < kLast; day += kSecondsPerDay) {
      const std::int64_t next = localTime(day + kSecondsPerDay).tm_gmtoff;
      compare(offsets, day, rules_.offsetAt(day) == offset);
      // Two changes within a day that cancel out show at the quarter hours in between.
      for (std::int64_t at = day; at < day + kSecondsPerDay; at += 6 * 3600) {
        compare(offsets, at, rules_.offsetAt(at) == localTime(at).tm_gmtoff);
      }
      if (next != offset) walkAround(changeBetween(day, day + kSecondsPerDay));
      offset = next;
    }
    return tally_;
  }

 private:
  void compare(Kind kind, std::int64_t at, bool same) {
    ++tally_.compared[kind];
    if (same) return;
    if (tally_.different[kind]++ == 0) tally_.example[kind] = at;
  }

  static std::int64_t changeBetween(std::int64_t before, std::int64_t after) {
    const std::int64_t offset = localTime(before).tm_gmtoff;
    while (after - before > 1) {
      const std::int64_t middle = before + (after - before) / 2;
      (localTime(middle).tm_gmtoff == offset ? before : after) = middle;
    }
    return after;
  }

  void walkAround(std::int64_t change) {
    for (std::int64_t at = change - kSecondsPerDay; at <= change + kSecondsPerDay; at += kStep) compareAt(at);
    for (const std::int64_t at : {change - 1, change + 1}) compareAt(at);
    const std::int64_t gapStart = change + localTime(change - 1).tm_gmtoff;
    for (std::int64_t reading = gapStart; reading < change + localTime(change).tm_gmtoff; reading += kStep) {
      compareSkipped(reading, change);
    }
  }

  void compareAt(std::int64_t at) {
    const tm fields = localTime(at);
    compare(offsets, at, rules_.offsetAt(at) == fields.tm_gmtoff);
    const DateComponents ours = calendar_.components(Date::fromTimeIntervalSince1970(static_cast<double>(at)));
    compare(Kind::fields, at,
            ours == DateComponents{1, fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                                   fields.tm_min, fields.tm_sec, fields.tm_wday + 1});
    compareReading(at, fields);
    compareAddedDay(at, fields, 1);
    compareAddedDay(at, fields, -1);
    compareStartOfDay(at, fields);
  }

  void compareReading(std::int64_t at, const tm& fields) {
    const WallTime wall = rules_.wallTime(readingOf(fields));
    tm copy = fields;
    copy.tm_isdst = -1;
    const std::int64_t theirs = mktime(&copy);
    if (wall.kind == WallTime::Kind::repeated) {
      compare(repeatedReadings, at,
              (at == wall.early || at == wall.late) && (theirs == wall.early || theirs == wall.late));
    } else {
      compare(uniqueReadings, at, wall.kind == WallTime::Kind::unique && wall.early == at && theirs == at);
    }
  }

  void compareSkipped(std::int64_t reading, std::int64_t change) {
    const WallTime wall = rules_.wallTime(reading);
    compare(skippedReadings, change,
            wall.kind == WallTime::Kind::skipped && wall.jump == change &&
                wall.early == reading - localTime(change).tm_gmtoff &&
                wall.late == reading - localTime(change - 1).tm_gmtoff);
  }

  void compareAddedDay(std::int64_t at, const tm& fields, int days) {
    const std::int64_t ours = rules_.addDays(at, days);
    const WallTime wall = rules_.wallTime(readingOf(fields) + days * kSecondsPerDay);
    const bool isRepeated = wall.kind == WallTime::Kind::repeated;
    tm copy = fields;
    copy.tm_mday += days;
    copy.tm_isdst = isRepeated ? fields.tm_isdst : -1;
    const std::int64_t theirs = mktime(&copy);
    Kind kind = isRepeated ? addedDaysOverlap : addedDays;
    bool lawful = ours == wall.early || ours == wall.late;
    if (wall.kind == WallTime::Kind::skipped) {
      const bool wholeDay = wall.late - wall.early >= kSecondsPerDay;
      kind = wholeDay ? addedDaysSkippedDay : addedDaysGap;
      lawful = ours == (wholeDay && days < 0 ? wall.early : wall.late);  // wherever the two may part
    }
    compare(lawful ? kind : addedDays, at, lawful && ours == theirs);
  }

  void compareStartOfDay(std::int64_t at, const tm& fields) {
    const auto isSameDay = [&fields](std::int64_t other) {
      const tm otherFields = localTime(other);
      return otherFields.tm_mday == fields.tm_mday && otherFields.tm_mon == fields.tm_mon &&
             otherFields.tm_year == fields.tm_year;
    };
    // The first quarter hour that belongs to the day, counted from two days before, and then back to the very second.
    std::int64_t first = at - 2 * kSecondsPerDay;
    first -= ((first % kStep) + kStep) % kStep;
    while (!isSameDay(first)) first += kStep;
    std::int64_t before = first - kStep;
    while (first - before > 1) {
      const std::int64_t middle = before + (first - before) / 2;
      (isSameDay(middle) ? first : before) = middle;
    }
    compare(startsOfDay, at, rules_.startOfDay(at) == first);
  }

  const ZoneRules& rules_;
  const Calendar calendar_;
  Tally tally_;
};

/// Every name under which the system has a zone, "posix/" and "right/" aside, which repeat them.
std::vector<std::string> everyZone() {
  const fs::path folder = "/usr/share/zoneinfo";
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    char mark[4] = {};
    std::ifstream(entry.path(), std::ios::binary).read(mark, sizeof mark);
    const std::string name = entry.path().lexically_relative(folder).string();
    if (std::string_view(mark, sizeof mark) != "TZif" || name.starts_with("posix/") || name.starts_with("right/"))
      continue;
    names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// Walks one zone in a process of its own, which has its own TZ.
Tally walkInProcess(const std::string& name) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    setenv("TZ", name.c_str(), 1);
    tzset();
    const Tally tally = Walk(TimeZone::current()).run();
    if (write(ends[1], &tally, sizeof tally) != sizeof tally) std::abort();
    _exit(0);
  }
  close(ends[1]);
  Tally tally;
  const bool complete = read(ends[0], &tally, sizeof tally) == sizeof tally;
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!complete || status != 0) {
    std::fprintf(stderr, "%s: the walk ended with status %d\n", name.c_str(), status);
    std::exit(1);
  }
  return tally;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> zones = argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : everyZone();
  Tally sum;
  std::array<std::string, kKinds> examples;
  for (const std::string& name : zones) {
    const Tally tally = walkInProcess(name);
    for (std::size_t kind = 0; kind < kKinds; ++kind) {
      sum.compared[kind] += tally.compared[kind];
      sum.different[kind] += tally.different[kind];
      if (tally.different[kind] == 0) continue;
      if (examples[kind].size() < 200) examples[kind] += ' ' + name + '@' + std::to_string(tally.example[kind]);
    }
  }
  bool failed = false;
  std::printf("%zu zones\n", zones.size());
  for (std::size_t kind = 0; kind < kKinds; ++kind) {
    std::printf("%10lld of %10lld  %s\n", static_cast<long long>(sum.different[kind]),
                static_cast<long long>(sum.compared[kind]), kKindsOfDifference[kind].what);
    if (sum.different[kind] == 0) continue;
    const char* reason = kKindsOfDifference[kind].reason;
    std::printf("    %s\n    as in%s\n", reason == nullptr ? "not expected" : reason, examples[kind].c_str());
    failed = failed || reason == nullptr;
  }
  return failed ? 1 : 0;
}
