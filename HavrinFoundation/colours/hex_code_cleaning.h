// The cleaning of loosely written colour codes, which reading and the message sanitizedWithHexString: share. Internal.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace havrin {

/// Six or eight hexadecimal digits, their case kept.
struct HexCode {
  std::array<char, 9> digits;  // one more than a code has, for what comes after the last digit
  std::size_t count;

  [[nodiscard]] std::string_view view() const { return {digits.data(), count}; }
};

/// The digits that `code` leaves once "0x" at its start and everything that is no hexadecimal digit are dropped.
/// Empty when: it has fewer than 6 or more than 11 characters, or does not leave 6 or 8 digits.
[[nodiscard]] std::optional<HexCode> sanitizedHexCode(std::string_view code) noexcept;

}  // namespace havrin
