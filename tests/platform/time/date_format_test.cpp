// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/ns_date_formatter.h>
#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/date_format.h>
#include <HavrinFoundation/platform/time/icu_format.h>
#include <HavrinFoundation/platform/time/pattern_writer.h>
#include <tests/platform/time/pinned_environment.h>

#include <set>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

constexpr const char* kHttp = "EEE',' dd MMM yyyy HH':'mm':'ss z";

Date at(double secondsSince1970) { return Date::fromTimeIntervalSince1970(secondsSince1970); }

DateFormat format(std::string_view pattern, std::string_view locale, std::string_view zone) {
  return {pattern, Locale(locale), Calendar(Locale(locale).calendar(), TimeZone::named(zone).value())};
}

TEST(DateFormat, WritesThePatternInTheWordsOfTheLocale) {
  constexpr double kMarch = 1709649000;  // 2024-03-05 14:30:00 UTC
  constexpr double kJuly = 1720189800;   // 2024-07-05 14:30:00 UTC
  for (const auto& [locale, zone, instant, text] : Rows<const char*, const char*, double, const char*>{
           {"POSIX", "GMT", kMarch, "Tue, 05 Mar 2024 14:30:00 GMT"},
           {"POSIX", "GMT", -0.001, "Wed, 31 Dec 1969 23:59:59 GMT"},
           {"POSIX", "GMT", 253402300800, "Sat, 01 Jan 10000 00:00:00 GMT"},
           {"POSIX", "GMT", -62135769601, "Fri, 31 Dec 0001 23:59:59 GMT"},
           {"POSIX", "GMT", -12219292801, "Thu, 04 Oct 1582 23:59:59 GMT"},
           {"POSIX", "GMT", 1e300, "Tue, 20 Dec 5828963 00:00:00 GMT"},
           {"en_US", "America/New_York", kJuly, "Fri, 05 Jul 2024 10:30:00 EDT"},
           {"en_US", "Asia/Kolkata", kMarch, "Tue, 05 Mar 2024 20:00:00 GMT+5:30"},
           {"en_US", "Europe/London", kJuly, "Fri, 05 Jul 2024 15:30:00 GMT+1"},
           {"en_US", "Africa/Cairo", kJuly, "Fri, 05 Jul 2024 17:30:00 GMT+3"},  // younger than ICU's own rules
           {"en_GB", "Europe/London", kJuly, "Fri, 05 Jul 2024 15:30:00 BST"},
           {"en_GB", "Europe/Paris", kJuly, "Fri, 05 Jul 2024 16:30:00 CEST"},
           {"en_IE", "Europe/Dublin", kJuly, "Fri, 05 Jul 2024 15:30:00 IST"},
           {"de_DE", "GMT", kMarch, "Di., 05 März 2024 14:30:00 GMT"},
           {"th_TH", "GMT", kMarch, "อ., 05 มี.ค. 2567 14:30:00 GMT"},
           {"ja_JP@calendar=japanese", "GMT", kMarch, "火, 05 3月 0006 14:30:00 GMT"},
           {"fa_IR", "GMT", kMarch, "سه‌شنبه, ۱۵ اسفند ۱۴۰۲ ۱۴:۳۰:۰۰ گرینویچ"},
       })
    EXPECT_EQ(format(kHttp, locale, zone).string(at(instant)), text) << std::string(locale) + ' ' + zone;
  EXPECT_EQ(format(kHttp, "C", "GMT").string(at(kNotANumber)), "");
  EXPECT_EQ(format(kHttp, "C", "GMT").pattern(), kHttp);
}

