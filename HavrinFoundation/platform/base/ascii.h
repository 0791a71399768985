// SPDX-License-Identifier: Apache-2.0
// The ASCII classes of a character, whatever the locale: isAsciiDigit('7'), isAsciiLetter('z'). Internal to platform/.
#pragma once

namespace havrin {
inline namespace platform {

[[nodiscard]] constexpr bool isAsciiDigit(char c) noexcept { return c >= '0' && c <= '9'; }
[[nodiscard]] constexpr bool isAsciiLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace platform
}  // namespace havrin
