// SPDX-License-Identifier: Apache-2.0
// Bytes as hexadecimal text: every side ends with a new string.
#include <HavrinFoundation/text/hex.h>

#include <QByteArray>
#include <absl/strings/escaping.h>
#include <benchmark/benchmark.h>
#include <boost/algorithm/hex.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <openssl/crypto.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

std::string ours(const Bytes& bytes) { return havrin::hexString(std::as_bytes(std::span(bytes))); }

std::string absl(const Bytes& bytes) {
  return absl::BytesToHexString({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::string openssl(const Bytes& bytes) {
  std::string text(2 * bytes.size() + 1, '\0');
  std::size_t length = 0;
  OPENSSL_buf2hexstr_ex(text.data(), text.size(), &length, bytes.data(), bytes.size(), '\0');
  text.pop_back();
  return text;
}

QByteArray qt(const Bytes& bytes) {
  return QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()))
      .toHex();
}

std::string boost(const Bytes& bytes) {
  std::string text;
  text.reserve(2 * bytes.size());
  boost::algorithm::hex_lower(bytes.begin(), bytes.end(), std::back_inserter(text));
  return text;
}

std::string fmt(const Bytes& bytes) { return fmt::format("{:02x}", fmt::join(bytes, "")); }

std::string snprintf(const Bytes& bytes) {
  std::string text(2 * bytes.size() + 1, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) std::snprintf(&text[2 * i], 3, "%02x", bytes[i]);
  text.pop_back();
  return text;
}

std::string lowerCase(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'F' ? static_cast<char>(c + 32) : c;  // OpenSSL writes upper case
  return text;
}

template <class Encode>
void measure(const char* name, std::size_t size, const std::string& label, Encode encode) {
  benchmark::RegisterBenchmark((label + "/" + name).c_str(), [=](benchmark::State& state) {
    Bytes bytes(size);
    std::mt19937 generator(7);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(generator());
    const auto once = encode(bytes);
    if (lowerCase(std::string(once.data(), static_cast<std::size_t>(once.size()))) != ours(bytes)) std::abort();
    for (auto _ : state) {
      benchmark::DoNotOptimize(bytes.data());
      auto text = encode(bytes);
      benchmark::DoNotOptimize(text);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
  });
}

[[maybe_unused]] const bool registered = [] {
  const std::pair<std::size_t, const char*> sizes[] = {{16, "16_B"}, {64, "64_B"}, {1024, "1_KiB"}, {1 << 20, "1_MiB"}};
  for (const auto& [size, sizeLabel] : sizes) {
    const std::string label = std::string("hex/encode/") + sizeLabel;
    measure("ours", size, label, ours);
    measure("absl", size, label, absl);
    measure("openssl", size, label, openssl);
    measure("qt", size, label, qt);
    measure("boost", size, label, boost);
    if (size <= 1024) measure("fmt", size, label, fmt);
    if (size <= 1024) measure("snprintf", size, label, snprintf);
  }
  for (std::size_t size = 1; size <= 10'000'000; size *= 10) {
    const std::string label = "growth/hex/" + std::to_string(size);
    measure("ours", size, label, ours);
    measure("absl", size, label, absl);
    measure("openssl", size, label, openssl);
  }
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
