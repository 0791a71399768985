// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/interface/ui_color.h>

#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/string.h>

#include <bit>
#include <cmath>
#include <string>

namespace havrin {
inline namespace platform {

namespace {

double held(double alpha) { return alpha < 0 ? 0 : alpha > 1 ? 1 : alpha; }

CGColor gray(double white, double alpha) { return {CGColorSpace::extendedGray(), {white, held(alpha)}}; }
CGColor rgb(double red, double green, double blue, double alpha) {
  return {CGColorSpace::extendedSRGB(), {red, green, blue, held(alpha)}};
}

// The transfer curve of sRGB, which display P3 shares, mirrored below zero. Source: IEC 61966-2-1.
double linear(double encoded) {
  const double magnitude = std::fabs(encoded);
  const double value = magnitude <= 0.04045 ? magnitude / 12.92 : std::pow((magnitude + 0.055) / 1.055, 2.4);
  return std::copysign(value, encoded);
}
double encoded(double light) {
  const double magnitude = std::fabs(light);
  const double value = magnitude <= 0.0031308 ? magnitude * 12.92 : 1.055 * std::pow(magnitude, 1 / 2.4) - 0.055;
  return std::copysign(value, light);
}

// Both spaces have the white point D65, so a matrix between their primaries is all. Source: SMPTE EG 432-1, IEC 61966-2-1.
RGBA fromDisplayP3(std::span<const double> p3) {
  const double r = linear(p3[0]);
  const double g = linear(p3[1]);
  const double b = linear(p3[2]);
  return {encoded(1.2249401762805598 * r - 0.2249401762805598 * g),
          encoded(-0.0420569547096881 * r + 1.0420569547096881 * g),
          encoded(-0.0196375545903344 * r - 0.0786360455506319 * g + 1.0982736001409663 * b), p3[3]};
}

}  // namespace

UIColor::UIColor() : UIColor(0, 1) {}
UIColor::UIColor(double white, double alpha) : color_(gray(white, alpha)) {}
UIColor::UIColor(double red, double green, double blue, double alpha) : color_(rgb(red, green, blue, alpha)) {}
UIColor::UIColor(CGColor color) : color_(std::move(color)) {}

Strong<UIColor> UIColor::blackColor() { return make<UIColor>(0.0, 1.0); }
Strong<UIColor> UIColor::darkGrayColor() { return make<UIColor>(1.0 / 3.0, 1.0); }
Strong<UIColor> UIColor::lightGrayColor() { return make<UIColor>(2.0 / 3.0, 1.0); }
Strong<UIColor> UIColor::whiteColor() { return make<UIColor>(1.0, 1.0); }
Strong<UIColor> UIColor::grayColor() { return make<UIColor>(0.5, 1.0); }
Strong<UIColor> UIColor::redColor() { return make<UIColor>(1.0, 0.0, 0.0, 1.0); }
Strong<UIColor> UIColor::greenColor() { return make<UIColor>(0.0, 1.0, 0.0, 1.0); }
Strong<UIColor> UIColor::blueColor() { return make<UIColor>(0.0, 0.0, 1.0, 1.0); }
Strong<UIColor> UIColor::cyanColor() { return make<UIColor>(0.0, 1.0, 1.0, 1.0); }
Strong<UIColor> UIColor::yellowColor() { return make<UIColor>(1.0, 1.0, 0.0, 1.0); }
Strong<UIColor> UIColor::magentaColor() { return make<UIColor>(1.0, 0.0, 1.0, 1.0); }
Strong<UIColor> UIColor::orangeColor() { return make<UIColor>(1.0, 0.5, 0.0, 1.0); }
Strong<UIColor> UIColor::purpleColor() { return make<UIColor>(0.5, 0.0, 0.5, 1.0); }
Strong<UIColor> UIColor::brownColor() { return make<UIColor>(0.6, 0.4, 0.2, 1.0); }
Strong<UIColor> UIColor::clearColor() { return make<UIColor>(0.0, 0.0); }

Strong<UIColor> UIColor::initWithWhite(double white, double alpha) {
  color_ = gray(white, alpha);
  return Strong<UIColor>(this);
}

Strong<UIColor> UIColor::initWithRed(double red, double green, double blue, double alpha) {
  color_ = rgb(red, green, blue, alpha);
  return Strong<UIColor>(this);
}

const CGColor& UIColor::cgColor() const { return color_; }

std::optional<RGBA> UIColor::getRedGreenBlueAlpha() const {
  const CGColorSpace* space = color_.colorSpace();
  const std::span<const double> components = color_.components();
  if (!space) return std::nullopt;
  if (space->model == CGColorSpaceModel::monochrome && components.size() >= 2) {
    return RGBA{components[0], components[0], components[0], components[1]};
  }
  if (space->model == CGColorSpaceModel::rgb && components.size() >= 4) {
    if (*space == CGColorSpace::displayP3()) return fromDisplayP3(components);
    return RGBA{components[0], components[1], components[2], components[3]};
  }
  return std::nullopt;
}

bool UIColor::isEqual(const NSObject* other) const {
  const UIColor* color = cast<UIColor>(other);
  return color && (color == this || cgColor() == color->cgColor());
}

std::uint64_t UIColor::hash() const {
  std::uint64_t hash = 17;
  const CGColor& color = cgColor();
  for (const double component : color.components()) {
    hash = hash * 31 + std::bit_cast<std::uint64_t>(component == 0 ? 0.0 : component);  // -0 equals 0
  }
  return hash;
}

Strong<NSString> UIColor::description() const {
  std::string text = "<UIColor:";
  const CGColor& color = cgColor();
  if (color.colorSpace()) text += " " + std::string(color.colorSpace()->name);
  for (const double component : color.components()) text += " " + utf8(*makeNumber(component)->stringValue());
  return makeString(text + ">");
}

Strong<NSObject> UIColor::copy() const { return Strong<NSObject>(const_cast<UIColor*>(this)); }

template ClassObject* buildClass<UIColor>();

}  // namespace platform
}  // namespace havrin
