// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/frame/identity.h>
#include <HavrinFoundation/frame/not_localized.h>
#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/object/string.h>

using namespace havrin;

namespace {

TEST(Identity, IsTheTextThatToolsSearchForInAFile) {
  const std::string_view text(reinterpret_cast<const char*>(HavrinFoundationVersionString),
                              sizeof HavrinFoundationVersionString);
  EXPECT_EQ(text, std::string_view("@(#)PROGRAM:HavrinFoundation  PROJECT:Havrin-1\n", 48));
  EXPECT_EQ(text.back(), '\0');
  EXPECT_EQ(HavrinFoundationVersionNumber, 1.0);
}

TEST(NotLocalized, ReturnsItsArgument) {
  const auto string = makeString("");
  EXPECT_EQ(NotLocalizedString(string), string.get());
  EXPECT_EQ(NotLocalizedString(nullptr), nullptr);
}

}  // namespace
