// SPDX-License-Identifier: Apache-2.0
#include "../../testing.h"
#include <HavrinFoundation/platform/crypto/sha256.h>

#include <openssl/evp.h>

#include <cstring>
#include <span>

namespace {

std::string digestText(std::span<const std::byte> bytes) {
  std::string text;
  char pair[3];
  for (const std::byte byte : havrin::sha256(bytes)) {
    std::snprintf(pair, sizeof pair, "%02x", std::to_integer<unsigned>(byte));
    text += pair;
  }
  return text;
}

TEST(SHA256, GivesThePublishedDigests) {
  const struct {
    std::string text;
    const char* digest;
  } rows[] = {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
  };
  for (const auto& row : rows) EXPECT_EQ(digestText(std::as_bytes(std::span(row.text))), row.digest);
}

TEST(SHA256, PadsEveryLengthAsTheStandardSays) {
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
