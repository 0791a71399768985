// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/json_structure.h>

#include <HavrinFoundation/platform/base/wide_instructions.h>

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace havrin {
inline namespace platform {
namespace {

constexpr std::size_t kBlock = 64;

// The classes of 64 characters, one bit each, the first character in the lowest bit.
struct Block {
  std::uint64_t quote = 0;
  std::uint64_t backslash = 0;
  std::uint64_t mark = 0;  // a brace, a bracket, a colon or a comma
  std::uint64_t space = 0;
  std::uint64_t control = 0;
  std::uint64_t other = 0;  // not ASCII
};

// Braces and brackets differ in this bit only: one comparison finds both.
constexpr char kCaseBit = 0x20;

#if defined(__x86_64__)

[[gnu::target("avx2")]] inline __m256i is(__m256i bytes, char c) {
  return _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8(c));
}

[[gnu::target("avx2")]] inline std::uint64_t bits(__m256i low, __m256i high) {
  return std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(low))} |
         std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(high))} << 32;
}

[[gnu::target("avx2")]] inline __m256i marks(__m256i bytes) {
  const __m256i folded = _mm256_or_si256(bytes, _mm256_set1_epi8(kCaseBit));
  return _mm256_or_si256(_mm256_or_si256(is(folded, '{'), is(folded, '}')),
                         _mm256_or_si256(is(bytes, ':'), is(bytes, ',')));
}

[[gnu::target("avx2")]] inline __m256i spaces(__m256i bytes) {
  return _mm256_or_si256(_mm256_or_si256(is(bytes, ' '), is(bytes, '\n')),
                         _mm256_or_si256(is(bytes, '\r'), is(bytes, '\t')));
}

[[gnu::target("avx2")]] inline __m256i controls(__m256i bytes) {
  return _mm256_cmpeq_epi8(_mm256_min_epu8(bytes, _mm256_set1_epi8(0x1F)), bytes);
}

[[gnu::target("avx2")]] inline Block classifyWide(const char* text) {
  const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
  const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + 32));
  return {bits(is(low, '"'), is(high, '"')), bits(is(low, '\\'), is(high, '\\')), bits(marks(low), marks(high)),
          bits(spaces(low), spaces(high)),   bits(controls(low), controls(high)), bits(low, high)};
}

// AVX-512 comparisons return bit masks, and one compress instruction turns a mask into positions.
#define HAVRIN_WIDEST gnu::target("avx512f,avx512bw,avx512vbmi2,bmi,popcnt")

[[HAVRIN_WIDEST]] inline std::uint64_t bitsOf(__m512i bytes, char c) {
  return _mm512_cmpeq_epi8_mask(bytes, _mm512_set1_epi8(c));
}

[[HAVRIN_WIDEST]] inline Block classifyWidest(const char* text) {
  const __m512i bytes = _mm512_loadu_si512(text);
  const __m512i folded = _mm512_or_si512(bytes, _mm512_set1_epi8(kCaseBit));
  return {bitsOf(bytes, '"'),
          bitsOf(bytes, '\\'),
          bitsOf(folded, '{') | bitsOf(folded, '}') | bitsOf(bytes, ':') | bitsOf(bytes, ','),
          bitsOf(bytes, ' ') | bitsOf(bytes, '\n') | bitsOf(bytes, '\r') | bitsOf(bytes, '\t'),
          _mm512_cmplt_epu8_mask(bytes, _mm512_set1_epi8(0x20)),
          _mm512_movepi8_mask(bytes)};
}

[[HAVRIN_WIDEST]] inline void writeWidest(std::uint64_t flags, std::uint32_t offset, std::uint32_t* tokens) {
  alignas(64) static constexpr auto kPlaces = [] {
    std::array<std::uint8_t, kBlock> places{};
    for (std::size_t i = 0; i < places.size(); ++i) places[i] = static_cast<std::uint8_t>(i);
    return places;
  }();
  const __m512i first = _mm512_set1_epi32(static_cast<int>(offset));
  alignas(64) std::uint8_t places[kBlock];
  _mm512_store_si512(places, _mm512_maskz_compress_epi8(flags, _mm512_load_si512(kPlaces.data())));
  const int count = std::popcount(flags);
  for (int done = 0; done < count; done += 16) {
    const __m128i sixteen = _mm_load_si128(reinterpret_cast<const __m128i*>(places + done));
    _mm512_storeu_si512(tokens + done, _mm512_add_epi32(first, _mm512_maskz_cvtepu8_epi32(0xFFFF, sixteen)));
  }
}

#endif

