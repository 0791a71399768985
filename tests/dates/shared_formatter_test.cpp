// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/dates/shared_formatter.h>
#include <HavrinFoundation/dates/shared_formatter_messages.h>
#include <HavrinFoundation/platform/object/string.h>
#include <tests/platform/time/pinned_environment.h>

namespace havrin {
namespace {

using havrin::testing::PinnedEnvironment;

std::string dateLine(double secondsSince1970) {
  const Strong<NSDate> date = make<NSDate>(Date::fromTimeIntervalSince1970(secondsSince1970));
  return utf8(*rfc1123<NSDateFormatter>()->stringFromDate(date));
}

TEST(SharedFormatter, IsOneObjectForAllThreads) {
  const PinnedEnvironment environment("Asia/Tokyo", "fa_IR");  // of no influence, whoever is first
  std::array<Strong<NSDateFormatter>, 8> found;
  onThreads(found.size(), [&](std::size_t i) {
    found[i] = i % 2 == 0 ? rfc1123<NSDateFormatter>() : send<"hav_rfc1123Formatter">(classOf<NSDateFormatter>());
  });
  for (const Strong<NSDateFormatter>& formatter : found) EXPECT_EQ(formatter, found[0]);
}

TEST(SharedFormatter, WritesAndReadsDateLinesAlikeOnEveryMachine) {
  for (const char* language : {"de_DE", "th_TH", "ar_SA"}) {
    SCOPED_TRACE(language);
    const PinnedEnvironment environment("America/New_York", language);
    EXPECT_EQ(dateLine(1709649000), "Tue, 05 Mar 2024 14:30:00 GMT");
    EXPECT_EQ(dateLine(-0.001), "Wed, 31 Dec 1969 23:59:59 GMT");
    const Strong<NSDate> read = rfc1123<NSDateFormatter>()->dateFromString(makeString("Tue, 05 Mar 2024 14:30:00 GMT"));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->timeIntervalSince1970(), 1709649000);
  }
  EXPECT_EQ(utf8(*rfc1123<NSDateFormatter>()->dateFormat()), "EEE',' dd MMM yyyy HH':'mm':'ss z");
}

TEST(SharedFormatter, IsChangedForAllThreads) {
  const Strong<NSString> former = rfc1123<NSDateFormatter>()->dateFormat();
  rfc1123<NSDateFormatter>()->setDateFormat(makeString("yyyy"));
  std::string elsewhere;
  std::thread([&] { elsewhere = dateLine(1709649000); }).join();
  EXPECT_EQ(elsewhere, "2024");
  rfc1123<NSDateFormatter>()->setDateFormat(former);
}

}  // namespace
}  // namespace havrin
