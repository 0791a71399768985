// Attributed strings from text that may be missing, and their whole range. As messages: attributed_strings_messages.h.
//
//   fromOptionalString<NSAttributedString>("On air", attributes)      the text with these attributes
//   fromOptionalString<NSAttributedString>(std::nullopt)              empty text, never null
//   entireRange(*title)                                               {0, 6}
#pragma once

#include <concepts>
#include <cstddef>
#include <optional>
#include <string_view>

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>

namespace havrin {

namespace library_detail {
// Send the allocated object its init message.
HAVRIN_EXPORT Strong<NSAttributedString> initialised(NSAttributedString& allocated,
                                                     std::optional<std::string_view> string);
HAVRIN_EXPORT Strong<NSAttributedString> initialised(NSAttributedString& allocated,
                                                     std::optional<std::string_view> string, NSDictionary* attributes);
}  // namespace library_detail

/// {0, the text's length}, in UTF-16 units.
[[nodiscard]] HAVRIN_EXPORT NSRange entireRange(const NSAttributedString& string);

/// An instance of C, made by the message `initWithOptionalString:`, or with attributes by
/// `initWithOptionalString:attributes:`: an override takes part. Missing text counts as empty text, missing attributes
/// as none.
/// Result: never null, unless an override answers null or an object of another class.
template <std::derived_from<NSAttributedString> C>
[[nodiscard]] Strong<C> fromOptionalString(std::optional<std::string_view> string) {
  const Strong<NSObject> made = library_detail::initialised(*alloc<C>(), string);
  return cast<C>(made);
}
template <std::derived_from<NSAttributedString> C>
[[nodiscard]] Strong<C> fromOptionalString(std::optional<std::string_view> string, NSDictionary* attributes) {
  const Strong<NSObject> made = library_detail::initialised(*alloc<C>(), string, attributes);
  return cast<C>(made);
}
// A null pointer is not a text: std::nullopt is the absent one.
template <std::derived_from<NSAttributedString> C, std::same_as<std::nullptr_t> N>
Strong<C> fromOptionalString(N string) = delete;
template <std::derived_from<NSAttributedString> C, std::same_as<std::nullptr_t> N>
Strong<C> fromOptionalString(N string, NSDictionary* attributes) = delete;

}  // namespace havrin
