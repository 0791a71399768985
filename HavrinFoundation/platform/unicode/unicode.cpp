// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace havrin {
inline namespace platform {

namespace {

constexpr bool isSurrogate(char32_t scalar) { return (scalar & ~char32_t{0x7FF}) == 0xD800; }

constexpr char32_t repairedScalar(char32_t scalar) {
  return scalar > 0x10FFFF || isSurrogate(scalar) ? kReplacementCharacter : scalar;
}

constexpr std::size_t utf8Size(char32_t scalar) {
  if (scalar < 0x80) return 1;
  if (scalar < 0x800) return 2;
  return scalar < 0x10000 ? 3 : 4;
}

// Writes a scalar that is not a surrogate; returns the position behind it.
char* writeUtf8(char* out, char32_t scalar) {
  const auto tail = [scalar](int shift) { return static_cast<char>(0x80 | ((scalar >> shift) & 0x3F)); };
  if (scalar < 0x80) {
    *out++ = static_cast<char>(scalar);
  } else if (scalar < 0x800) {
    *out++ = static_cast<char>(0xC0 | (scalar >> 6));
    *out++ = tail(0);
  } else if (scalar < 0x10000) {
    *out++ = static_cast<char>(0xE0 | (scalar >> 12));
    *out++ = tail(6);
    *out++ = tail(0);
  } else {
    *out++ = static_cast<char>(0xF0 | (scalar >> 18));
    *out++ = tail(12);
    *out++ = tail(6);
    *out++ = tail(0);
  }
  return out;
}

char16_t* writeUtf16(char16_t* out, char32_t scalar) {
  if (scalar < 0x10000) {
    *out++ = static_cast<char16_t>(scalar);
  } else {
    *out++ = static_cast<char16_t>(0xD7C0 + (scalar >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + (scalar & 0x3FF));
  }
  return out;
}

// The same for both encoding forms: four words at a time while no unit has a bit of the mask, then unit by unit.
template <class Unit>
std::size_t prefixWithoutBits(const Unit* text, std::size_t size, std::uint64_t mask) {
  constexpr std::size_t kUnitsPerWord = sizeof(std::uint64_t) / sizeof(Unit);
  std::size_t i = 0;
  for (; i + 4 * kUnitsPerWord <= size; i += 4 * kUnitsPerWord) {
    std::uint64_t words[4];
    std::memcpy(words, text + i, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & mask) != 0) break;
  }
  for (; i + kUnitsPerWord <= size; i += kUnitsPerWord) {
    std::uint64_t word;
    std::memcpy(&word, text + i, sizeof word);
    if ((word & mask) != 0) break;
  }
  while (i < size && text[i] < 0x80) ++i;
  return i;
}

// Calls `ascii(run)` for each run of units below U+0080 and `other(scalar)` for each step between them.
template <class Text, class Ascii, class Other>
void forEachRun(Text text, Ascii ascii, Other other) {
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t run = asciiPrefixLength(text.substr(i));
    if (run != 0) ascii(text.substr(i, run));
    i += run;
    while (i < text.size()) {
      const Scalar scalar = scalarAt(text, i);
      if (scalar.value < 0x80) break;
      other(scalar);
      i += scalar.length;
    }
  }
}

template <class Text>
bool hasNoIllFormedPart(Text text) {
  for (std::size_t i = asciiPrefixLength(text); i < text.size();) {
    const Scalar scalar = scalarAt(text, i);
    if (!scalar.wellFormed) return false;
    i += scalar.length;
    if (scalar.value < 0x80) i += asciiPrefixLength(text.substr(i));
  }
  return true;
}

// Extended grapheme clusters by the rules GB3 to GB13, which look at the scalar before, the one after, and two facts
// about what came before: whether a pictograph could go on, and whether an odd number of flag letters precedes it.
class ClusterRules {
 public:
  /// Takes the next scalar. Returns whether it belongs to the same character as the one before.
  bool joins(char32_t scalar) {
    const Class next = classOf(scalar);
    const bool joined = joinsAfter(next, scalar);
    flagHalf_ = next == U_GCB_REGIONAL_INDICATOR && !(joined && flagHalf_);
    if (next == U_GCB_OTHER) {
      chain_ = Chain::base;
      base_ = scalar;
    } else if (chain_ == Chain::base && next == U_GCB_ZWJ) {
      chain_ = Chain::joiner;
    } else if (chain_ != Chain::base || next != U_GCB_EXTEND) {
      chain_ = Chain::none;
    }
    before_ = next;
    return joined;
  }

 private:
  using Class = int;  // ICU's UGraphemeClusterBreak
  // An ordinary scalar, then any Extend, then a joiner: what the next scalar may continue if both are pictographs.
  enum class Chain { none, base, joiner };

  static Class classOf(char32_t scalar) {
    if (scalar >= 0x20 && scalar < 0x7F) return U_GCB_OTHER;
    return u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_GRAPHEME_CLUSTER_BREAK);
  }

  static bool isPictograph(char32_t scalar) {
    return u_hasBinaryProperty(static_cast<UChar32>(scalar), UCHAR_EXTENDED_PICTOGRAPHIC) != 0;
  }

  static bool isControl(Class c) { return c == U_GCB_CONTROL || c == U_GCB_CR || c == U_GCB_LF; }

  bool joinsAfter(Class next, char32_t scalar) const {
    if (before_ == U_GCB_CR && next == U_GCB_LF) return true;
    if (isControl(before_) || isControl(next)) return false;
    if (next == U_GCB_EXTEND || next == U_GCB_ZWJ || next == U_GCB_SPACING_MARK || before_ == U_GCB_PREPEND)
      return true;
    switch (before_) {
      case U_GCB_ZWJ:
        return chain_ == Chain::joiner && next == U_GCB_OTHER && isPictograph(base_) && isPictograph(scalar);
      case U_GCB_L:
        return next == U_GCB_L || next == U_GCB_V || next == U_GCB_LV || next == U_GCB_LVT;
      case U_GCB_LV:
      case U_GCB_V:
        return next == U_GCB_V || next == U_GCB_T;
      case U_GCB_LVT:
      case U_GCB_T:
        return next == U_GCB_T;
      case U_GCB_REGIONAL_INDICATOR:
        return next == U_GCB_REGIONAL_INDICATOR && flagHalf_;
      default:
        return false;
    }
  }

  Class before_ = U_GCB_CONTROL;  // nothing joins the beginning of the text
  Chain chain_ = Chain::none;
  char32_t base_ = 0;
  bool flagHalf_ = false;  // the flag letter before is the first of its pair
};

