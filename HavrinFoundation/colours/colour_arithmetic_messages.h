// SPDX-License-Identifier: Apache-2.0
// UIColor(HavrinFoundation), colour arithmetic: colour_arithmetic.h as messages.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/interface/ui_color.h>

namespace havrin {
inline namespace platform {

/// As `isEqual` with a tolerance; false for null.
template <>
struct Message<UIColor, "isEqualToColor:withTolerance:"> : Signature<bool(UIColor*, double)> {};
/// As `isApproximatelyWhite`.
template <>
struct Message<UIColor, "isApproximatelyWhiteColor"> : Signature<bool()> {};
/// As `inverse`; a plain UIColor.
template <>
struct Message<UIColor, "inverseColor"> : Signature<Strong<UIColor>()> {};
/// As `blend`; a plain UIColor, null for null.
template <>
struct Message<UIColor, "blendWithColor:weight:"> : Signature<Strong<UIColor>(UIColor*, double)> {};

}  // namespace platform
}  // namespace havrin
