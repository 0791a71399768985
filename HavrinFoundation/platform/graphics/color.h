// SPDX-License-Identifier: Apache-2.0
// A colour as components in a colour space.
//
//   const CGColor orange(CGColorSpace::extendedSRGB(), {1.0, 0.5, 0.0, 1.0});
//   orange.components()                  1, 0.5, 0, 1: alpha comes last
//   orange.colorSpace()->model           CGColorSpaceModel::rgb
//
// Left out: conversion between spaces (but for what UIColor reads), rendering intents, profiles, patterns' drawing.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <array>
#include <cstddef>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

/// What the components of a colour mean.
enum class CGColorSpaceModel : int {
  unknown = -1,
  monochrome = 0,
  rgb = 1,
  cmyk = 2,
  lab = 3,
  deviceN = 4,
  indexed = 5,
  pattern = 6,
};

/// A colour space, known by its model and its name.
struct CGColorSpace {
  CGColorSpaceModel model = CGColorSpaceModel::unknown;
  std::string_view name;  // of static storage

  static constexpr CGColorSpace extendedGray() { return {CGColorSpaceModel::monochrome, "extendedGray"}; }
  static constexpr CGColorSpace extendedSRGB() { return {CGColorSpaceModel::rgb, "extendedSRGB"}; }
  static constexpr CGColorSpace displayP3() { return {CGColorSpaceModel::rgb, "displayP3"}; }
  static constexpr CGColorSpace genericCMYK() { return {CGColorSpaceModel::cmyk, "genericCMYK"}; }
  static constexpr CGColorSpace lab() { return {CGColorSpaceModel::lab, "lab"}; }
  static constexpr CGColorSpace pattern() { return {CGColorSpaceModel::pattern, "pattern"}; }

  friend bool operator==(const CGColorSpace&, const CGColorSpace&) = default;
};

class HAVRIN_EXPORT CGColor {
 public:
  /// A colour without space and components.
  CGColor() = default;
  /// Components in the order of the space's model, alpha last: grey 2, RGB 4, CMYK 5, pattern 1.
  CGColor(std::optional<CGColorSpace> space, std::span<const double> components);
  CGColor(std::optional<CGColorSpace> space, std::initializer_list<double> components)
      : CGColor(space, std::span(components.begin(), components.size())) {}

  /// The space; null when the colour has none.
  [[nodiscard]] const CGColorSpace* colorSpace() const { return space_ ? &*space_ : nullptr; }
  /// The components; empty when the colour has none.
  [[nodiscard]] std::span<const double> components() const {
    return many_.empty() ? std::span(few_.data(), count_) : std::span(many_.data(), many_.size());
  }
  /// The last component; 1 when there is none.
  [[nodiscard]] double alpha() const { return components().empty() ? 1.0 : components().back(); }

  /// Equal spaces and equal components.
  friend HAVRIN_EXPORT bool operator==(const CGColor& a, const CGColor& b);

 private:
  std::optional<CGColorSpace> space_;
  std::size_t count_ = 0;
  std::array<double, 5> few_{};  // the usual models need no allocation
  std::vector<double> many_;
};

}  // namespace platform
}  // namespace havrin
