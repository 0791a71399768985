#include <HavrinFoundation/frame/test_flag.h>

#include <cstdlib>
#include <optional>
#include <string>

#include <HavrinFoundation/frame/test_flag_messages.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <gtest/gtest.h>

using namespace havrin;

namespace {

constexpr const char* kVariable = "IS_EXECUTING_TEST";

// Answers with an environment of its own.
class GivenProcess : public Object<GivenProcess, NSProcessInfo> {
 public:
  Strong<NSDictionary> variables = makeDictionary({});
  mutable int asked = 0;
  Strong<NSDictionary> environment() const override {
    ++asked;
    return variables;
  }
};

TEST(TestFlag, ReadsTheVariableAsABoolean) {
  const struct {
    const char* why;
    std::optional<std::string> value;
    bool executing;
  } rows[] = {
      {"absent", std::nullopt, false},
      {"empty", "", false},
      {"lower case", "true", true},
      {"what follows is ignored", "Yes please", true},
      {"a sign", "-1", true},
      {"blanks", "  7", true},
      {"a line feed, a sign and zeros", "\n+00t", true},
      {"zero", "0", false},
      {"minus zero", "-0", false},
      {"false", "false", false},
      {"two signs", "--1", false},
      {"hexadecimal is a zero and more", "0x1", false},
      {"a word", "on", false},
      {"a sign alone", "+", false},
  };
  const auto given = make<GivenProcess>();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    if (row.value) {
      setenv(kVariable, row.value->c_str(), 1);
    } else {
      unsetenv(kVariable);
    }
    EXPECT_EQ(isExecutingTests(*NSProcessInfo::processInfo()), row.executing);
    EXPECT_EQ(send<"isExecutingTests">(NSProcessInfo::processInfo()), row.executing);
    given->variables =
        row.value ? makeDictionary({{makeString(kVariable), makeString(*row.value)}}) : makeDictionary({});
    EXPECT_EQ(isExecutingTests(*given), row.executing);
    EXPECT_EQ(send<"isExecutingTests">(given), row.executing);
  }
  EXPECT_EQ(given->asked, 2 * static_cast<int>(std::size(rows))) << "nothing is kept between two calls";
  unsetenv(kVariable);
}

TEST(ProcessInfo, GivesTheEnvironmentOfTheMoment) {
  setenv("HAVRIN_A", "b=c", 1);
  setenv("HAVRIN_EMPTY", "", 1);
  setenv("HAVRIN_BYTES", "\xFF", 1);
  const NSProcessInfo* process = NSProcessInfo::processInfo();
  EXPECT_EQ(process, NSProcessInfo::processInfo());
  const Strong<NSDictionary> variables = process->environment();
  for (const char* name : {"HAVRIN_A", "HAVRIN_EMPTY", "HAVRIN_BYTES"}) unsetenv(name);
  EXPECT_TRUE(makeString("b=c")->isEqual(variables->objectForKey(makeString("HAVRIN_A"))));
  EXPECT_TRUE(makeString("")->isEqual(variables->objectForKey(makeString("HAVRIN_EMPTY"))));
  EXPECT_TRUE(makeString("\xEF\xBF\xBD")->isEqual(variables->objectForKey(makeString("HAVRIN_BYTES"))));
  EXPECT_FALSE(process->environment()->objectForKey(makeString("HAVRIN_A")));
  EXPECT_FALSE(process->environmentValue("HAVRIN"));
  EXPECT_GT(process->operatingSystemVersionString()->length(), 0U);
}

}  // namespace
