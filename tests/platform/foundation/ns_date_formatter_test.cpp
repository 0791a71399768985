// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/foundation/ns_date_formatter.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <tests/platform/time/pinned_environment.h>

#include <set>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

const Strong<NSDate> kMoment = make<NSDate>(Date::fromTimeIntervalSince1970(1709649000));  // 2024-03-05 14:30:00 GMT

std::string text(const Strong<NSDateFormatter>& formatter) { return utf8(*formatter->stringFromDate(kMoment)); }

TEST(NSDateFormatter, TakesTheUsersPreferencesWhenItIsMade) {
  const PinnedEnvironment environment("America/New_York", "de_DE");
  const Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  EXPECT_EQ(text(formatter), "") << "no pattern";
  formatter->setDateFormat(makeString("EEEE d MMMM yyyy HH:mm"));
  EXPECT_EQ(text(formatter), "Dienstag 5 März 2024 09:30");
  PinnedEnvironment::set("TZ", "Asia/Tokyo");
  PinnedEnvironment::set("LANG", "th_TH");
  EXPECT_EQ(text(formatter), "Dienstag 5 März 2024 09:30") << "and keeps them";
  const Strong<NSDateFormatter> thai = make<NSDateFormatter>();
  thai->setDateFormat(formatter->dateFormat());
  EXPECT_EQ(text(thai), "วันอังคาร 5 มีนาคม 2567 23:30");
  thai->setLocale(Locale("fr_FR"));
  EXPECT_EQ(text(thai), "mardi 5 mars 2567 23:30") << "the calendar is its own setting";
  thai->setCalendar(Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  EXPECT_EQ(text(thai), "mardi 5 mars 2024 14:30");
  EXPECT_EQ(thai->locale(), Locale("fr_FR"));
  EXPECT_EQ(thai->calendar().timeZone(), TimeZone::gmt());
}

TEST(NSDateFormatter, ReadsDatesOrAnswersNull) {
  const PinnedEnvironment environment("America/New_York");
  const Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  formatter->setDateFormat(makeString("yyyy-MM-dd HH:mm"));
  EXPECT_TRUE(formatter->dateFromString(makeString("2024-03-05 09:30"))->isEqual(kMoment));
  EXPECT_FALSE(formatter->dateFromString(makeString("2024-03-10 02:30"))) << "a time that never was";
  EXPECT_FALSE(formatter->dateFromString(makeString("yesterday")));
  EXPECT_FALSE(formatter->dateFromString(nullptr));
  EXPECT_FALSE(formatter->stringFromDate(nullptr));
  formatter->setDateFormat(nullptr);
  EXPECT_EQ(formatter->dateFormat()->length(), 0u);
}

TEST(NSDateFormatter, MayBeChangedWhileOthersUseIt) {
  const Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  formatter->setCalendar(Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  formatter->setDateFormat(makeString("yyyy"));
  const std::set<std::string> whole = {"2024", "14:30", "Q1"};
  onThreads(4, [&](std::size_t thread) {
    for (int round = 0; thread == 0 && round < 30; ++round) {
      for (const char* pattern : {"HH:mm", "QQQ", "yyyy"}) formatter->setDateFormat(makeString(pattern));
    }
    for (int round = 0; thread != 0 && round < 300; ++round) {
      EXPECT_TRUE(whole.contains(text(formatter)));
      (void)formatter->dateFromString(makeString("2024"));
    }
  });
}

}  // namespace
}  // namespace havrin
