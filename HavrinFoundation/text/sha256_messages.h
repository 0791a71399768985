// SPDX-License-Identifier: Apache-2.0
// The exported plain function for the dash-grouped digest of a string: sha256.h.
//
//   HAV_SHA_256(makeString("abc"))     ba7816bf-8f01cfea-414140de-5dae2223-b00361a3-96177a9c-b410ff61-f20015ad
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/string.h>

namespace havrin {

/// As `groupedSHA256` of the string's UTF-8 form. Exported under this unadorned name.
/// Result: an instance of NSMutableString, new at each call.
/// Nil: null for a null string, for one with a lone surrogate, which has no UTF-8 form, and for one whose UTF-8 form has
/// 2^32 bytes or more before its first zero byte.
[[nodiscard]] HAVRIN_EXPORT Strong<NSString> HAV_SHA_256(NSString* string) __asm__("HAV_SHA_256");

}  // namespace havrin
