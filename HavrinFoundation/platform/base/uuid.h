// SPDX-License-Identifier: Apache-2.0
// Universally unique identifiers (RFC 9562).
//
//   UUID::fromString("e621e1f8-c36c-495a-93fc-0c247a3e6e5f")->uuidString()     "E621E1F8-C36C-495A-93FC-0C247A3E6E5F"
//   UUID::fromString("{e621e1f8-c36c-495a-93fc-0c247a3e6e5f}")                 empty
//   UUID()                                                                     all 128 bits zero
//
// Left out: making new random identifiers.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// 128 bits that name something, in the order in which they are written.
class UUID {
 public:
  using Bytes = std::array<std::uint8_t, 16>;

  /// The identifier whose bits are all zero.
  constexpr UUID() = default;
  explicit constexpr UUID(const Bytes& bytes) : bytes_(bytes) {}

  /// The identifier that `text` writes: 32 hexadecimal digits of either case, in groups of 8, 4, 4, 4 and 12 joined by
  /// "-", nothing else.
  /// Empty when: text is anything else, braces, prefixes and blanks included.
  [[nodiscard]] HAVRIN_EXPORT static std::optional<UUID> fromString(std::string_view text);
  static std::optional<UUID> fromString(std::nullptr_t) = delete;  // not a text

  /// The text form: 36 characters, digits in upper case.
  [[nodiscard]] HAVRIN_EXPORT std::string uuidString() const;

  [[nodiscard]] constexpr const Bytes& bytes() const { return bytes_; }

  friend constexpr bool operator==(const UUID&, const UUID&) = default;

 private:
  Bytes bytes_{};
};

}  // namespace platform
}  // namespace havrin

template <>
struct std::hash<havrin::UUID> {
  std::size_t operator()(const havrin::UUID& uuid) const noexcept {
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(uuid.bytes().data()), uuid.bytes().size()});
  }
};
