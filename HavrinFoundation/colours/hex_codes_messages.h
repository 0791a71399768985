// SPDX-License-Identifier: Apache-2.0
// UIColor(HavrinFoundation), colour codes: hex_codes.h as messages. Null as the typed form's empty results.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/interface/ui_color.h>
#include <HavrinFoundation/platform/object/string.h>

namespace havrin {
inline namespace platform {

/// As `hexString`.
template <>
struct Message<UIColor, "h_hexString"> : Signature<Strong<NSString>()> {};
/// As `colorWithHexString`: a plain UIColor, also when sent to a subclass. Null for null.
template <>
struct ClassMessage<UIColor, "h_colorWithHexString:"> : Signature<Strong<UIColor>(NSString*)> {};
/// The cleaned code of six or eight digits, their case kept; null where reading the code would give null. Null counts as
/// the empty string.
template <>
struct ClassMessage<UIColor, "sanitizedWithHexString:"> : Signature<Strong<NSString>(NSString*)> {};
/// As `randomColor`: a plain UIColor, never null.
template <>
struct ClassMessage<UIColor, "randomColor"> : Signature<Strong<UIColor>()> {};

}  // namespace platform
}  // namespace havrin
