// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/base/wide_instructions.h>

#include <HavrinFoundation/platform/base/hex_digits.h>

#if defined(__x86_64__)

#include <bit>
#include <cpuid.h>
#include <immintrin.h>

namespace havrin::detail {
namespace {

// Asks the processor for AVX2, and the system whether it saves the wide registers across a context switch.
bool processorHasWideInstructions() noexcept {
  unsigned a = 0, b = 0, c = 0, d = 0;
  constexpr unsigned kSystemSavesRegisters = 1u << 27, kAvx2 = 1u << 5, kSseAndAvxState = 0b110;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & kSystemSavesRegisters) == 0) return false;
  unsigned low, high;
  asm("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  if ((low & kSseAndAvxState) != kSseAndAvxState) return false;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kAvx2) != 0;
}

[[gnu::target("avx2")]] inline __m128i load16(const void* from) noexcept {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}
[[gnu::target("avx2")]] inline __m256i load(const void* from) noexcept {
  return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

// The digits of 16 bytes. Each byte is widened to 16 bits; (b * 0x1001) >> 4 puts its high half into the low byte and its
// low half into the high byte, and a shuffle turns both into digits.
[[gnu::target("avx2")]] inline void encode16(const std::byte* bytes, char* out) noexcept {
  const __m256i digits = _mm256_broadcastsi128_si256(load16(kLowerHexDigits.data()));
  const __m256i units = _mm256_cvtepu8_epi16(load16(bytes));
  const __m256i halves = _mm256_srli_epi16(_mm256_mullo_epi16(units, _mm256_set1_epi16(0x1001)), 4);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_shuffle_epi8(digits, halves));
}

// The row of a byte is found by its low half, the byte's bit in that row by its high half: two shuffles for any set. A
// byte above 7F has its top bit set, for which the shuffle gives no row at all.
struct WideRows {
  __m256i rows, bits, lowHalves;
};

[[gnu::target("avx2")]] inline WideRows widen(const AsciiRows& rows, bool others) noexcept {
  return {_mm256_broadcastsi128_si256(_mm_xor_si128(load16(rows.data()), _mm_set1_epi8(others ? -1 : 0))),
          _mm256_broadcastsi128_si256(_mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0)),
          _mm256_set1_epi8(0x0F)};
}

// Bytes that are not 0 where one of the set is.
[[gnu::target("avx2")]] inline __m256i membersAmong(__m256i bytes, const WideRows& wide) noexcept {
  const __m256i highHalves = _mm256_and_si256(_mm256_srli_epi16(bytes, 4), wide.lowHalves);
  return _mm256_and_si256(_mm256_shuffle_epi8(wide.rows, bytes), _mm256_shuffle_epi8(wide.bits, highHalves));
}

// A bit for each byte that is in the set or above 7F.
[[gnu::target("avx2")]] inline std::uint32_t stopsAmong(__m256i bytes, const WideRows& wide) noexcept {
  const __m256i others = _mm256_cmpeq_epi8(membersAmong(bytes, wide), _mm256_setzero_si256());
  return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(others)) |
         static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

std::size_t lowestBit(std::uint32_t bits) noexcept { return static_cast<std::size_t>(std::countr_zero(bits)); }

}  // namespace

constinit std::atomic<WideInstructions> wideInstructions{WideInstructions::unknown};

bool findWideInstructions() noexcept {
  const bool present = processorHasWideInstructions();
  wideInstructions.store(present ? WideInstructions::present : WideInstructions::absent, std::memory_order_relaxed);
  return present;
}

[[gnu::target("avx2")]] void writeHexDigitsWide(const std::byte* bytes, std::size_t size, char* out) noexcept {
  std::size_t i = 0;
  for (; i + 16 <= size; i += 16) encode16(bytes + i, out + 2 * i);
  if (i < size) encode16(bytes + size - 16, out + 2 * size - 32);  // the last 16 bytes, some of them again
}

[[gnu::target("avx2")]] std::size_t skipAsciiWide(const unsigned char* text, std::size_t size, const AsciiRows& set,
                                                  bool others) noexcept {
  const WideRows wide = widen(set, others);
  if (size <= 32) {  // both ends at once, which may overlap
    const __m256i ends = _mm256_inserti128_si256(_mm256_castsi128_si256(load16(text)), load16(text + size - 16), 1);
    const std::uint32_t stops = stopsAmong(ends, wide);
    if (stops == 0) return size;
    return (stops & 0xFFFF) != 0 ? lowestBit(stops) : size - 32 + lowestBit(stops);
  }
  std::size_t i = 0;
  for (; i + 128 <= size; i += 128) {
    const __m256i a = load(text + i), b = load(text + i + 32), c = load(text + i + 64), d = load(text + i + 96);
    const __m256i found = _mm256_or_si256(_mm256_or_si256(membersAmong(a, wide), membersAmong(b, wide)),
                                          _mm256_or_si256(membersAmong(c, wide), membersAmong(d, wide)));
    const __m256i bytes = _mm256_or_si256(_mm256_or_si256(a, b), _mm256_or_si256(c, d));
    if (_mm256_testz_si256(found, found) == 0 || _mm256_movemask_epi8(bytes) != 0) break;
  }
  for (; i + 32 <= size; i += 32) {
    if (const std::uint32_t stops = stopsAmong(load(text + i), wide); stops != 0) return i + lowestBit(stops);
  }
  if (i < size) {  // the last 32 bytes again: those before i are known not to stop
    if (const std::uint32_t stops = stopsAmong(load(text + size - 32), wide); stops != 0) {
      return size - 32 + lowestBit(stops);
    }
  }
  return size;
}

[[gnu::target("avx2")]] std::size_t skipAsciiWide(const char16_t* text, std::size_t size, const AsciiRows& set,
                                                  bool others) noexcept {
  const WideRows wide = widen(set, others);
  const __m256i beyondAscii = _mm256_set1_epi16(static_cast<short>(0xFF80));
  std::size_t i = 0;
  for (; i + 32 <= size; i += 32) {
    const __m256i low = load(text + i), high = load(text + i + 16);
    if (_mm256_testz_si256(_mm256_or_si256(low, high), beyondAscii) == 0) return i;
    // Packing works within the halves of the registers; the permutation restores the order of the text.
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0b11'01'10'00);
    if (const std::uint32_t stops = stopsAmong(bytes, wide); stops != 0) return i + lowestBit(stops);
  }
  return i;
}

}  // namespace havrin::detail

#else

// Other processors run the plain loops; nothing calls the wide ones.
namespace havrin::detail {

constinit std::atomic<WideInstructions> wideInstructions{WideInstructions::absent};
bool findWideInstructions() noexcept { return false; }
void writeHexDigitsWide(const std::byte*, std::size_t, char*) noexcept { __builtin_unreachable(); }
std::size_t skipAsciiWide(const unsigned char*, std::size_t, const AsciiRows&, bool) noexcept {
  __builtin_unreachable();
}
std::size_t skipAsciiWide(const char16_t*, std::size_t, const AsciiRows&, bool) noexcept { __builtin_unreachable(); }

}  // namespace havrin::detail

#endif
