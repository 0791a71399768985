// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/hex.h>

#include <HavrinFoundation/platform/base/hex_digits.h>

namespace havrin {

std::string hexString(std::span<const std::byte> bytes) {
  std::string result(2 * bytes.size(), '\0');
  writeHexDigits(bytes.data(), bytes.size(), result.data());
  return result;
}

}  // namespace havrin
