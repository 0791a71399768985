// SPDX-License-Identifier: Apache-2.0
// Comparing, inverting and mixing colours by their red, green, blue and alpha. As messages: colour_arithmetic_messages.h.
//
//   isEqual(*UIColor::grayColor(), *make<UIColor>(0.5, 0.5, 0.5, 1.0), 0.001)      true
//   isApproximatelyWhite(*make<UIColor>(0.95, 1.0, 0.9, 1.0))                      true
//   inverse(*UIColor::blackColor())                                                opaque white
//   blend(*UIColor::blackColor(), *UIColor::whiteColor(), 0.25)                    0.25, 0.25, 0.25, 1
//   blend(*UIColor::blackColor(), *UIColor::whiteColor(), 1.5)                     0.5, 0.5, 0.5, 1: not a weight
//
// Components are used as read, beyond 0...1 too. Results are plain UIColor objects, whatever the receiver's class.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/interface/ui_color.h>

namespace havrin {

/// Whether red, green, blue and alpha each differ by at most `tolerance`. False when a colour cannot be read as red, green
/// and blue, and when a difference or the tolerance is not a number.
[[nodiscard]] HAVRIN_EXPORT bool isEqual(const UIColor& color, const UIColor& other, double tolerance);

/// Whether the colour is within 0.1 of opaque white. Sends `isEqualToColor:withTolerance:` to it, so that an override
/// takes part.
[[nodiscard]] HAVRIN_EXPORT bool isApproximatelyWhite(const UIColor& color);

/// One minus red, green and blue, the alpha unchanged. Transparent white when the colour cannot be read.
[[nodiscard]] HAVRIN_EXPORT Strong<UIColor> inverse(const UIColor& color);

/// The mix of two colours: (1 - weight) of the first and weight of the other, component by component, each product
/// rounded by itself. A weight outside 0...1 counts as 0.5, as does one that is not a number. Null when a colour cannot
/// be read.
[[nodiscard]] HAVRIN_EXPORT Strong<UIColor> blend(const UIColor& color, const UIColor& other, double weight);

}  // namespace havrin
