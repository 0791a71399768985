// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/colours/colour_arithmetic.h>
#include <HavrinFoundation/colours/colour_arithmetic_messages.h>

using namespace havrin;

namespace {

Strong<UIColor> rgb(double red, double green, double blue, double alpha = 1.0) {
  return make<UIColor>(red, green, blue, alpha);
}
Strong<UIColor> cmyk() { return make<UIColor>(CGColor(CGColorSpace::genericCMYK(), {0, 1, 1, 0, 1})); }
Strong<UIColor> pattern() { return make<UIColor>(CGColor(CGColorSpace::pattern(), {1})); }

// Notes the tolerance that it is compared with.
struct Noting : Object<Noting, UIColor> {
  bool isEqualWithin(UIColor* other, double given) {
    tolerance = given;
    return sendSuper<"isEqualToColor:withTolerance:">(*this, other, given);
  }
  double tolerance = 0;
  using Members = List<Method<"isEqualToColor:withTolerance:", &Noting::isEqualWithin>>;
};

TEST(ColourComparison, ComparesEachComponentWithinTheTolerance) {
  for (const auto& [why, colour, other, tolerance, equal] :
       Rows<const char*, Strong<UIColor>, Strong<UIColor>, double, bool>{
           {"the bound is included", rgb(0.5, 0, 0), rgb(0.75, 0, 0), 0.25, true},
           {"beyond the bound", rgb(0.5, 0, 0), rgb(0.75, 0, 0), 0.2, false},
           {"alpha counts", rgb(1, 0, 0), rgb(1, 0, 0, 0.5), 0.4, false},
           {"grey against RGB", make<UIColor>(0.7, 1.0), rgb(0.7, 0.7, 0.7), 0.001, true},
           {"NaN component", rgb(0, kNotANumber, 0), rgb(0, kNotANumber, 0), 1.0, false},
           {"NaN tolerance", rgb(0, 0, 0), rgb(0, 0, 0), kNotANumber, false},
           {"negative tolerance", rgb(0, 0, 0), rgb(0, 0, 0), -0.1, false},
           {"unreadable receiver", cmyk(), rgb(1, 0, 0), 100.0, false},
           {"unreadable other", rgb(1, 0, 0), pattern(), 100.0, false},
           {"no other", rgb(1, 0, 0), nullptr, 100.0, false},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(send<"isEqualToColor:withTolerance:">(colour, other, tolerance), equal);
  }
}

TEST(NearlyWhite, IsEqualToOpaqueWhiteWithinATenthAsTheMessageCompares) {
  EXPECT_TRUE(isApproximatelyWhite(*rgb(0.9, 0.9, 0.9, 0.9)));
  EXPECT_FALSE(isApproximatelyWhite(*rgb(0.9, 0.9, 0.85)));
  EXPECT_TRUE(send<"isApproximatelyWhiteColor">(UIColor::whiteColor()));
  EXPECT_FALSE(send<"isApproximatelyWhiteColor">(cmyk()));
  const auto noting = make<Noting>();
  noting->initWithRed(1, 1, 1, 1);
  EXPECT_TRUE(isApproximatelyWhite(*noting));
  EXPECT_EQ(noting->tolerance, 0.1);
}

TEST(Inversion, InvertsColoursAndKeepsAlpha) {
  EXPECT_TRUE(inverse(*UIColor::blackColor())->isEqual(rgb(1, 1, 1)));
  const auto turned = send<"inverseColor">(rgb(0.2, 0.4, 0.6, 0.5))->getRedGreenBlueAlpha();
  EXPECT_EQ(turned, (RGBA{1.0 - 0.2, 1.0 - 0.4, 1.0 - 0.6, 0.5}));
  EXPECT_TRUE(inverse(*pattern())->isEqual(rgb(1, 1, 1, 0)));
  EXPECT_TRUE(inverse(*cmyk())->isEqual(rgb(1, 1, 1, 0)));
  EXPECT_EQ(classOf(*inverse(*make<Noting>())).name(), "UIColor");
}

TEST(Blending, WeighsTheOtherColour) {
  const auto black = UIColor::blackColor();
  const auto white = UIColor::whiteColor();
  for (const auto& [why, weight, level] : Rows<const char*, double, double>{
           {"none", 0.0, 0.0},
           {"a quarter", 0.25, 0.25},
           {"all", 1.0, 1.0},
           {"too much", 1.5, 0.5},
           {"too little", -0.1, 0.5},
           {"NaN", kNotANumber, 0.5},
       }) {
    SCOPED_TRACE(why);
    const RGBA expected{level, level, level, 1.0};
    EXPECT_EQ(blend(*black, *white, weight)->getRedGreenBlueAlpha(), expected);
    EXPECT_EQ(send<"blendWithColor:weight:">(black, white, weight)->getRedGreenBlueAlpha(), expected);
  }
  EXPECT_EQ(blend(*black, *make<UIColor>(0.0, 0.0), 0.5)->getRedGreenBlueAlpha()->alpha, 0.5);
  EXPECT_FALSE(blend(*cmyk(), *white, 0.5));
  EXPECT_FALSE(blend(*white, *pattern(), 0.5));
  EXPECT_FALSE(send<"blendWithColor:weight:">(white, nullptr, 0.5));
}

// A fused multiply-add gives other values for both.
TEST(Blending, RoundsEachProductByItself) {
  const auto mixed = blend(*rgb(0.1, 0.3, 0), *rgb(0.8, 0.4, 0), 0.1)->getRedGreenBlueAlpha();
  EXPECT_EQ(mixed->red, 0.17000000000000004);
  EXPECT_EQ(mixed->green, 0.31000000000000005);
}

TEST(Colours, AreEqualByModelAndComponents) {
  EXPECT_FALSE(UIColor::whiteColor()->isEqual(rgb(1, 1, 1)));
  EXPECT_TRUE(UIColor::redColor()->isEqual(rgb(1, 0, 0)));
  EXPECT_EQ(UIColor::redColor()->hash(), rgb(1, 0, -0.0)->hash());
  EXPECT_TRUE(UIColor::redColor()->isEqual(rgb(1, 0, -0.0)));
  EXPECT_EQ(rgb(1.5, -1, 0, 1.5)->getRedGreenBlueAlpha(), (RGBA{1.5, -1, 0, 1}));
  const auto p3 = make<UIColor>(CGColor(CGColorSpace::displayP3(), {0, 210.0 / 255.0, 0, 1}))->getRedGreenBlueAlpha();
  // Known to four decimals: the matrices in use differ beyond.
  EXPECT_NEAR(p3->red, -0.416964, 2e-4);
  EXPECT_NEAR(p3->green, 0.838774, 2e-4);
  EXPECT_NEAR(p3->blue, -0.249501, 2e-4);
}

}  // namespace