// Whether `text` is all below U+0080 and has no carriage return: then each byte is a character.
bool everyByteIsACharacter(std::string_view text) {
  constexpr std::uint64_t kOnes = 0x0101'0101'0101'0101;
  constexpr std::uint64_t kHighs = 0x80 * kOnes;
  std::size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + i, sizeof word);
    const std::uint64_t returns = word ^ (kOnes * '\r');  // a zero byte at each carriage return
    if (((word | ((returns - kOnes) & ~returns)) & kHighs) != 0) return false;
  }
  return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80 && c != '\r'; });
}

}  // namespace

}  // namespace platform

namespace detail {

Scalar decodeMultibyte(std::string_view text, std::size_t position) noexcept {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[position + i]); };
  const std::size_t available = text.size() - position;
  const unsigned lead = byteAt(0);
  // Which second bytes may follow is what rules out overlong forms, surrogates and values above U+10FFFF.
  unsigned low = 0x80, high = 0xBF;
  std::size_t length;
  char32_t value;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    value = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    value = lead & 0x0F;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    value = lead & 0x07;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return {kReplacementCharacter, 1, false};
  }
  for (std::size_t i = 1; i < length; ++i, low = 0x80, high = 0xBF) {
    if (i >= available || byteAt(i) < low || byteAt(i) > high) return {kReplacementCharacter, i, false};
    value = value << 6 | (byteAt(i) & 0x3Fu);
  }
  return {value, length, true};
}

