// SPDX-License-Identifier: Apache-2.0
// Bytes as hexadecimal text. As a message: hex_messages.h.
//
//   hexString(bytes)                   "0001abff" for the bytes 00 01 AB FF
//   hexString({})                      ""
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <span>
#include <string>

namespace havrin {

/// Two lower-case hexadecimal digits for each byte, in order, with nothing between them.
[[nodiscard]] HAVRIN_EXPORT std::string hexString(std::span<const std::byte> bytes);

}  // namespace havrin
