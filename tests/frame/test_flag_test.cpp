// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/frame/test_flag.h>
#include <HavrinFoundation/frame/test_flag_messages.h>

using namespace havrin;

namespace {

constexpr const char* kVariable = "IS_EXECUTING_TEST";

// Has an environment of its own.
struct GivenProcess : Object<GivenProcess, NSProcessInfo> {
  Strong<NSDictionary> variables = makeDictionary({});
  Strong<NSDictionary> environment() const override { return variables; }
};

TEST(TestFlag, ReadsTheVariableAsABoolean) {
  const struct {
    const char* why;
    std::optional<std::string> value;
    bool executing;
  } rows[] = {
      {"absent", std::nullopt, false},
      {"empty", "", false},
      {"what follows is ignored", "Yes please", true},
      {"a sign", "-1", true},
      {"blanks, a sign and zeros", " \n+00t", true},
      {"minus zero", "-0", false},
      {"two signs", "--1", false},
      {"hexadecimal is a zero and more", "0x1", false},
      {"a word", "on", false},
  };
  const auto given = make<GivenProcess>();
  for (const auto& row : rows) {
    row.value ? setenv(kVariable, row.value->c_str(), 1) : unsetenv(kVariable);
    EXPECT_EQ(send<"isExecutingTests">(NSProcessInfo::processInfo()), row.executing) << row.why;
    given->variables = row.value ? makeDictionary({{s(kVariable), s(*row.value)}}) : makeDictionary({});
    EXPECT_EQ(isExecutingTests(*given), row.executing) << row.why;
  }
  unsetenv(kVariable);
}

TEST(ProcessInfo, GivesTheEnvironmentOfTheMoment) {
  const NSProcessInfo* process = NSProcessInfo::processInfo();
  const std::pair<const char*, const char*> rows[] = {{"b=c", "b=c"}, {"", ""}, {"\xFF", "\xEF\xBF\xBD"}};
  for (const auto& [value, read] : rows) {
    setenv("HAVRIN_A", value, 1);
    EXPECT_EQ(text(process->environment()->objectForKey(s("HAVRIN_A"))), read);
  }
  unsetenv("HAVRIN_A");
  EXPECT_FALSE(process->environment()->objectForKey(s("HAVRIN_A")));
  EXPECT_FALSE(process->environmentValue("HAVRIN")) << "the beginning of a name";
  EXPECT_GT(process->operatingSystemVersionString()->length(), 0U);
}

}  // namespace
