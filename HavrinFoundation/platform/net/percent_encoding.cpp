// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/net/percent_encoding.h>

#include <HavrinFoundation/platform/base/hex_digits.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <array>
#include <cstddef>

namespace havrin {
inline namespace platform {
namespace {

// The characters of a query (RFC 3986, 3.4) without those that separate its items: "&", "=", ";" and "+".
constexpr std::array<bool, 256> makeUnescaped() {
  std::array<bool, 256> unescaped{};
  for (int c = '0'; c <= '9'; ++c) unescaped[static_cast<std::size_t>(c)] = true;
  for (int c = 'A'; c <= 'Z'; ++c) unescaped[static_cast<std::size_t>(c)] = true;
  for (int c = 'a'; c <= 'z'; ++c) unescaped[static_cast<std::size_t>(c)] = true;
  for (const char c : std::string_view("-._~!$'()*,:@/?")) unescaped[static_cast<unsigned char>(c)] = true;
  return unescaped;
}

constexpr std::array<bool, 256> kUnescaped = makeUnescaped();

}  // namespace

std::string percentDecoded(std::string_view text) {
  std::size_t escape = text.find('%');
  if (escape == text.npos) return std::string(text);
  std::string decoded;
  decoded.reserve(text.size());
  while (escape != text.npos) {
    decoded += text.substr(0, escape);
    text.remove_prefix(escape);
    const int high = text.size() < 3 ? kNoDigit : hexValue(text[1]);
    const int low = text.size() < 3 ? kNoDigit : hexValue(text[2]);
    // A percent sign without two digits is a character like any other.
    const bool whole = high != kNoDigit && low != kNoDigit;
    decoded += whole ? static_cast<char>(high * 16 + low) : '%';
    text.remove_prefix(whole ? 3 : 1);
    escape = text.find('%');
  }
  decoded += text;
  // Escapes may join to bytes that are not UTF-8.
  return isWellFormed(decoded) ? decoded : repaired(decoded);
}

void appendQueryEncoded(std::string& result, std::string_view text) {
  bool allStand = true;
  for (const char c : text) allStand &= kUnescaped[static_cast<unsigned char>(c)];
  if (allStand) {
    result += text;
    return;
  }
  if (!isWellFormed(text)) return appendQueryEncoded(result, repaired(text));
  while (!text.empty()) {
    std::size_t run = 0;
    while (run < text.size() && kUnescaped[static_cast<unsigned char>(text[run])]) ++run;
    result += text.substr(0, run);
    if (run == text.size()) return;
    const auto byte = static_cast<unsigned char>(text[run]);
    const char escape[] = {'%', kUpperHexDigits[byte >> 4], kUpperHexDigits[byte & 15]};
    result.append(escape, 3);
    text.remove_prefix(run + 1);
  }
}

}  // namespace platform
}  // namespace havrin
