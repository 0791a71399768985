// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/test_flag.h>

#include <HavrinFoundation/platform/object/string.h>

namespace havrin {

bool isExecutingTests(const NSProcessInfo& process) {
  const auto value = process.environmentValue("IS_EXECUTING_TEST");
  return value && boolValue(*value);
}

}  // namespace havrin
