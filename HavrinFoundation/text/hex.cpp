#include <HavrinFoundation/text/hex.h>

#include <HavrinFoundation/platform/base/wide_instructions.h>

#include <array>
#include <cstdint>
#include <string_view>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace havrin {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

// "00" to "ff".
constexpr auto kDigitPairs = [] {
  std::array<char, 512> pairs{};
  for (std::size_t i = 0; i < 256; ++i) {
    pairs[2 * i] = kDigits[i / 16];
    pairs[2 * i + 1] = kDigits[i % 16];
  }
  return pairs;
}();

void encodePlain(const std::byte* bytes, std::size_t size, char* out) {
  for (std::size_t i = 0; i < size; ++i) {
    const char* pair = &kDigitPairs[2 * std::to_integer<std::size_t>(bytes[i])];
    *out++ = pair[0];
    *out++ = pair[1];
  }
}

#if defined(__x86_64__)

// The digits of 16 bytes. Each byte is widened to two: times 1001 (hexadecimal) its low half stands on top and all of it
// below, and four bits further down the first byte holds the high half and the second the low one. One shuffle turns
// these into digits.
[[gnu::target("avx2")]] inline void encode16(const std::byte* bytes, char* out) {
  const __m256i digits = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kDigits.data())));
  const __m256i units = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
  const __m256i halves = _mm256_srli_epi16(_mm256_mullo_epi16(units, _mm256_set1_epi16(0x1001)), 4);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_shuffle_epi8(digits, halves));
}

[[gnu::target("avx2")]] void encodeWide(const std::byte* bytes, std::size_t size, char* out) {
  std::size_t i = 0;
  for (; i + 16 <= size; i += 16) encode16(bytes + i, out + 2 * i);
  if (i < size && size >= 16) {
    encode16(bytes + size - 16, out + 2 * size - 32);  // some digits once more
  } else {
    encodePlain(bytes + i, size - i, out + 2 * i);
  }
}

#endif

}  // namespace

std::string hexString(std::span<const std::byte> bytes) {
  std::string result(2 * bytes.size(), '\0');
#if defined(__x86_64__)
  if (detail::hasWideInstructions()) {
    encodeWide(bytes.data(), bytes.size(), result.data());
    return result;
  }
#endif
  encodePlain(bytes.data(), bytes.size(), result.data());
  return result;
}

}  // namespace havrin
