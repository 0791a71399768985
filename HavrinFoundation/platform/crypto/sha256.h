// SPDX-License-Identifier: Apache-2.0
// SHA-256 digests of bytes.
//
//   sha256({})          e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855
//
// Left out: other digests, keyed digests, digests of a stream in pieces.
// Source: FIPS 180-4.
#pragma once

#include <HavrinFoundation/platform/export.h>

#include <array>
#include <cstddef>
#include <span>

namespace havrin {
inline namespace platform {

using SHA256Digest = std::array<std::byte, 32>;

/// The SHA-256 digest of `bytes`. Cost: no allocation.
[[nodiscard]] HAVRIN_EXPORT SHA256Digest sha256(std::span<const std::byte> bytes) noexcept;

}  // namespace platform
}  // namespace havrin
