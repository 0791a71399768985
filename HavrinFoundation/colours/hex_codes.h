// SPDX-License-Identifier: Apache-2.0
// Hexadecimal colour codes: written, read, cleaned, drawn at random. As messages: hex_codes_messages.h.
//
//   hexString(*UIColor::orangeColor())              "#FF7F00"
//   fromHexString<UIColor>(" ff-88-00 ")            the colour 255/255, 136/255, 0, opaque
//   colorWithHexString("0xFF000080")                red with alpha 128/255
//   fromHexString<UIColor>("#FFF")                  null
//   randomColor()                                   any of the 2^24 opaque colours
//
// Alpha comes last (RRGGBBAA), as in web style sheets; toolkits that write AARRGGBB put it first, and a code copied
// from one of them reads as another colour here.
// A code that was read is written back the same, but for its case and the "#".
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/interface/ui_color.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {

namespace detail {

// Six or eight hexadecimal digits, their case kept.
struct HexCode {
  std::array<char, 9> digits;  // one more than a code has, for what comes after the last digit
  std::size_t count;

  [[nodiscard]] std::string_view view() const { return {digits.data(), count}; }
};

// The digits that a loosely written code leaves, as `fromHexString` describes.
[[nodiscard]] HAVRIN_EXPORT std::optional<HexCode> sanitizedHexCode(std::string_view code);

// The components of a loosely written code.
[[nodiscard]] HAVRIN_EXPORT std::optional<RGBA> readHexCode(std::string_view code);

}  // namespace detail

/// The code of a colour: "#" and six upper-case digits, or eight when alpha is below 1. Each component times 255,
/// truncated: 0.5 gives 7F. Components are the colour's own: nothing is converted into another colour space.
/// Empty when: the colour has no components or no colour space; its model is neither grey nor RGB; it has fewer
/// components than its model; a component is not finite, or times 255 leaves 64 bits.
/// Choice: components are not held to 0...1: 1.2 writes 132, and of a negative number the low 32 bits (FFFFFFCD).
[[nodiscard]] HAVRIN_EXPORT std::optional<std::string> hexString(const UIColor& color);

/// The colour of a code, an instance of ClassType. Accepted are 6 to 11 characters that leave 6 or 8
/// hexadecimal digits once "0x" at the very start and every other character are dropped.
/// Empty when (null): there is no code; it has fewer than 6 or more than 11 characters before anything is dropped, or
/// leaves another number of digits; an override of `initWithRed` answers null or a colour of another class.
/// Choice: "0x" is a prefix by characters: followed by a combining mark it is none.
template <std::derived_from<UIColor> ClassType>
[[nodiscard]] Strong<ClassType> fromHexString(std::optional<std::string_view> code) {
  const auto components = code ? detail::readHexCode(*code) : std::nullopt;
  if (!components) return nullptr;
  const Strong<ClassType> allocated = alloc<ClassType>();
  return cast<ClassType>(static_cast<NSObject*>(
      allocated->initWithRed(components->red, components->green, components->blue, components->alpha)));
}

// A null pointer is not a text: std::nullopt is the absent code.
template <std::derived_from<UIColor> ClassType, std::same_as<std::nullptr_t> Null>
Strong<ClassType> fromHexString(Null code) = delete;

/// As `fromHexString<UIColor>`.
[[nodiscard]] HAVRIN_EXPORT Strong<UIColor> colorWithHexString(std::optional<std::string_view> code);
template <std::same_as<std::nullptr_t> Null>
Strong<UIColor> colorWithHexString(Null code) = delete;

/// An opaque colour, each of its three bytes equally likely, from the system's secure source.
[[nodiscard]] HAVRIN_EXPORT Strong<UIColor> randomColor();

}  // namespace havrin
