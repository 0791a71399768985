// SPDX-License-Identifier: Apache-2.0
// Against OpenSSL; text/sha256_test.cpp has published digests.
#include "../../testing.h"
#include <HavrinFoundation/platform/crypto/sha256.h>

#include <openssl/evp.h>

#include <cstring>

namespace {

TEST(SHA256, GivesTheDigestOfEveryLength) {
  std::vector<std::byte> bytes;
  for (std::size_t size = 0; size < 300; ++size) {
    unsigned char expected[EVP_MAX_MD_SIZE];
    ASSERT_EQ(EVP_Digest(bytes.data(), size, expected, nullptr, EVP_sha256(), nullptr), 1);
    const auto digest = havrin::sha256(bytes);
    ASSERT_EQ(0, std::memcmp(digest.data(), expected, digest.size())) << size;
    bytes.push_back(static_cast<std::byte>(size * 31 + 1));
  }
}

}  // namespace