TEST(DateFormat, WritesDigitsAndLiterals) {
  const double moment = -3600 * 11 + 60 * 5 + 7.0567;  // 1969-12-31 13:05:07.0567
  for (const auto& [pattern, text] : Rows<const char*, const char*>{
           {"y yy yyy yyyy yyyyy", "1969 69 1969 1969 01969"},
           {"M MM MMM MMMM MMMMM LLL", "12 12 Dec December D Dec"},
           {"d dd ddd E EE EEEE EEEEE", "31 31 031 Wed Wed Wednesday W"},
           {"H HH h hh K KK k kk a", "13 13 1 01 1 01 13 13 PM"},
           {"m mm s ss S SS SSS", "5 05 7 07 0 05 056"},
           {"'o''clock' ''yy'' -/:.,", "o'clock '69' -/:.,"},
           {"z zzzz", "GMT GMT"},
           {"QQQ w D SSSS xxx", "Q4 1 365 0560 +00:00"},
           {"'' '''' ' '''' ' ''", "' ''  ''  '"},
           {"\xff'\xff'", "\ufffd\ufffd"},
           {"'half", "half"},
           {"", ""},
           {"b j", ""},
       })
    EXPECT_EQ(format(pattern, "C", "GMT").string(at(moment)), text) << pattern;
  EXPECT_EQ(format("ss.SSS", "C", "GMT")
                .string(Date(std::chrono::sys_time<std::chrono::milliseconds>(std::chrono::milliseconds(1999)))),
            "01.999")
      << "what the double lost below a microsecond does not show";
  EXPECT_EQ(format("ss.SSS", "C", "GMT").string(at(59.9999999)), "00.000");
}

TEST(DateFormat, WritesByItsOwnStepsWhatIcuWrites) {
  std::mt19937_64 random(1123);
  const std::string letters = "yMLdEaHkKhmsSz";
  const char* locales[] = {"C", "en_GB", "de_DE", "ru_RU", "zh_CN", "vi_VN"};
  std::uniform_real_distribution<double> instants(-1e11, 1e11);
  int compiled = 0;
  for (int i = 0; i < 1500; ++i) {
    std::string pattern;
    for (std::uint64_t fields = 1 + random() % 5; fields > 0; --fields) {
      pattern += std::string(1 + random() % 5, letters[random() % letters.size()]) + " '' ,";
    }
    const Locale locale(locales[random() % std::size(locales)]);
    const Calendar calendar(CalendarIdentifier::gregorian, TimeZone::gmt());
    const std::int64_t milliseconds = static_cast<std::int64_t>(instants(random) * 1000);
    const std::int64_t second = floorDivide(milliseconds, 1000);
    const auto writer = PatternWriter::compile(pattern, locale, calendar);
    if (!writer) continue;
    ++compiled;
    ASSERT_EQ(writer->string(second, static_cast<int>(milliseconds - second * 1000)),
              IcuFormat(pattern, locale, calendar).string(milliseconds))
        << pattern << ' ' << locale.identifier() << ' ' << milliseconds;
  }
  EXPECT_GT(compiled, 500);
}

TEST(DateFormat, ReadsWhatFollowsThePattern) {
  constexpr const char* kMinutes = "yyyy-MM-dd HH:mm";
  for (const auto& [pattern, zone, text, date, why] :
       Rows<const char*, const char*, const char*, std::optional<Date>, const char*>{
           {kHttp, "GMT", "Tue, 05 Mar 2024 14:30:00 GMT", at(1709649000), "as written"},
           {kHttp, "GMT", "tue, 05 mar 2024 14:30:00 gmt", at(1709649000), "any case"},
           {kHttp, "GMT", "Tue, 05 Mar 2024 09:30:00 EST", at(1709649000), "the zone in the text"},
           {kHttp, "GMT", "Tue, 35 Mar 2024 14:30:00 GMT", std::nullopt, "a day that no month has"},
           {kHttp, "GMT", "Fri, 30 Feb 2024 14:30:00 GMT", std::nullopt, "a day that February lacks"},
           {kHttp, "GMT", "Tue, 05 Mar 2024 14:30:00 GMT, or so", std::nullopt, "text behind"},
           {kHttp, "GMT", "Tue, 05 Mar 2024 14:30:00", std::nullopt, "no zone"},
           {kHttp, "GMT", "", std::nullopt, "empty"},
           {kHttp, "GMT", "\xff\xfe, 05 Mar", std::nullopt, "not UTF-8"},
           {kMinutes, "America/New_York", "2024-07-05 10:30", at(1720189800), "a wall clock"},
           {kMinutes, "America/New_York", "2024-03-10 02:30", std::nullopt, "the clock never showed it"},
           {kMinutes, "America/New_York", "2024-11-03 01:30", at(1730615400), "twice: the second"},
           {kMinutes, "Africa/Cairo", "2024-07-05 17:30", at(1720189800), "rules that are younger than ICU's own"},
           {"yyyy-MM-dd HH:mm VV", "GMT", "2024-07-05 17:30 Africa/Cairo", at(1720189800), "of a zone in the text"},
           {"HH:mm", "GMT", "14:30", at(52200), "on the first day of 1970"},
       }) {
    EXPECT_EQ(format(pattern, "C", zone).date(text), date) << why;
  }
}

