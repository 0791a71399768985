// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/net/uri.h>

#include <HavrinFoundation/platform/base/ascii.h>
#include <HavrinFoundation/platform/base/hex_digits.h>
#include <HavrinFoundation/platform/net/percent_encoding.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace havrin {
inline namespace platform {
namespace {

// Sixteen bytes that are worked on at once: the compilers' own vectors, which need no instruction of one processor.
using Bytes = std::uint8_t __attribute__((vector_size(16)));
using Mask = std::int8_t __attribute__((vector_size(16)));

constexpr std::uint8_t byteOf(char c) { return static_cast<std::uint8_t>(c); }

// All bits where a byte is allowed in no part behind the scheme: controls, the blank, what is not ASCII, and
// " # < > [ \ ] ^ ` { | }. The brackets of an address, and what each part alone refuses, are looked at apart.
Mask refused(Bytes bytes) noexcept {
  return (Mask)((bytes - byteOf('!') > byteOf('~' - '!')) | (bytes - byteOf('[') <= byteOf('^' - '[')) |
                (bytes - byteOf('{') <= byteOf('}' - '{')) | (bytes == byteOf('"')) | (bytes == byteOf('#')) |
                (bytes == byteOf('<')) | (bytes == byteOf('>')) | (bytes == byteOf('`')));
}

bool noneRefused(std::string_view text) noexcept {
  Bytes bytes;
  if (text.size() < sizeof bytes) {
    char padded[sizeof bytes] = {'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a', 'a'};
    std::memcpy(padded, text.data(), text.size());
    return noneRefused({padded, sizeof padded});
  }
  Mask any{};
  for (std::size_t i = 0; i < text.size(); i += sizeof bytes) {
    // The last step looks at the last sixteen once more.
    std::memcpy(&bytes, text.data() + std::min(i, text.size() - sizeof bytes), sizeof bytes);
    any |= refused(bytes);
  }
  std::uint64_t halves[2];
  std::memcpy(halves, &any, sizeof any);
  return (halves[0] | halves[1]) == 0;
}

bool isHexDigit(char c) noexcept { return hexValue(c) != kNoDigit; }

bool escapesAreWhole(std::string_view text) noexcept {
  for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 3)) {
    if (text.size() - at < 3 || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) return false;
  }
  return true;
}

bool isScheme(std::string_view text) noexcept {
  return isAsciiLetter(text[0]) && std::all_of(text.begin(), text.end(), [](char c) {
           return isAsciiLetter(c) || isAsciiDigit(c) || c == '+' || c == '-' || c == '.';
         });
}

bool isIPv4(std::string_view text) noexcept {
  for (int octet = 0; octet < 4; ++octet) {
    std::size_t length = 0;
    int value = 0;
    while (length < text.size() && length < 3 && isAsciiDigit(text[length]))
      value = value * 10 + (text[length++] - '0');
    if (length == 0 || value > 255 || (length > 1 && text[0] == '0')) return false;
    text.remove_prefix(length);
    if (octet == 3) return text.empty();
    if (text.empty() || text[0] != '.') return false;
    text.remove_prefix(1);
  }
  return false;
}

bool isIPv6(std::string_view text) noexcept {
  int groups = 0;
  bool elided = text.starts_with("::");
  if (elided) text.remove_prefix(2);
  while (!text.empty()) {
    std::size_t length = 0;
    while (length < text.size() && isHexDigit(text[length])) ++length;
    if (length < text.size() && text[length] == '.') {
      if (!isIPv4(text)) return false;
      groups += 2;
      break;
    }
    if (length == 0 || length > 4) return false;
    ++groups;
    text.remove_prefix(length);
    if (text.empty()) break;
    if (text.starts_with("::")) {
      if (elided) return false;
      elided = true;
      text.remove_prefix(2);
    } else if (text[0] == ':' && text.size() > 1) {
      text.remove_prefix(1);
    } else {
      return false;
    }
  }
  return elided ? groups <= 7 : groups == 8;
}

bool isIPvFuture(std::string_view text) noexcept {
  const std::size_t dot = text.find('.');
  if (dot == text.npos || dot < 2 || dot + 1 == text.size() || (text[0] != 'v' && text[0] != 'V')) return false;
  const std::string_view version = text.substr(1, dot - 1);
  const std::string_view address = text.substr(dot + 1);
  return std::all_of(version.begin(), version.end(), isHexDigit) && noneRefused(address) &&
         address.find_first_of("@%") == address.npos;
}

