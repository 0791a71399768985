// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/colours/colour_arithmetic_messages.h>

#include <HavrinFoundation/colours/colour_arithmetic.h>

namespace havrin {

namespace {

bool isEqualToColor(UIColor& self, UIColor* other, double tolerance) {
  return other && isEqual(self, *other, tolerance);
}

bool isApproximatelyWhiteColor(UIColor& self) { return isApproximatelyWhite(self); }

Strong<UIColor> inverseColor(UIColor& self) { return inverse(self); }

Strong<UIColor> blendWithColor(UIColor& self, UIColor* other, double weight) {
  return other ? blend(self, *other, weight) : nullptr;
}

constexpr MethodRow kRows[] = {row<UIColor, "isEqualToColor:withTolerance:", isEqualToColor>(),
                               row<UIColor, "isApproximatelyWhiteColor", isApproximatelyWhiteColor>(),
                               row<UIColor, "inverseColor", inverseColor>(),
                               row<UIColor, "blendWithColor:weight:", blendWithColor>()};

}  // namespace

extern constinit const Category kColourArithmetic{classObject<UIColor>, "HavrinFoundation", kRows, {}};

}  // namespace havrin
