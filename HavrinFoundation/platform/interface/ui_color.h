// SPDX-License-Identifier: Apache-2.0
// UIColor: a colour as an object.
//
//   Strong<UIColor> orange = UIColor::orangeColor();
//   orange->getRedGreenBlueAlpha()                       {1, 0.5, 0, 1}
//   UIColor::whiteColor()->cgColor().components()        1, 1: white, black, grey and clear are grey colours
//   make<UIColor>(1.2, 0.0, 0.0, 1.5)                    red is kept at 1.2, alpha is held to 0...1
//
// Left out: hue and saturation, dynamic colours that follow an appearance, images as patterns, drawing.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/graphics/color.h>
#include <HavrinFoundation/platform/object/members.h>

#include <optional>

namespace havrin {
inline namespace platform {

/// Red, green, blue and alpha in extended sRGB: 0 to 1, or beyond for colours outside it.
struct RGBA {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 0;

  friend bool operator==(const RGBA&, const RGBA&) = default;
};

class HAVRIN_EXPORT UIColor : public Object<UIColor, NSObject> {
 public:
  using Leaf = UIColor;

  /// Opaque black, for an init message.
  UIColor();
  UIColor(double white, double alpha);
  UIColor(double red, double green, double blue, double alpha);
  explicit UIColor(CGColor color);

  [[nodiscard]] static Strong<UIColor> blackColor();
  [[nodiscard]] static Strong<UIColor> darkGrayColor();
  [[nodiscard]] static Strong<UIColor> lightGrayColor();
  [[nodiscard]] static Strong<UIColor> whiteColor();
  [[nodiscard]] static Strong<UIColor> grayColor();
  [[nodiscard]] static Strong<UIColor> redColor();
  [[nodiscard]] static Strong<UIColor> greenColor();
  [[nodiscard]] static Strong<UIColor> blueColor();
  [[nodiscard]] static Strong<UIColor> cyanColor();
  [[nodiscard]] static Strong<UIColor> yellowColor();
  [[nodiscard]] static Strong<UIColor> magentaColor();
  [[nodiscard]] static Strong<UIColor> orangeColor();
  [[nodiscard]] static Strong<UIColor> purpleColor();
  [[nodiscard]] static Strong<UIColor> brownColor();
  [[nodiscard]] static Strong<UIColor> clearColor();

  /// Makes an allocated colour that grey, or that RGB colour. Result: the colour to use in its place, here itself.
  /// Alpha is held to 0...1; the others are kept as given.
  virtual Strong<UIColor> initWithWhite(double white, double alpha);
  virtual Strong<UIColor> initWithRed(double red, double green, double blue, double alpha);

  [[nodiscard]] virtual const CGColor& cgColor() const;
  /// The components in extended sRGB; empty for colours of another model than grey and RGB, and for colours that lack
  /// components. A grey colour reads as red = green = blue; display P3 is converted.
  [[nodiscard]] virtual std::optional<RGBA> getRedGreenBlueAlpha() const;

  /// Equal colour spaces and equal components: a grey white is not an RGB white.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  [[nodiscard]] Strong<NSString> description() const override;
  [[nodiscard]] Strong<NSObject> copy() const override;

 private:
  CGColor color_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<UIColor>();

}  // namespace platform
}  // namespace havrin
