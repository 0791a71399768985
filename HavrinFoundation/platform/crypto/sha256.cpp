#include <HavrinFoundation/platform/crypto/sha256.h>

// The one-shot functions look the digest up by name at every call, which costs ten times the digest of a short text.
// These stand below them; they are marked as old but kept.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/sha.h>

#include <cstdint>
#include <cstring>
#include <iterator>

namespace havrin::inline platform {

namespace {

template <class Integer>
void writeBigEndian(std::byte* out, Integer value) {
  for (std::size_t i = 0; i < sizeof value; ++i) out[i] = static_cast<std::byte>(value >> (8 * (sizeof value - 1 - i)));
}

// The rest of a text of `size` bytes, which is less than a block, with the padding that ends every text: a one bit,
// zeros, the length in bits. That fills one block or two.
void transformTail(SHA256_CTX& context, std::span<const std::byte> rest, std::uint64_t size) {
  std::array<std::byte, 2 * SHA256_CBLOCK> blocks{};
  if (!rest.empty()) std::memcpy(blocks.data(), rest.data(), rest.size());
  blocks[rest.size()] = std::byte{0x80};
  const std::size_t used = rest.size() + 1 + sizeof size <= SHA256_CBLOCK ? SHA256_CBLOCK : 2 * SHA256_CBLOCK;
  writeBigEndian(&blocks[used - sizeof size], size * 8);
  for (std::size_t i = 0; i < used; i += SHA256_CBLOCK) {
    SHA256_Transform(&context, reinterpret_cast<const unsigned char*>(&blocks[i]));
  }
}

}  // namespace

SHA256Digest sha256(std::span<const std::byte> bytes) noexcept {
  SHA256_CTX context;
  SHA256_Init(&context);
  const std::size_t whole = bytes.size() / SHA256_CBLOCK * SHA256_CBLOCK;
  if (whole != 0) SHA256_Update(&context, bytes.data(), whole);
  transformTail(context, bytes.subspan(whole), bytes.size());

  SHA256Digest digest;
  static_assert(sizeof context.h[0] * std::size(context.h) == sizeof digest);
  for (std::size_t i = 0; i < std::size(context.h); ++i) writeBigEndian(&digest[4 * i], std::uint32_t{context.h[i]});
  return digest;
}

}  // namespace havrin::inline platform
