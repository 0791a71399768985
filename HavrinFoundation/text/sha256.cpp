// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/text/sha256.h>

#include <HavrinFoundation/platform/crypto/sha256.h>
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/hex.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

namespace havrin {

namespace {

constexpr std::size_t kGroups = 8, kGroupLength = 8;

}  // namespace

std::optional<std::string> groupedSHA256(std::string_view text) {
  const std::string_view hashed = text.substr(0, text.find('\0'));
  if (hashed.size() > std::numeric_limits<std::uint32_t>::max() || !isWellFormed(text)) return std::nullopt;
  const std::string digits = hexString(sha256(std::as_bytes(std::span(hashed))));
  std::string result(kGroups * (kGroupLength + 1) - 1, '-');
  for (std::size_t i = 0; i < kGroups; ++i) {
    std::copy_n(&digits[i * kGroupLength], kGroupLength, &result[i * (kGroupLength + 1)]);
  }
  return result;
}

}  // namespace havrin