Scalar decodeSurrogate(std::u16string_view text, std::size_t position) noexcept {
  const char16_t lead = text[position];
  if (lead < 0xDC00 && position + 1 < text.size()) {
    const char16_t trail = text[position + 1];
    if ((trail & 0xFC00) == 0xDC00) {
      return {0x10000 + ((char32_t{lead} - 0xD800) << 10) + (char32_t{trail} - 0xDC00), 2, true};
    }
  }
  return {kReplacementCharacter, 1, false};
}

}  // namespace detail

inline namespace platform {

void appendScalar(std::string& text, char32_t scalar) {
  char bytes[4];
  text.append(bytes, writeUtf8(bytes, repairedScalar(scalar)));
}

void appendScalar(std::u16string& text, char32_t scalar) {
  char16_t units[2];
  text.append(units, writeUtf16(units, repairedScalar(scalar)));
}

std::size_t asciiPrefixLength(std::string_view text) noexcept {
  return prefixWithoutBits(reinterpret_cast<const unsigned char*>(text.data()), text.size(), 0x8080'8080'8080'8080);
}

std::size_t asciiPrefixLength(std::u16string_view text) noexcept {
  return prefixWithoutBits(text.data(), text.size(), 0xFF80'FF80'FF80'FF80);
}

bool isWellFormed(std::string_view text) noexcept { return hasNoIllFormedPart(text); }
bool isWellFormed(std::u16string_view text) noexcept { return hasNoIllFormedPart(text); }

std::u16string utf16(std::string_view text) {
  std::u16string result(utf16Length(text), u'\0');
  char16_t* out = result.data();
  forEachRun(
      text,
      [&out](std::string_view run) {
        for (const char c : run) *out++ = static_cast<unsigned char>(c);
      },
      [&out](const Scalar& scalar) { out = writeUtf16(out, scalar.value); });
  return result;
}

std::string utf8(std::u16string_view text) {
  std::string result(utf8Length(text), '\0');
  char* out = result.data();
  forEachRun(
      text,
      [&out](std::u16string_view run) {
        for (const char16_t c : run) *out++ = static_cast<char>(c);
      },
      [&out](const Scalar& scalar) { out = writeUtf8(out, scalar.value); });
  return result;
}

std::string repaired(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  forEachRun(
      text, [&result](std::string_view run) { result.append(run); },
      [&result](const Scalar& scalar) { appendScalar(result, scalar.value); });
  return result;
}

std::size_t utf16Length(std::string_view text) noexcept {
  std::size_t length = 0;
  forEachRun(
      text, [&length](std::string_view run) { length += run.size(); },
      [&length](const Scalar& scalar) { length += scalar.value < 0x10000 ? 1 : 2; });
  return length;
}

std::size_t utf8Length(std::u16string_view text) noexcept {
  std::size_t length = 0;
  forEachRun(
      text, [&length](std::u16string_view run) { length += run.size(); },
      [&length](const Scalar& scalar) { length += utf8Size(scalar.value); });
  return length;
}

std::size_t characterCount(std::string_view text) noexcept {
  if (everyByteIsACharacter(text)) return text.size();
  std::size_t count = 0;
  ClusterRules rules;
  for (std::size_t i = 0; i < text.size();) {
    const Scalar scalar = scalarAt(text, i);
    if (!rules.joins(scalar.value)) ++count;
    i += scalar.length;
  }
  return count;
}

std::size_t firstCharacterLength(std::string_view text) noexcept {
  std::size_t length = 0;
  ClusterRules rules;
  while (length < text.size()) {
    const Scalar scalar = scalarAt(text, length);
    if (!rules.joins(scalar.value) && length != 0) break;
    length += scalar.length;
  }
  return length;
}

}  // namespace platform
}  // namespace havrin