Block classifyPlain(const char* text) {
  Block block;
  for (std::uint64_t bit = 1; bit != 0; bit <<= 1, ++text) {
    const auto byte = static_cast<unsigned char>(*text);
    const unsigned folded = byte | kCaseBit;
    const auto set = [bit](std::uint64_t& flags, bool isOne) { flags |= isOne ? bit : 0; };
    set(block.quote, byte == '"');
    set(block.backslash, byte == '\\');
    set(block.mark, folded == '{' || folded == '}' || byte == ':' || byte == ',');
    set(block.space, byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t');
    set(block.control, byte < 0x20);
    set(block.other, byte >= 0x80);
  }
  return block;
}

// Bit i of the result is the parity of bits 0 to i: 1 inside quotes, if the input has the quotes.
[[gnu::always_inline]] inline std::uint64_t parity(std::uint64_t flags) {
  for (int shift = 1; shift < 64; shift *= 2) flags ^= flags << shift;
  return flags;
}

// Writes in groups of eight, the last group too long: a loop with one step per bit mispredicts its end nearly every
// time.
[[gnu::always_inline]] inline void writeEights(std::uint64_t flags, std::uint32_t offset, std::uint32_t* tokens) {
  const int count = std::popcount(flags);
  for (int done = 0; done < count; done += 8) {
    for (int i = 0; i < 8; ++i) {
      tokens[done + i] = offset + static_cast<std::uint32_t>(std::countr_zero(flags));
      flags &= flags - 1;
    }
  }
}

// Processes block after block and writes the offsets at which tokens begin.
class Scanner {
 public:
  explicit Scanner(std::uint32_t* tokens) : tokens_(tokens) {}

  template <auto Write>
  [[gnu::always_inline]] void take(const Block& block, std::uint32_t offset) {
    const std::uint64_t quote = block.quote & ~escapedIn(block.backslash);
    const std::uint64_t inString = parity(quote) ^ inString_;  // from the opening quote on, without the closing one
    inString_ = static_cast<std::uint64_t>(static_cast<std::int64_t>(inString) >> 63);
    const std::uint64_t scalar = ~(block.mark | block.space);
    const std::uint64_t bare = scalar & ~quote;
    const std::uint64_t behindBare = bare << 1 | behindBare_;
    behindBare_ = bare >> 63;
    const std::uint64_t begins = (block.mark | (scalar & ~behindBare)) & ~(inString ^ quote);
    Write(begins, offset, tokens_);
    tokens_ += std::popcount(begins);
    controlInString_ |= block.control & inString;
    other_ |= block.other;
  }

  [[nodiscard]] bool isInString() const { return inString_ != 0; }
  [[nodiscard]] bool hasControlInString() const { return controlInString_ != 0; }
  [[nodiscard]] bool isAscii() const { return other_ == 0; }
  [[nodiscard]] std::uint32_t* end() const { return tokens_; }

 private:
  // The characters that follow an odd number of backslashes.
  [[gnu::always_inline]] std::uint64_t escapedIn(std::uint64_t backslash) {
    if (backslash == 0) return std::exchange(escaped_, 0);
    constexpr std::uint64_t kEven = 0x5555555555555555;
    backslash &= ~escaped_;
    const std::uint64_t behind = backslash << 1 | escaped_;
    const std::uint64_t oddStarts = backslash & ~kEven & ~behind;
    std::uint64_t runs = 0;  // the addition carries through each run of backslashes that begins at an odd position
    escaped_ = __builtin_add_overflow(oddStarts, backslash, &runs) ? 1 : 0;
    return (kEven ^ runs << 1) & behind;
  }

  std::uint32_t* tokens_;
  std::uint64_t escaped_ = 0;  // 1 if the first character of the next block is escaped
  std::uint64_t inString_ = 0;
  std::uint64_t behindBare_ = 0;
  std::uint64_t controlInString_ = 0;
  std::uint64_t other_ = 0;
};

// Always inlined, so that it is compiled with the instruction set of the function that calls it.
template <auto Classify, auto Write>
[[gnu::always_inline]] inline void scanBlocks(std::string_view text, Scanner& scanner) {
  std::size_t offset = 0;
  for (; text.size() - offset >= kBlock; offset += kBlock) {
    scanner.take<Write>(Classify(text.data() + offset), static_cast<std::uint32_t>(offset));
  }
  std::array<char, kBlock> rest;
  rest.fill(' ');
  std::copy(text.begin() + static_cast<std::ptrdiff_t>(offset), text.end(), rest.begin());
  scanner.take<Write>(Classify(rest.data()), static_cast<std::uint32_t>(offset));
}

#if defined(__x86_64__)
[[gnu::target("avx2,bmi,popcnt")]] void scanWide(std::string_view text, Scanner& scanner) {
  scanBlocks<classifyWide, writeEights>(text, scanner);
}

[[HAVRIN_WIDEST]] void scanWidest(std::string_view text, Scanner& scanner) {
  scanBlocks<classifyWidest, writeWidest>(text, scanner);
}
#endif

}  // namespace

JsonStructure::Instructions JsonStructure::best() {
#if defined(__x86_64__)
  if (detail::hasWideInstructions() && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("popcnt")) {
    const bool isWidest = __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi2");
    return isWidest ? Instructions::widest : Instructions::wide;
  }
#endif
  return Instructions::plain;
}

Decoded<std::span<std::uint32_t>> JsonStructure::find(std::string_view text) {
  constexpr std::size_t kSmallest = 4096;
  if (text.size() > capacity_ || capacity_ == 0) {
    constexpr std::size_t kRoom = kBlock + 1;  // for the excess of the last group, and the final element
    capacity_ = 0;
    tokens_.reset();
    const std::size_t capacity = std::max(text.size(), kSmallest);
    tokens_ = std::make_unique_for_overwrite<std::uint32_t[]>(capacity + kRoom);
    capacity_ = capacity;
  }
  Scanner scanner(tokens_.get());
  switch (instructions_) {
#if defined(__x86_64__)
    case Instructions::widest:
      scanWidest(text, scanner);
      break;
    case Instructions::wide:
      scanWide(text, scanner);
      break;
#endif
    default:
      scanBlocks<classifyPlain, writeEights>(text, scanner);
  }
  std::uint32_t* const end = scanner.end();
  if (scanner.isInString()) return DecodingError::dataCorrupted("the document ends inside a string");
  if (scanner.hasControlInString()) {
    return DecodingError::dataCorrupted("the document has an unescaped control character in a string");
  }
  if (end == tokens_.get()) return DecodingError::dataCorrupted("the document is empty");
  if (!scanner.isAscii() && !simdjson::validate_utf8(text.data(), text.size())) {
    return DecodingError::dataCorrupted("the document is not UTF-8");
  }
  *end = static_cast<std::uint32_t>(text.size());
  return std::span<std::uint32_t>(tokens_.get(), end + 1);
}

}  // namespace platform
}  // namespace havrin