bool isAuthority(std::string_view text) noexcept {
  if (const std::size_t at = text.find('@'); at != text.npos) {
    if (!noneRefused(text.substr(0, at))) return false;
    text.remove_prefix(at + 1);
  }
  if (text.starts_with('[')) {
    const std::size_t end = text.find(']');
    if (end == text.npos) return false;
    const std::string_view address = text.substr(1, end - 1);
    if (!isIPv6(address) && !isIPvFuture(address)) return false;
    text.remove_prefix(end + 1);
  } else {
    const std::string_view host = text.substr(0, text.find(':'));
    if (!noneRefused(host) || host.find('@') != host.npos) return false;
    text.remove_prefix(host.size());
  }
  return text.empty() || (text[0] == ':' && std::all_of(text.begin() + 1, text.end(), isAsciiDigit));
}

// RFC 3986, 5.2.4, onto the end of `result`.
void appendWithoutDotSegments(std::string& result, std::string_view path) {
  const std::size_t start = result.size();
  const auto dropLastSegment = [&result, start] {
    const std::size_t slash = std::string_view(result).substr(start).rfind('/');
    result.resize(slash == std::string_view::npos ? start : start + slash);
  };
  while (!path.empty()) {
    if (path.starts_with("../")) {
      path.remove_prefix(3);
    } else if (path.starts_with("./")) {
      path.remove_prefix(2);
    } else if (path.starts_with("/./")) {
      path.remove_prefix(2);
    } else if (path == "/.") {
      path = "/";
    } else if (path.starts_with("/../")) {
      path.remove_prefix(3);
      dropLastSegment();
    } else if (path == "/..") {
      path = "/";
      dropLastSegment();
    } else if (path == "." || path == "..") {
      path = {};
    } else {
      const std::string_view segment = path.substr(0, path.find('/', 1));
      result += segment;
      path.remove_prefix(segment.size());
    }
  }
}

// RFC 3986, 5.2.3.
std::string mergedPath(const UriParts& base, std::string_view path) {
  std::string merged;
  if (base.authority && base.path.empty()) {
    merged = "/";
  } else {
    merged = base.path.substr(0, base.path.rfind('/') + 1);  // npos + 1 is 0: no slash, nothing kept
  }
  merged += path;
  return merged;
}

}  // namespace

UriParts splitUri(std::string_view text) noexcept {
  UriParts parts;
  if (const std::size_t hash = text.find('#'); hash != text.npos) {
    parts.fragment = text.substr(hash + 1);
    text = text.substr(0, hash);
  }
  if (const std::size_t mark = text.find('?'); mark != text.npos) {
    parts.query = text.substr(mark + 1);
    text = text.substr(0, mark);
  }
  std::size_t colon = 0;
  while (colon < text.size() && text[colon] != ':' && text[colon] != '/') ++colon;
  if (colon != 0 && colon < text.size() && text[colon] == ':') {
    parts.scheme = text.substr(0, colon);
    text.remove_prefix(colon + 1);
  }
  if (text.starts_with("//")) {
    parts.authority = text.substr(2, text.find('/', 2) - 2);
    text.remove_prefix(2 + parts.authority->size());
  }
  parts.path = text;
  return parts;
}

bool isUriReference(std::string_view text) noexcept {
  if (!escapesAreWhole(text)) return false;
  const UriParts parts = splitUri(text);
  if (parts.scheme && !isScheme(*parts.scheme)) return false;
  if (parts.authority && !isAuthority(*parts.authority)) return false;
  // A colon in the first segment: behind anything it would have ended a scheme, so it can only be in front.
  if (!parts.scheme && parts.path.starts_with(':')) return false;
  return noneRefused(parts.path) && (!parts.query || noneRefused(*parts.query)) &&
         (!parts.fragment || noneRefused(*parts.fragment));
}

std::string resolvedUri(const UriParts& base, const UriParts& reference) {
  const bool keepsAuthority = !reference.scheme && !reference.authority;
  const bool keepsPath = keepsAuthority && reference.path.empty();
  const auto& authority = keepsAuthority ? base.authority : reference.authority;
  const auto& query = keepsPath && !reference.query ? base.query : reference.query;

  std::string result;
  result.reserve(base.scheme->size() + (authority ? authority->size() : 0) + base.path.size() + reference.path.size() +
                 (query ? query->size() : 0) + (reference.fragment ? reference.fragment->size() : 0) + 8);
  result.append(reference.scheme ? *reference.scheme : *base.scheme) += ':';
  if (authority) result.append("//").append(*authority);
  const std::size_t pathStart = result.size();
  if (keepsPath) {
    result += base.path;
  } else if (keepsAuthority && !reference.path.starts_with('/')) {
    appendWithoutDotSegments(result, mergedPath(base, reference.path));
  } else {
    appendWithoutDotSegments(result, reference.path);
  }
  if (!authority && std::string_view(result).substr(pathStart).starts_with("//")) result.insert(pathStart, "/.");
  if (query) (result += '?').append(*query);
  if (reference.fragment) (result += '#').append(*reference.fragment);
  return result;
}

}  // namespace platform
}  // namespace havrin
