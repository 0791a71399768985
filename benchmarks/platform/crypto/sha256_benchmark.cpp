// SPDX-License-Identifier: Apache-2.0
// Digests of bytes.
#include <HavrinFoundation/platform/crypto/sha256.h>

#define OPENSSL_SUPPRESS_DEPRECATED
#include <QCryptographicHash>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <openssl/evp.h>
#include <openssl/sha.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Digest = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

havrin::SHA256Digest ours(const Bytes& bytes) { return havrin::sha256(std::as_bytes(std::span(bytes))); }

Digest lowLevel(const Bytes& bytes) {
  Digest result;
  SHA256_CTX context;
  SHA256_Init(&context);
  SHA256_Update(&context, bytes.data(), bytes.size());
  SHA256_Final(result.data(), &context);
  return result;
}

Digest oneShot(const Bytes& bytes) {
  Digest result;
  SHA256(bytes.data(), bytes.size(), result.data());
  return result;
}

Digest evp(const Bytes& bytes) {
  Digest result;
  EVP_Digest(bytes.data(), bytes.size(), result.data(), nullptr, EVP_sha256(), nullptr);
  return result;
}

Digest qt(const Bytes& bytes) {
  const auto digest = QCryptographicHash::hash(
      QByteArrayView(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())),
      QCryptographicHash::Sha256);
  Digest result;
  std::memcpy(result.data(), digest.data(), result.size());
  return result;
}

Digest glib(const Bytes& bytes) {
  Digest result;
  gsize length = result.size();
  GChecksum* const checksum = g_checksum_new(G_CHECKSUM_SHA256);
  g_checksum_update(checksum, bytes.data(), static_cast<gssize>(bytes.size()));
  g_checksum_get_digest(checksum, result.data(), &length);
  g_checksum_free(checksum);
  return result;
}

template <class Result>
void measure(const std::string& name, Result (*digest)(const Bytes&)) {
  const std::pair<std::size_t, const char*> sizes[] = {{16, "16_B"}, {64, "64_B"}, {1 << 20, "1_MiB"}};
  for (const auto& [size, label] : sizes) {
    benchmark::RegisterBenchmark(
        ("sha256/digest/" + std::string(label) + "/" + name).c_str(),
        [=, bytes = Bytes(size, 'a')](benchmark::State& state) {
          const auto once = digest(bytes);
          if (std::memcmp(once.data(), ours(bytes).data(), once.size()) != 0) std::abort();
          for (auto _ : state) {
            auto result = digest(bytes);
            benchmark::DoNotOptimize(result);
          }
          state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
        });
  }
}

[[maybe_unused]] const bool registered = [] {
  measure("ours", ours);
  measure("openssl_low_level", lowLevel);
  measure("openssl_one_shot", oneShot);
  measure("evp", evp);
  measure("qt", qt);
  measure("glib", glib);
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
