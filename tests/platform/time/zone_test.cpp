// SPDX-License-Identifier: Apache-2.0
#include "../../temporary_folder.h"
#include "../../testing.h"
#include "pinned_environment.h"
#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/system_zone.h>
#include <HavrinFoundation/platform/time/zone.h>
#include <HavrinFoundation/platform/time/zone_rules.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <atomic>
#include <sys/stat.h>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;
namespace fs = std::filesystem;

const fs::path kZones = "/usr/share/zoneinfo";

Date at(double secondsSince1970) { return Date::fromTimeIntervalSince1970(secondsSince1970); }

TEST(Zone, IsTheOneThatTzNames) {
  for (const auto& [variable, name, offset, why] : Rows<std::string, const char*, std::int64_t, const char*>{
           {"Asia/Tokyo", "Asia/Tokyo", 32400, "a name"},
           {":Asia/Tokyo", "Asia/Tokyo", 32400, "a name behind a colon"},
           {"/usr/share/zoneinfo/Europe/Paris", "Europe/Paris", 7200, "a path into the zone files"},
           {"Etc/GMT+5", "Etc/GMT+5", -18000, "the sign of POSIX"},
           {"UTC", "GMT", 0, "a name of UTC"},
           {"", "GMT", 0, "empty"},
           {"Foo/Bar", "GMT", 0, "no such zone"},
           {"asia/tokyo", "GMT", 0, "names have their case"},
           {"<+03>-3", "GMT", 0, "POSIX rules"},
           {"tzdata.zi", "GMT", 0, "not a zone file"},
           {"right/Asia/Tokyo", "GMT", 0, "counts leap seconds"},
           {"../zoneinfo/Asia/Tokyo", "GMT", 0, "a step out of the folder"},
           {"/dev/zero", "GMT", 0, "a device"},
           {std::string(100'000, 'x'), "GMT", 0, "far too long"},
       }) {
    SCOPED_TRACE(why);
    const PinnedEnvironment environment(variable.c_str());
    for (int repetition = 0; repetition < 2; ++repetition) {
      EXPECT_EQ(TimeZone::current().name(), name);
      EXPECT_EQ(TimeZone::current().secondsFromGmt(at(1719792000)), offset);
    }
  }
  EXPECT_EQ(TimeZone::named("Asia/Atlantis"), std::nullopt);
  EXPECT_EQ(TimeZone::named("/usr/share/zoneinfo/Asia/Tokyo"), std::nullopt) << "a path is not a name";
  EXPECT_EQ(TimeZone::named(std::string_view("Asia/Tokyo\0x", 12)), std::nullopt);
  EXPECT_EQ(TimeZone::named("Greenwich"), TimeZone::gmt());
}

TEST(Zone, HasItsOffsetAtEveryInstant) {
  for (const auto& [zoneName, instant, offset, daylight, why] :
       Rows<const char*, double, std::int64_t, bool, const char*>{
           {"America/New_York", 1710053999.999, -18000, false, "a fraction before summer"},
           {"America/New_York", -5e9, -17762, false, "local mean time, before zones"},
           {"America/New_York", 1e12, -14400, true, "the rules go on for ever: September 33658"},
           {"America/New_York", 1e12 + 90 * 86400, -18000, false, "and its December"},
           {"America/New_York", -1e300, -17762, false, "and at their beginning"},
           {"GMT", kNotANumber, 0, false, "not a number"},
       }) {
    SCOPED_TRACE(why);
    const TimeZone zone = TimeZone::named(zoneName).value();
    EXPECT_EQ(zone.secondsFromGmt(at(instant)), offset);
    EXPECT_EQ(zone.isDaylightSavingTime(at(instant)), daylight);
  }
}

// Two centuries of every zone, beside the C library's reading of the same files.
TEST(Zone, AgreesWithTheCLibraryInEveryZone) {
  constexpr std::int64_t kFirst = -2'208'988'800, kLast = 4'102'444'800;  // 1900-01-01 and 2100-01-01
  std::mt19937_64 random = seededGenerator();
  for (const auto& entry : fs::recursive_directory_iterator(kZones)) {
    const std::string name = entry.path().lexically_relative(kZones).string();
    if (!entry.is_regular_file() || !TimeZone::named(name)) continue;
    SCOPED_TRACE(name);
    const PinnedEnvironment environment(name.c_str());
    tzset();
    const TimeZone zone = TimeZone::named(name).value();
    const auto fieldsAt = [](std::int64_t second) {
      tm fields;
      return *localtime_r(&second, &fields);
    };
    const auto compare = [&](std::int64_t second) {
      tm fields = fieldsAt(second);
      ASSERT_EQ(zone.secondsFromGmt(at(static_cast<double>(second))), fields.tm_gmtoff) << second;
      ASSERT_EQ(zone.isDaylightSavingTime(at(static_cast<double>(second))), fields.tm_isdst > 0) << second;
      const WallTime wall = zone.rules().wallTime(timegm(&fields));
      ASSERT_TRUE(wall.early == second || wall.late == second) << second;
    };
    for (int i = 0; i < 50; ++i) {
      std::int64_t before = kFirst + static_cast<std::int64_t>(random() % (kLast - kFirst));
      std::int64_t after = before + 100 * kSecondsPerDay;
      compare(before);
      const auto offset = fieldsAt(before).tm_gmtoff;
      if (fieldsAt(after).tm_gmtoff == offset) continue;
      while (after - before > 1) {  // to a change between the two
        const std::int64_t middle = before + (after - before) / 2;
        (fieldsAt(middle).tm_gmtoff == offset ? before : after) = middle;
      }
      for (const std::int64_t beside : {-3600, -1, 0, 3600}) compare(after + beside);
    }
  }
  tzset();
}

/// A folder of its own, whose "localtime" the layer takes for the system's.
class SystemZone : public ::testing::Test {
 protected:
  ~SystemZone() override { setZonePaths(former_); }

  fs::path link() const { return folder_.path() / "localtime"; }

  /// Lets `link` lead to `target`, as an administrator would: a new link takes the old one's name.
  void relink(const fs::path& target) {
    fs::create_symlink(target, folder_.path() / "new");
    fs::rename(folder_.path() / "new", link());
  }

  void write(const std::string& bytes) {
    fs::remove(link());
    folder_.write("localtime", bytes);
    resetSystemTimeZone();
  }

  const PinnedEnvironment environment_;
  const TemporaryFolder folder_;
  const ZonePaths former_ = setZonePaths({kZones.string(), link().string()});
};

TEST_F(SystemZone, FollowsTheLinkOnceTheClockHasMoved) {
  auto clock = std::make_unique<TestClock>();
  relink(kZones / "Europe/Paris");
  resetSystemTimeZone();
  EXPECT_EQ(TimeZone::current().name(), "Europe/Paris");
  relink(kZones / "Asia/Tokyo");
  EXPECT_EQ(TimeZone::current().name(), "Europe/Paris") << "not looked at again before";
  clock->spend(0.004);
  EXPECT_EQ(TimeZone::current().name(), "Asia/Tokyo");
  relink(kZones / "Asia/Kolkata");
  clock = nullptr;
  clock = std::make_unique<TestClock>();
  clock->spend(0.004);
  EXPECT_EQ(TimeZone::current().name(), "Asia/Kolkata") << "another clock with the same reading";
  fs::remove(link());
  clock->spend(0.004);
  EXPECT_EQ(TimeZone::current(), TimeZone::gmt()) << "no link at all";
  relink(kZones / "Asia/Tokyo");
  resetSystemTimeZone();
  EXPECT_EQ(TimeZone::current().name(), "Asia/Tokyo") << "at once";
  PinnedEnvironment::set("TZ", "Africa/Cairo");
  EXPECT_EQ(TimeZone::current().name(), "Africa/Cairo") << "TZ comes first";
}

TEST_F(SystemZone, IsGmtWhereThereAreNoZoneFiles) {
  relink(kZones / "Europe/Paris");
  setZonePaths({(folder_.path() / "nowhere").string(), (folder_.path() / "absent").string()});
  EXPECT_EQ(TimeZone::current(), TimeZone::gmt());
  EXPECT_EQ(TimeZone::named("Europe/Paris"), std::nullopt);
  PinnedEnvironment::set("TZ", "Europe/Paris");
  EXPECT_EQ(TimeZone::current(), TimeZone::gmt());
  setZonePaths({kZones.string(), link().string()});
  EXPECT_EQ(TimeZone::current().name(), "Europe/Paris") << "zone files that were installed meanwhile";
}

TEST_F(SystemZone, RefusesDamagedZoneFiles) {
  const std::string paris = bytesOfFile(kZones / "Europe/Paris"), utc = bytesOfFile(kZones / "UTC");
  std::string huge = paris;
  huge.replace(32, 4, "\x7f\xff\xff\xff");  // two thousand million transitions
  std::string far = paris.substr(0, 44);
  far[4] = '\0';
  far.replace(20, 24, std::string(19, '\0') + "\x01" + std::string(3, '\0') + "\x04");
  far += std::string("\x7f\xff\xff\xff\0\0FAR\0", 10);  // one type, 68 years from Greenwich
  const auto withFooter = [&](std::string_view footer) {
    return paris.substr(0, paris.rfind('\n', paris.size() - 2) + 1) + std::string(footer) + '\n';
  };
  const struct {
    std::string bytes;
    const char* why;
  } rows[] = {
      {"", "empty"},
      {"TZif2" + std::string(39, '\0'), "a header of nothing"},
      {paris.substr(0, 500), "cut short"},
      {huge, "a count beyond the file"},
      {far, "an offset of more than a day"},
      {paris.substr(0, 44) + std::string(1 << 20, '\0'), "far too large"},
      {withFooter("CET-1CEST,M3.5.0,M10.9.0/3"), "a ninth week of the month"},
      {withFooter("CET-1CEST"), "two names and no rules"},
      {withFooter("CE-1"), "a name of two letters"},
      {withFooter("CET-1CEST,M3.5.0,M10.5.0/3 "), "a blank behind the rules"},
      {paris.substr(0, paris.size() - 1), "a footer without an end"},
      {utc.substr(0, utc.size() - 5) + "CET-1CEST,M3.5.0,M10.5.0/3\n", "rules after no transition"},
  };
  ::testing::internal::CaptureStderr();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    write(row.bytes);
    EXPECT_EQ(TimeZone::current(), TimeZone::gmt());
  }
  for (const char* footer : {"", "CET-1", "CET-01:00:00", "CET-1CEST-2,M3.5.0/+2,M10.5.0/3"}) {
    write(withFooter(footer));
    EXPECT_NE(TimeZone::current(), TimeZone::gmt()) << footer;
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "nothing is written but by the program itself";
  fs::remove(link());
  ASSERT_EQ(mkfifo(link().c_str(), 0600), 0);
  resetSystemTimeZone();
  EXPECT_EQ(TimeZone::current(), TimeZone::gmt()) << "a pipe is not waited for";
  write(paris);
  EXPECT_EQ(TimeZone::current().name(), "") << "a file that is not a link names no zone";
  for (const double second : {-1e9, 0.0, 1.7e9}) {
    EXPECT_EQ(TimeZone::current().secondsFromGmt(at(second)),
              TimeZone::named("Europe/Paris")->secondsFromGmt(at(second)));
  }
}

TEST_F(SystemZone, MayBeReadByManyThreadsWhileTheLinkMoves) {
  relink(kZones / "Europe/Paris");
  resetSystemTimeZone();
  std::atomic<bool> done{false};
  onThreads(4, [&](std::size_t thread) {
    for (int i = 0; thread == 0 && i < 100; ++i) {
      relink(kZones / (i % 2 == 0 ? "Asia/Tokyo" : "Europe/Paris"));
      resetSystemTimeZone();
      EXPECT_EQ(TimeZone::current().name(), i % 2 == 0 ? "Asia/Tokyo" : "Europe/Paris");
    }
    if (thread == 0) done = true;
    while (!done) {
      const Calendar calendar = Calendar::current();
      const std::int64_t offset = calendar.timeZone().secondsFromGmt(at(1704067200));
      EXPECT_TRUE(offset == 3600 || offset == 32400) << offset;
      EXPECT_EQ(calendar.days(at(0), calendar.dateByAddingDays(at(0), 40'000)), 40'000);
      const Calendar persian(CalendarIdentifier::persian, calendar.timeZone());
      EXPECT_EQ(persian.monthAndDay(at(1710374400)), (MonthAndDay{12, 24}));
    }
  });
}

}  // namespace
}  // namespace havrin
