// SPDX-License-Identifier: Apache-2.0
// The search of CharacterSet: runs of ASCII text go through a loop over many bytes at a time, everything else through
// the set's pages.
#include <HavrinFoundation/platform/unicode/character_set.h>
#include <HavrinFoundation/platform/unicode/character_set_storage.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace havrin {
inline namespace platform {

namespace {

using detail::CharacterSetStorage;

// What is searched for: the scalars whose bit in the storage differs from that of `flip`, which is all zeros or all ones.
struct Wanted {
  const CharacterSetStorage& storage;
  std::uint64_t flip;

  /// Whether the scalar of the first plane that a word and the low bits of `bit` name is wanted, in the lowest bit.
  std::uint64_t hit(std::size_t word, unsigned bit) const noexcept {
    return (storage.basic()[word] ^ flip) >> (bit & 63);
  }
  bool has(char32_t scalar) const noexcept { return storage.bit(scalar) != (flip != 0); }
};

// Returns a position before which every unit is below U+0080 and not wanted. The unit there is another one, or the text
// ends there, or, with wide instructions, a block with another one begins there.
template <class Unit>
std::size_t skipAsciiPlain(const Unit* text, std::size_t size, const Wanted& wanted) noexcept {
  std::size_t i = 0;
  while (i < size && text[i] < 0x80 && (wanted.hit(text[i] >> 6, text[i]) & 1) == 0) ++i;
  return i;
}

template <class Unit>
std::size_t skipAscii(const Unit* text, std::size_t size, const Wanted& wanted) noexcept {
  if (size >= detail::kWideAsciiBytes && detail::hasWideInstructions()) {
    return detail::skipAsciiWide(text, size, wanted.storage.asciiRows(), wanted.flip != 0);
  }
  return skipAsciiPlain(text, size, wanted);
}

// Whether the text goes on in ASCII long enough for skipAscii to be worth its call.
bool beginsAsciiRun(const unsigned char* text, std::size_t size) noexcept {
  std::uint64_t word;
  if (size < sizeof word) return false;
  std::memcpy(&word, text, sizeof word);
  return (word & 0x8080'8080'8080'8080) == 0;
}

// How many units of UTF-16 are looked up at once.
constexpr std::size_t kBlock = 16;

bool hasSurrogate(const char16_t* block) noexcept {
  constexpr std::uint64_t kOnes = 0x0001'0001'0001'0001;
  std::uint64_t found = 0;
  for (std::size_t i = 0; i < kBlock; i += 4) {
    std::uint64_t units;
    std::memcpy(&units, block + i, sizeof units);
    const std::uint64_t distance = (units & (kOnes * 0xF800)) ^ (kOnes * 0xD800);  // 0 for a surrogate
    found |= (distance - kOnes) & ~distance;
  }
  return (found & (kOnes * 0x8000)) != 0;
}

// Whether one of the units, none of which is a surrogate, is wanted: no branch between them.
bool anyWanted(const char16_t* block, const Wanted& wanted) noexcept {
  std::uint64_t hits = 0;
  for (std::size_t i = 0; i < kBlock; ++i) hits |= wanted.hit(block[i] >> 6, block[i]);
  return (hits & 1) != 0;
}

// The four bytes at `text`, the first one lowest.
std::uint32_t fourBytes(const unsigned char* text) noexcept {
  return text[0] | std::uint32_t{text[1]} << 8 | std::uint32_t{text[2]} << 16 | std::uint32_t{text[3]} << 24;
}

// Whether these begin with a well-formed sequence of two, and whether with one of three: what two bytes or one could have
// written is none, nor is a surrogate.
bool areTwo(std::uint32_t bytes) noexcept { return (bytes & 0xC0E0) == 0x80C0 && (bytes & 0x1E) != 0; }
bool areThree(std::uint32_t bytes) noexcept {
  return (bytes & 0xC0C0F0) == 0x8080E0 && (bytes & 0x200F) != 0 && (bytes & 0x200F) != 0x200D;
}

// The search from `i` on, where the ASCII loop stopped.
std::size_t searchFrom(std::size_t i, std::string_view text, const Wanted& wanted) noexcept {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t size = text.size();
  while (i + 4 <= size) {
    // The bytes before the last one of a sequence name the word, the last one the bit. Text stays within one length of
    // sequence for whole words: a loop of its own for each is what the processor predicts best.
    std::uint32_t next = fourBytes(bytes + i);
    if ((next & 0x80) == 0) {
      if ((wanted.hit((next & 0x7F) >> 6, next) & 1) != 0) return i;
      i += 1;
      if (beginsAsciiRun(bytes + i, size - i)) i += skipAscii(bytes + i, size - i, wanted);
    } else if (areTwo(next)) {
      do {
        if ((wanted.hit(next & 0x1F, next >> 8) & 1) != 0) return i;
        i += 2;
        if (i + 4 > size) break;
        next = fourBytes(bytes + i);
      } while (areTwo(next));
    } else if (areThree(next)) {
      do {
        if ((wanted.hit((next & 0xF) << 6 | (next >> 8 & 0x3F), next >> 16) & 1) != 0) return i;
        i += 3;
        if (i + 4 > size) break;
        next = fourBytes(bytes + i);
      } while (areThree(next));
    } else {
      const Scalar scalar = scalarAt(text, i);
      if (wanted.has(scalar.value)) return i;
      i += scalar.length;
    }
  }
  while (i < size) {
    const Scalar scalar = scalarAt(text, i);
    if (wanted.has(scalar.value)) return i;
    i += scalar.length;
  }
  return size;
}

std::size_t searchFrom(std::size_t i, std::u16string_view text, const Wanted& wanted) noexcept {
  while (i < text.size()) {
    if (text[i] < 0x80) {
      i += skipAscii(text.data() + i, text.size() - i, wanted);
      if (i == text.size()) break;
    }
    if (i + kBlock <= text.size() && !hasSurrogate(text.data() + i) && !anyWanted(text.data() + i, wanted)) {
      i += kBlock;
      continue;
    }
    for (const std::size_t end = std::min(text.size(), i + kBlock); i < end;) {
      const Scalar scalar = scalarAt(text, i);
      if (wanted.has(scalar.value)) return i;
      i += scalar.length;
    }
  }
  return text.size();
}

}  // namespace

std::size_t CharacterSet::search(std::string_view text, bool forMember) const noexcept {
  const bool flip = inverted_ == forMember;
  if (storage_ == nullptr) return flip ? 0 : text.size();
  const Wanted wanted{*storage_, flip ? ~0ull : 0};
  const std::size_t i = skipAscii(reinterpret_cast<const unsigned char*>(text.data()), text.size(), wanted);
  return i == text.size() ? i : searchFrom(i, text, wanted);
}

std::size_t CharacterSet::search(std::u16string_view text, bool forMember) const noexcept {
  const bool flip = inverted_ == forMember;
  if (storage_ == nullptr) return flip ? 0 : text.size();
  return searchFrom(0, text, {*storage_, flip ? ~0ull : 0});
}

namespace {

template <class Text>
std::optional<Range<std::size_t>> rangeOfMember(Text text, const CharacterSet& set) noexcept {
  const std::size_t position = set.firstMemberIn(text);
  if (position == text.size()) return std::nullopt;
  return Range{position, position + scalarAt(text, position).length};
}

}  // namespace

std::optional<Range<std::size_t>> rangeOfCharacter(std::string_view text, const CharacterSet& set) noexcept {
  return rangeOfMember(text, set);
}

std::optional<Range<std::size_t>> rangeOfCharacter(std::u16string_view text, const CharacterSet& set) noexcept {
  return rangeOfMember(text, set);
}

}  // namespace platform
}  // namespace havrin
