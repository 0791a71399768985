#include <HavrinFoundation/platform/net/uri.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace havrin::inline platform {
namespace {

// Where a byte may stand. "%" may stand wherever an escape may; that two hexadecimal digits follow it is checked apart.
enum Place : std::uint8_t {
  kScheme = 1,
  kUserInfo = 2,
  kHost = 4,
  kPath = 8,
  kQuery = 16,
  kHexDigit = 32,
  kDigit = 64
};

constexpr std::array<std::uint8_t, 256> makePlaces() {
  std::array<std::uint8_t, 256> places{};
  const auto allow = [&places](std::string_view bytes, int at) {
    for (const char c : bytes) places[static_cast<unsigned char>(c)] |= static_cast<std::uint8_t>(at);
  };
  constexpr int kEverywhere = kUserInfo | kHost | kPath | kQuery;
  for (char c = 'a'; c <= 'z'; ++c) allow({&c, 1}, kScheme | kEverywhere);
  for (char c = 'A'; c <= 'Z'; ++c) allow({&c, 1}, kScheme | kEverywhere);
  allow("0123456789", kScheme | kEverywhere | kHexDigit | kDigit);
  allow("abcdefABCDEF", kHexDigit);
  allow("+-.", kScheme);
  allow("-._~!$&'()*+,;=%", kEverywhere);
  allow(":", kUserInfo | kPath | kQuery);
  allow("@/", kPath | kQuery);
  allow("?", kQuery);
  return places;
}

constexpr std::array<std::uint8_t, 256> kPlaces = makePlaces();

bool mayStand(char c, Place place) noexcept { return (kPlaces[static_cast<unsigned char>(c)] & place) != 0; }

// No early exit: the links that come in are good ones, and a loop without a branch per byte is twice as fast.
bool allMayStand(std::string_view bytes, Place place) noexcept {
  unsigned all = place;
  for (const char c : bytes) all &= kPlaces[static_cast<unsigned char>(c)];
  return all != 0;
}

bool escapesAreWhole(std::string_view text) noexcept {
  for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at + 3)) {
    if (text.size() - at < 3 || !mayStand(text[at + 1], kHexDigit) || !mayStand(text[at + 2], kHexDigit)) return false;
  }
  return true;
}

bool isScheme(std::string_view text) noexcept {
  // The first character is a letter: what may stand in a scheme and is neither digit nor sign.
  return !text.empty() && allMayStand(text, kScheme) && !mayStand(text[0], kDigit) && text[0] != '+' &&
         text[0] != '-' && text[0] != '.';
}

bool isIPv4(std::string_view text) noexcept {
  for (int octet = 0; octet < 4; ++octet) {
    std::size_t length = 0;
    int value = 0;
    while (length < text.size() && length < 3 && mayStand(text[length], kDigit))
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
    while (length < text.size() && mayStand(text[length], kHexDigit)) ++length;
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
  const std::string_view address = text.substr(dot + 1);
  return allMayStand(text.substr(1, dot - 1), kHexDigit) && allMayStand(address, kUserInfo) &&
         address.find('%') == address.npos;
}

bool isAuthority(std::string_view text) noexcept {
  if (const std::size_t at = text.find('@'); at != text.npos) {
    if (!allMayStand(text.substr(0, at), kUserInfo)) return false;
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
    if (!allMayStand(host, kHost)) return false;
    text.remove_prefix(host.size());
  }
  return text.empty() || (text[0] == ':' && allMayStand(text.substr(1), kDigit));
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
  const std::size_t colon = text.find_first_of(":/");
  if (colon != text.npos && colon != 0 && text[colon] == ':') {
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
  // What splitting left in the path without a scheme begins with ":" at the worst: a colon in the first segment.
  if (!parts.scheme && parts.path.starts_with(':')) return false;
  if (parts.authority && !isAuthority(*parts.authority)) return false;
  return allMayStand(parts.path, kPath) && (!parts.query || allMayStand(*parts.query, kQuery)) &&
         (!parts.fragment || allMayStand(*parts.fragment, kQuery));
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

}  // namespace havrin::inline platform