const Strong<NSDate> kMarch = make<NSDate>(at(1709649000));  // 2024-03-05 14:30:00 GMT

std::string marchText(const Strong<NSDateFormatter>& formatter) { return utf8(*formatter->stringFromDate(kMarch)); }

TEST(NSDateFormatter, TakesTheUsersPreferencesWhenItIsMade) {
  const PinnedEnvironment environment("America/New_York", "de_DE");
  const Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  EXPECT_EQ(marchText(formatter), "") << "no pattern";
  formatter->setDateFormat(makeString("EEEE d MMMM yyyy HH:mm"));
  EXPECT_EQ(marchText(formatter), "Dienstag 5 März 2024 09:30");
  PinnedEnvironment::set("TZ", "Asia/Tokyo");
  PinnedEnvironment::set("LANG", "th_TH");
  EXPECT_EQ(marchText(formatter), "Dienstag 5 März 2024 09:30") << "and keeps them";
  const Strong<NSDateFormatter> thai = make<NSDateFormatter>();
  thai->setDateFormat(formatter->dateFormat());
  EXPECT_EQ(marchText(thai), "วันอังคาร 5 มีนาคม 2567 23:30");
  thai->setLocale(Locale("fr_FR"));
  EXPECT_EQ(marchText(thai), "mardi 5 mars 2567 23:30") << "the calendar is its own setting";
  thai->setCalendar(Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  EXPECT_EQ(marchText(thai), "mardi 5 mars 2024 14:30");
  EXPECT_EQ(thai->locale(), Locale("fr_FR"));
  EXPECT_EQ(thai->calendar().timeZone(), TimeZone::gmt());
}

TEST(NSDateFormatter, ReadsDatesOrReturnsNull) {
  const PinnedEnvironment environment("America/New_York");
  const Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  formatter->setDateFormat(makeString("yyyy-MM-dd HH:mm"));
  EXPECT_TRUE(formatter->dateFromString(makeString("2024-03-05 09:30"))->isEqual(kMarch));
  EXPECT_FALSE(formatter->dateFromString(makeString("yesterday")) || formatter->dateFromString(nullptr));
  EXPECT_FALSE(formatter->stringFromDate(nullptr));
  formatter->setDateFormat(nullptr);
  EXPECT_EQ(formatter->dateFormat()->length(), 0u);
}

TEST(NSDateFormatter, MayBeChangedWhileOtherThreadsUseIt) {
  const Strong<NSDateFormatter> formatter = make<NSDateFormatter>();
  formatter->setCalendar(Calendar(CalendarIdentifier::gregorian, TimeZone::gmt()));
  formatter->setDateFormat(makeString("yyyy"));
  const std::set<std::string> whole = {"2024", "14:30", "Q1"};
  onThreads(4, [&](std::size_t thread) {
    for (int round = 0; thread == 0 && round < 30; ++round) {
      for (const char* pattern : {"HH:mm", "QQQ", "yyyy"}) formatter->setDateFormat(makeString(pattern));
    }
    for (int round = 0; thread != 0 && round < 300; ++round) {
      EXPECT_TRUE(whole.contains(marchText(formatter)));
      (void)formatter->dateFromString(makeString("2024"));
    }
  });
}

}  // namespace
}  // namespace havrin
