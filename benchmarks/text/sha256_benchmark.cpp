// SPDX-License-Identifier: Apache-2.0
// The dash-grouped digest of a short text, from text to text.
#include <HavrinFoundation/text/sha256.h>

#define OPENSSL_SUPPRESS_DEPRECATED
#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <openssl/sha.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr char kDigits[] = "0123456789abcdef";

std::string ours(const std::string& text) { return *havrin::groupedSHA256(text); }

std::string lowLevel(const std::string& text) {
  unsigned char digest[SHA256_DIGEST_LENGTH];
  SHA256_CTX context;
  SHA256_Init(&context);
  SHA256_Update(&context, text.data(), text.size());
  SHA256_Final(digest, &context);
  std::string result;
  for (std::size_t i = 0; i < sizeof digest; ++i) {
    if (i != 0 && i % 4 == 0) result += '-';
    result += kDigits[digest[i] >> 4];
    result += kDigits[digest[i] & 0xF];
  }
  return result;
}

std::string printed(const std::string& text) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  EVP_Digest(text.data(), text.size(), digest, nullptr, EVP_sha256(), nullptr);
  std::string result;
  for (std::size_t i = 0; i < SHA256_DIGEST_LENGTH; ++i) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", digest[i]);
    if (i != 0 && i % 4 == 0) result += '-';
    result += pair;
  }
  return result;
}

void measure(benchmark::State& state, std::string (*digest)(const std::string&)) {
  const std::string text = "station-12345678";
  if (digest(text) != ours(text)) std::abort();
  for (auto _ : state) {
    auto result = digest(text);
    benchmark::DoNotOptimize(result);
  }
}

BENCHMARK_CAPTURE(measure, ours, ours)->Name("grouped_sha256/text/16_B/ours");
BENCHMARK_CAPTURE(measure, low_level, lowLevel)->Name("grouped_sha256/text/16_B/openssl_low_level");
BENCHMARK_CAPTURE(measure, snprintf, printed)->Name("grouped_sha256/text/16_B/evp_and_snprintf");

}  // namespace

BENCHMARK_MAIN();
