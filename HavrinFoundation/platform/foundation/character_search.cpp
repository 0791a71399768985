// The search of CharacterSet: runs of ASCII text go through a loop over many bytes at a time, everything else through
// the set's pages.
#include <HavrinFoundation/platform/foundation/character_set.h>
#include <HavrinFoundation/platform/foundation/character_set_storage.h>
#include <HavrinFoundation/platform/foundation/unicode.h>
#include <HavrinFoundation/platform/foundation/wide_instructions.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace havrin::inline platform {

namespace {

using detail::AsciiRows;

// How many units are looked at one by one before the ASCII loop is tried again.
constexpr std::size_t kBlock = 32;

std::size_t lowestBit(std::uint32_t bits) noexcept { return static_cast<std::size_t>(std::countr_zero(bits)); }

// Both answer a position before which no unit is a hit or leaves ASCII. At that position stands such a unit, or (in
// UTF-16) the beginning of a block that has one, or the end of the text.
template <class Unit>
std::size_t skipAsciiPlain(const Unit* text, std::size_t size, const AsciiRows& rows) noexcept {
  std::size_t i = 0;
  while (i < size && text[i] < 0x80 && ((rows[text[i] & 0xF] >> (text[i] >> 4)) & 1) == 0) ++i;
  return i;
}

#if defined(__x86_64__)

// The row of a byte is found by its low half, the byte's bit in that row by its high half: two shuffles for any set. A
// byte above 7F has its top bit set, for which the shuffle answers no row at all.
struct WideRows {
  __m256i rows, bits, lowHalves;
};

[[gnu::target("avx2")]] inline WideRows widen(const AsciiRows& rows) noexcept {
  return {_mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(rows.data()))),
          _mm256_broadcastsi128_si256(_mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 0, 0, 0, 0, 0, 0, 0, 0)),
          _mm256_set1_epi8(0x0F)};
}

// Bytes that are not 0 where a member stands.
[[gnu::target("avx2")]] inline __m256i membersAmong(__m256i bytes, const WideRows& wide) noexcept {
  const __m256i highHalves = _mm256_and_si256(_mm256_srli_epi16(bytes, 4), wide.lowHalves);
  return _mm256_and_si256(_mm256_shuffle_epi8(wide.rows, bytes), _mm256_shuffle_epi8(wide.bits, highHalves));
}

