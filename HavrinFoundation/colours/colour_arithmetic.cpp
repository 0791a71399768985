// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/colours/colour_arithmetic.h>

#include <HavrinFoundation/colours/colour_arithmetic_messages.h>

#include <cmath>

namespace havrin {

namespace {

constexpr double kNearlyWhite = 0.1;
constexpr double kWeightInPlaceOfNone = 0.5;

// This file is compiled without fused multiply-add: both products are rounded before they are added.
double mixed(double first, double other, double weight) { return (1.0 - weight) * first + weight * other; }

}  // namespace

bool isEqual(const UIColor& color, const UIColor& other, double tolerance) {
  const auto mine = color.getRedGreenBlueAlpha();
  if (!mine) return false;
  const auto theirs = other.getRedGreenBlueAlpha();
  if (!theirs) return false;
  const auto near = [tolerance](double a, double b) { return std::fabs(a - b) <= tolerance; };
  return near(mine->red, theirs->red) && near(mine->green, theirs->green) && near(mine->blue, theirs->blue) &&
         near(mine->alpha, theirs->alpha);
}

bool isApproximatelyWhite(const UIColor& color) {
  return send<"isEqualToColor:withTolerance:">(color, UIColor::whiteColor(), kNearlyWhite);
}

Strong<UIColor> inverse(const UIColor& color) {
  const RGBA read = color.getRedGreenBlueAlpha().value_or(RGBA{});
  return make<UIColor>(1.0 - read.red, 1.0 - read.green, 1.0 - read.blue, read.alpha);
}

Strong<UIColor> blend(const UIColor& color, const UIColor& other, double weight) {
  const double share = weight >= 0.0 && weight <= 1.0 ? weight : kWeightInPlaceOfNone;
  const auto mine = color.getRedGreenBlueAlpha();
  if (!mine) return nullptr;
  const auto theirs = other.getRedGreenBlueAlpha();
  if (!theirs) return nullptr;
  return make<UIColor>(mixed(mine->red, theirs->red, share), mixed(mine->green, theirs->green, share),
                       mixed(mine->blue, theirs->blue, share), mixed(mine->alpha, theirs->alpha, share));
}

}  // namespace havrin
