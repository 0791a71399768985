#include <HavrinFoundation/frame/test_flag.h>

#include <HavrinFoundation/platform/foundation/string.h>

#include <string_view>

namespace havrin {

bool isExecutingTests(const NSProcessInfo& process) {
  constexpr std::string_view kVariable = "IS_EXECUTING_TEST";
  const auto value = process.environmentValue(kVariable);
  return value && boolValue(*value);
}

}  // namespace havrin