// A bit for each byte that is a member or above 7F.
[[gnu::target("avx2")]] inline std::uint32_t stopsAmong(__m256i bytes, const WideRows& wide) noexcept {
  const __m256i others = _mm256_cmpeq_epi8(membersAmong(bytes, wide), _mm256_setzero_si256());
  return ~static_cast<std::uint32_t>(_mm256_movemask_epi8(others)) |
         static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

[[gnu::target("avx2")]] inline __m256i load(const void* from) noexcept {
  return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

[[gnu::target("avx2")]] inline std::uint32_t stopsAmong16(const unsigned char* text, const WideRows& wide) noexcept {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  return stopsAmong(_mm256_castsi128_si256(bytes), wide) & 0xFFFF;
}

[[gnu::target("avx2")]] std::size_t skipAsciiWide(const unsigned char* text, std::size_t size,
                                                  const AsciiRows& rows) noexcept {
  if (size < 16) return skipAsciiPlain(text, size, rows);
  const WideRows wide = widen(rows);
  std::size_t i = 0;
  for (; i + 128 <= size; i += 128) {
    const __m256i a = load(text + i), b = load(text + i + 32), c = load(text + i + 64), d = load(text + i + 96);
    const __m256i members = _mm256_or_si256(_mm256_or_si256(membersAmong(a, wide), membersAmong(b, wide)),
                                            _mm256_or_si256(membersAmong(c, wide), membersAmong(d, wide)));
    const __m256i bytes = _mm256_or_si256(_mm256_or_si256(a, b), _mm256_or_si256(c, d));
    if (_mm256_testz_si256(members, members) == 0 || _mm256_movemask_epi8(bytes) != 0) break;
  }
  for (; i + 32 <= size; i += 32) {
    if (const std::uint32_t stops = stopsAmong(load(text + i), wide); stops != 0) return i + lowestBit(stops);
  }
  if (i + 16 <= size) {
    if (const std::uint32_t stops = stopsAmong16(text + i, wide); stops != 0) return i + lowestBit(stops);
    i += 16;
  }
  if (i < size) {  // the last 16 bytes once more: those before i are known not to stop
    if (const std::uint32_t stops = stopsAmong16(text + size - 16, wide); stops != 0) {
      return size - 16 + lowestBit(stops);
    }
  }
  return size;
}

[[gnu::target("avx2")]] std::size_t skipAsciiWide(const char16_t* text, std::size_t size,
                                                  const AsciiRows& rows) noexcept {
  const WideRows wide = widen(rows);
  const __m256i beyondAscii = _mm256_set1_epi16(static_cast<short>(0xFF80));
  std::size_t i = 0;
  for (; i + 32 <= size; i += 32) {
    const __m256i low = load(text + i), high = load(text + i + 16);
    if (_mm256_testz_si256(_mm256_or_si256(low, high), beyondAscii) == 0) return i;
    // Packing works within the halves of the registers; the permutation restores the order of the text.
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(low, high), 0b11'01'10'00);
    if (const std::uint32_t stops = stopsAmong(bytes, wide); stops != 0) return i + lowestBit(stops);
  }
  return i + skipAsciiPlain(text + i, size - i, rows);
}

#endif

template <class Unit>
std::size_t skipAscii(const Unit* text, std::size_t size, const AsciiRows& rows) noexcept {
#if defined(__x86_64__)
  if (detail::hasWideInstructions()) return skipAsciiWide(text, size, rows);
#endif
  return skipAsciiPlain(text, size, rows);
}

std::size_t skipAscii(std::string_view text, const AsciiRows& rows) noexcept {
  return skipAscii(reinterpret_cast<const unsigned char*>(text.data()), text.size(), rows);
}
std::size_t skipAscii(std::u16string_view text, const AsciiRows& rows) noexcept {
  return skipAscii(text.data(), text.size(), rows);
}

// The rows that stop the ASCII loop: at members, or at all but members.
AsciiRows stopRows(const AsciiRows& rows, bool flip) noexcept {
  std::array<std::uint64_t, 2> words;
  static_assert(sizeof words == sizeof rows);
  std::memcpy(words.data(), rows.data(), sizeof rows);
  for (std::uint64_t& word : words) word ^= flip ? ~0ull : 0;
  AsciiRows result;
  std::memcpy(result.data(), words.data(), sizeof result);
  return result;
}

bool hasSurrogate(const char16_t* block) noexcept {
  unsigned found = 0;
  for (std::size_t i = 0; i < kBlock; ++i) found |= (block[i] & 0xF800) == 0xD800 ? 1u : 0u;
  return found != 0;
}

}  // namespace

CharacterSet::Found CharacterSet::find(std::string_view text, bool outside) const noexcept {
  const bool flip = inverted_ != outside;
  if (storage_ == nullptr) {
    if (!flip || text.empty()) return std::nullopt;
    return Range{std::size_t{0}, scalarAt(text, 0).length};
  }
  const AsciiRows rows = stopRows(storage_->asciiRows(), flip);
  for (std::size_t i = 0; i < text.size();) {
    i += skipAscii(text.substr(i), rows);
    for (const std::size_t end = std::min(text.size(), i + kBlock); i < end;) {
      const Scalar scalar = scalarAt(text, i);
      if (storage_->bit(scalar.value) != flip) return Range{i, i + scalar.length};
      i += scalar.length;
    }
  }
  return std::nullopt;
}

CharacterSet::Found CharacterSet::find(std::u16string_view text, bool outside) const noexcept {
  const bool flip = inverted_ != outside;
  if (storage_ == nullptr) {
    if (!flip || text.empty()) return std::nullopt;
    return Range{std::size_t{0}, scalarAt(text, 0).length};
  }
  const AsciiRows rows = stopRows(storage_->asciiRows(), flip);
  for (std::size_t i = 0; i < text.size();) {
    i += skipAscii(text.substr(i), rows);
    if (i + kBlock <= text.size() && !hasSurrogate(text.data() + i)) {
      // Every unit is a scalar: all are looked up without a branch between them.
      std::uint32_t hits = 0;
      for (std::size_t k = 0; k < kBlock; ++k) hits |= std::uint32_t{storage_->bit(text[i + k])} << k;
      if (flip) hits = ~hits;
      if (hits != 0) {
        i += lowestBit(hits);
        return Range{i, i + 1};
      }
      i += kBlock;
      continue;
    }
    for (const std::size_t end = std::min(text.size(), i + kBlock); i < end;) {
      const Scalar scalar = scalarAt(text, i);
      if (storage_->bit(scalar.value) != flip) return Range{i, i + scalar.length};
      i += scalar.length;
    }
  }
  return std::nullopt;
}

}  // namespace havrin::inline platform
