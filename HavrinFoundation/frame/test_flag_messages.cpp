// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/frame/test_flag_messages.h>

#include <HavrinFoundation/frame/test_flag.h>

namespace havrin {

namespace {

bool isExecutingTestsMessage(NSProcessInfo& self) { return isExecutingTests(self); }

constexpr MethodRow kRows[] = {row<NSProcessInfo, "isExecutingTests", isExecutingTestsMessage>()};

}  // namespace

extern constinit const Category kProcessTestFlag{classObject<NSProcessInfo>, "HavrinFoundation", kRows, {}};

}  // namespace havrin
