// SPDX-License-Identifier: Apache-2.0
// The SHA-256 digest of a text, in dash-separated groups. The exported plain function for strings: sha256_messages.h.
//
//   groupedSHA256("abc")    "ba7816bf-8f01cfea-414140de-5dae2223-b00361a3-96177a9c-b410ff61-f20015ad"
//   groupedSHA256("a\0b"sv)  the digest of "a"
//   groupedSHA256("\xFF")   empty
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {

/// The digest of the bytes of `text` up to, and without, its first zero byte: eight groups of eight lower-case
/// hexadecimal digits, joined by "-", 71 characters.
/// Empty when: text is not well-formed UTF-8; there are 2^32 bytes or more before the first zero byte.
/// Source: FIPS 180-4.
[[nodiscard]] HAVRIN_EXPORT std::optional<std::string> groupedSHA256(std::string_view text);
std::optional<std::string> groupedSHA256(std::nullptr_t) = delete;

}  // namespace havrin
