// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/frame/log.h>
#include <HavrinFoundation/platform/log/log_seam.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/testkit/test_clock.h>

using namespace havrin;

namespace {

std::vector<std::pair<const char*, const char*>> creations;

struct Log : testing::Test {
  ~Log() override {
    logCreationSeen = nullptr;
    kHLogSubsystem = "com.havrin";
  }
};

TEST_F(Log, PassesTheSubsystemOfTheMomentAndTheCallersOwnPointer) {
  creations.clear();
  logCreationSeen = [](const char* subsystem, const char* category) { creations.emplace_back(subsystem, category); };
  char category[] = "network";
  const os_log_t first = hlog_create_with_category(category);
  const char* const elsewhere = "org.example.player";
  kHLogSubsystem = elsewhere;
  const os_log_t second = hlog_create_with_category(category);
  ASSERT_EQ(creations.size(), 2U);
  EXPECT_STREQ(creations[0].first, "com.havrin");
  EXPECT_EQ(creations[1].first, elsewhere);
  EXPECT_EQ(creations[0].second, category);
  EXPECT_NE(first, second);
  category[0] = 'x';  // the handle keeps the text, not the pointer
  EXPECT_EQ(os_log_category(second), "network");
}

TEST_F(Log, GivesOneHandleForEqualTexts) {
  std::vector<os_log_t> handles(8);
  onThreads(handles.size(),
            [&](std::size_t i) { handles[i] = hlog_create_with_category(std::string("disk").c_str()); });
  for (os_log_t handle : handles) EXPECT_EQ(handle, handles[0]);
  EXPECT_NE(handles[0], os_log_create("com.havrin", "disks"));
}

TEST_F(Log, RefusesATextThatIsMissing) {
  EXPECT_THROW((void)hlog_create_with_category(nullptr), NSException);
  kHLogSubsystem = nullptr;
  EXPECT_THROW((void)hlog_create_with_category("network"), NSException);
}

TEST_F(Log, WritesOneLineAtATime) {
  TestClock clock;
  clock.setWallSecondsSince1970(1'709'649'015.25);
  testing::internal::CaptureStderr();
  os_log(hlog_create_with_category("network"), "two\nlines", os_log_type_t::error);
  const std::string line = testing::internal::GetCapturedStderr();
  EXPECT_NE(line.find("15.250 com.havrin:network error: two lines\n"), std::string::npos) << line;
}

}  // namespace
