// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/time/locale.h>
#include <tests/platform/time/pinned_environment.h>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

TEST(Locale, ReadsBothFormsOfAName) {
  for (const auto& [name, identifier, calendar] : Rows<std::string, const char*, CalendarIdentifier>{
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
       }) {
    SCOPED_TRACE(name.substr(0, 40));
    EXPECT_EQ(Locale(name).identifier(), identifier);
    EXPECT_EQ(Locale(name).calendar(), calendar);
  }
}

TEST(Locale, IsTheFirstOfThreeVariables) {
  for (const auto& [all, time, language, identifier] : Rows<const char*, const char*, const char*, const char*>{
           {"de_DE", "fr_FR", "it_IT", "de_DE"},
           {"", "fr_FR", "it_IT", "fr_FR"},
           {nullptr, "fr_FR", "it_IT", "fr_FR"},
           {nullptr, "", "it_IT", "it_IT"},
           {nullptr, nullptr, "", "en_US_POSIX"},
           {nullptr, nullptr, nullptr, "en_US_POSIX"},
           {"C", "fr_FR", "it_IT", "en_US_POSIX"},
       }) {
    const PinnedEnvironment environment(nullptr, language);
    PinnedEnvironment::set("LC_ALL", all);
    PinnedEnvironment::set("LC_TIME", time);
    EXPECT_EQ(Locale::current().identifier(), identifier);
  }
}

}  // namespace
}  // namespace havrin
