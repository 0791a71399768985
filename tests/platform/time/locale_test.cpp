// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/time/locale.h>
#include <tests/platform/time/pinned_environment.h>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

TEST(Locale, ReadsBothFormsOfAName) {
  const struct {
    std::string name;
    const char* identifier;
    CalendarIdentifier calendar;
  } rows[] = {
      {"fr_FR.UTF-8", "fr_FR", CalendarIdentifier::gregorian},
      {"C", "en_US_POSIX", CalendarIdentifier::gregorian},
      {"POSIX", "en_US_POSIX", CalendarIdentifier::gregorian},
      {"", "en_US_POSIX", CalendarIdentifier::gregorian},
      {"th_TH", "th_TH", CalendarIdentifier::buddhist},
      {"th_TH-u-ca-gregory", "th_TH@calendar=gregorian", CalendarIdentifier::gregorian},
      {"th_TH.UTF-8@calendar=nonsense", "th_TH", CalendarIdentifier::buddhist},
      {"en_US.UTF-8@calendar=hebrew", "en_US@calendar=hebrew", CalendarIdentifier::hebrew},
      {"ar_SA", "ar_SA", CalendarIdentifier::islamicUmmAlQura},
      {"fa_AF", "fa_AF", CalendarIdentifier::persian},
      {"../../etc/passwd", "en_US_POSIX", CalendarIdentifier::gregorian},
      {std::string(100'000, 'd'), "en_US_POSIX", CalendarIdentifier::gregorian},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name.substr(0, 40));
    EXPECT_EQ(Locale(row.name).identifier(), row.identifier);
    EXPECT_EQ(Locale(row.name).calendar(), row.calendar);
  }
}

TEST(Locale, IsTheFirstOfThreeVariables) {
  const struct {
    const char *all, *time, *language, *identifier;
  } rows[] = {
      {"de_DE", "fr_FR", "it_IT", "de_DE"},   {"", "fr_FR", "it_IT", "fr_FR"},
      {nullptr, "fr_FR", "it_IT", "fr_FR"},   {nullptr, "", "it_IT", "it_IT"},
      {nullptr, nullptr, "", "en_US_POSIX"},  {nullptr, nullptr, nullptr, "en_US_POSIX"},
      {"C", "fr_FR", "it_IT", "en_US_POSIX"},
  };
  for (const auto& row : rows) {
    const PinnedEnvironment environment(nullptr, row.language);
    PinnedEnvironment::set("LC_ALL", row.all);
    PinnedEnvironment::set("LC_TIME", row.time);
    EXPECT_EQ(Locale::current().identifier(), row.identifier);
  }
}

TEST(Locale, ReadsTheNamesThatItWrites) {
  for (int i = static_cast<int>(CalendarIdentifier::gregorian);
       i <= static_cast<int>(CalendarIdentifier::republicOfChina); ++i) {
    const CalendarIdentifier calendar{i};
    EXPECT_EQ(Locale("en_US@calendar=" + std::string(nameOf(calendar))).calendar(), calendar) << nameOf(calendar);
  }
}

}  // namespace
}  // namespace havrin
