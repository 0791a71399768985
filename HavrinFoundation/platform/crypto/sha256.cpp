// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/crypto/sha256.h>

// The one-shot functions look the digest up by name at every call, which costs ten times the digest of a short text.
// These functions below them are deprecated but kept.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/sha.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace havrin {
inline namespace platform {

namespace {

constexpr std::uint64_t bigEndian(std::uint64_t value) {
  return std::endian::native == std::endian::big ? value : __builtin_bswap64(value);
}

// The rest of a text of `size` bytes, which is less than a block, with the padding that ends every text: a one bit,
// zeros, the length in bits. That fills one block or two.
void transformTail(SHA256_CTX& context, std::span<const std::byte> rest, std::uint64_t size) {
  std::array<unsigned char, SHA256_CBLOCK> block{};
  if (!rest.empty()) std::memcpy(block.data(), rest.data(), rest.size());
  block[rest.size()] = 0x80;
  const std::uint64_t bits = bigEndian(size * 8);
  if (rest.size() + 1 + sizeof bits > block.size()) {
    SHA256_Transform(&context, block.data());
    block = {};
  }
  std::memcpy(&block[block.size() - sizeof bits], &bits, sizeof bits);
  SHA256_Transform(&context, block.data());
}

}  // namespace

SHA256Digest sha256(std::span<const std::byte> bytes) noexcept {
  SHA256_CTX context;
  SHA256_Init(&context);
  const std::size_t whole = bytes.size() / SHA256_CBLOCK * SHA256_CBLOCK;
  if (whole != 0) SHA256_Update(&context, bytes.data(), whole);
  transformTail(context, bytes.subspan(whole), bytes.size());

  SHA256Digest digest;
  static_assert(sizeof context.h == sizeof digest);
  for (std::size_t i = 0; i < std::size(context.h); i += 2) {
    const std::uint64_t words = bigEndian(std::uint64_t{context.h[i]} << 32 | context.h[i + 1]);
    std::memcpy(&digest[i * sizeof context.h[i]], &words, sizeof words);
  }
  return digest;
}

}  // namespace platform
}  // namespace havrin
