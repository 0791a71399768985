// SPDX-License-Identifier: Apache-2.0
// Attributed strings from text that may be missing, and their whole range. As messages: attributed_strings_messages.h.
//
//   fromOptionalString<NSAttributedString>("On air", attributes)      the text with these attributes
//   fromOptionalString<NSAttributedString>(std::nullopt)              empty text, never null
//   entireRange(*title)                                               {0, 6}
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>

#include <concepts>
#include <cstddef>
#include <optional>
#include <string_view>

namespace havrin {

namespace detail {
// Send the allocated object its init message.
HAVRIN_EXPORT Strong<NSAttributedString> initialised(NSAttributedString& allocated,
                                                     std::optional<std::string_view> string);
HAVRIN_EXPORT Strong<NSAttributedString> initialised(NSAttributedString& allocated,
                                                     std::optional<std::string_view> string, NSDictionary* attributes);
}  // namespace detail

/// {0, the text's length}, in UTF-16 units.
[[nodiscard]] HAVRIN_EXPORT NSRange entireRange(const NSAttributedString& string);

/// An instance of ClassType, made by the message `initWithOptionalString:`, or with attributes by
/// `initWithOptionalString:attributes:`: an override takes part. Missing text counts as empty text, missing attributes
/// as none.
/// Result: never null, unless an override answers null or an object of another class.
template <std::derived_from<NSAttributedString> ClassType>
[[nodiscard]] Strong<ClassType> fromOptionalString(std::optional<std::string_view> string) {
  const Strong<NSObject> made = detail::initialised(*alloc<ClassType>(), string);
  return cast<ClassType>(made);
}
template <std::derived_from<NSAttributedString> ClassType>
[[nodiscard]] Strong<ClassType> fromOptionalString(std::optional<std::string_view> string, NSDictionary* attributes) {
  const Strong<NSObject> made = detail::initialised(*alloc<ClassType>(), string, attributes);
  return cast<ClassType>(made);
}
// A null pointer is not a text: std::nullopt is the absent one.
template <std::derived_from<NSAttributedString> ClassType, std::same_as<std::nullptr_t> Null>
Strong<ClassType> fromOptionalString(Null string) = delete;
template <std::derived_from<NSAttributedString> ClassType, std::same_as<std::nullptr_t> Null>
Strong<ClassType> fromOptionalString(Null string, NSDictionary* attributes) = delete;

}  // namespace havrin
