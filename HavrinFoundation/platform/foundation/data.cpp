// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/data.h>

#include <HavrinFoundation/platform/base/hex_digits.h>

#include <algorithm>
#include <string>

namespace havrin {
inline namespace platform {

bool NSData::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSData* data = cast<NSData>(other);
  return data && std::ranges::equal(bytes(), data->bytes());
}

// FNV-1a over the first bytes and the length: hashing all of a long value is slow, and most values differ early.
std::uint64_t NSData::hash() const {
  constexpr std::size_t kHashed = 80;
  const auto all = bytes();
  std::uint64_t hash = 0xcbf2'9ce4'8422'2325 ^ all.size();
  for (const std::byte byte : all.first(std::min(kHashed, all.size()))) {
    hash = (hash ^ std::to_integer<std::uint64_t>(byte)) * 0x0000'0100'0000'01b3;
  }
  return hash;
}

Strong<NSString> NSData::description() const {
  constexpr std::size_t kShown = 24;
  const auto all = bytes();
  char digits[2 * kShown];
  const std::size_t shown = std::min(kShown, all.size());
  writeHexDigits(all.data(), shown, digits);
  const std::string text = "{length = " + std::to_string(all.size()) + ", bytes = 0x" + std::string(digits, 2 * shown) +
                           (all.size() > kShown ? "...}" : "}");
  return makeString(text);
}

Strong<NSObject> NSData::copy() const { return Strong<NSObject>(const_cast<NSData*>(this)); }

Strong<NSObject> NSData::mutableCopy() const { return make<NSMutableData>(bytes()); }

void NSMutableData::append(std::span<const std::byte> bytes) {
  const std::vector<std::byte> more(bytes.begin(), bytes.end());  // they may be this object's own, which move
  bytes_.insert(bytes_.end(), more.begin(), more.end());
}

void NSMutableData::setData(std::span<const std::byte> bytes) {
  bytes_ = std::vector<std::byte>(bytes.begin(), bytes.end());
}

Strong<NSObject> NSMutableData::copy() const { return make<NSData>(bytes()); }

Strong<NSData> makeData(std::span<const std::byte> bytes) { return make<NSData>(bytes); }

Strong<NSData> makeData(std::string_view text) { return makeData(std::as_bytes(std::span(text))); }

template ClassObject* buildClass<NSData>();
template ClassObject* buildClass<NSMutableData>();

}  // namespace platform
}  // namespace havrin
