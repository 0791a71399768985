// SPDX-License-Identifier: Apache-2.0
// NSData and NSMutableData: bytes as an object.
//
//   Strong<NSData> d = makeData("abc");                   the bytes of a text
//   d->length()                                           3
//   d->bytes()                                            a view of them, valid as long as nothing changes the object
//   d->isEqual(makeData("abc"))                           true: byte by byte
//   d->description()                                      "{length = 3, bytes = 0x616263}"
//
// A subclass that overrides `bytes` works everywhere data does.
// Left out: files and links as sources, base-64, searching, ranges of data, bytes that are not copied.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSData : public Object<NSData, NSObject> {
 public:
  using Leaf = NSData;

  /// No bytes.
  NSData() noexcept = default;
  /// A copy of these.
  explicit NSData(std::span<const std::byte> bytes) : bytes_(bytes.begin(), bytes.end()) {}
  explicit NSData(std::vector<std::byte> bytes) noexcept : bytes_(std::move(bytes)) {}

  /// The bytes, not copied.
  [[nodiscard]] virtual std::span<const std::byte> bytes() const { return {bytes_.data(), bytes_.size()}; }
  [[nodiscard]] std::uint64_t length() const { return bytes().size(); }

  /// True for data with the same bytes, mutable or not.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  /// The length and the first 24 bytes.
  [[nodiscard]] Strong<NSString> description() const override;
  /// The data itself.
  [[nodiscard]] Strong<NSObject> copy() const override;
  /// An NSMutableData with the same bytes.
  [[nodiscard]] Strong<NSObject> mutableCopy() const override;

  using Protocols = List<NSSecureCoding>;

 protected:
  std::vector<std::byte> bytes_;
};

/// Bytes that change. Threads: one at a time.
class HAVRIN_EXPORT NSMutableData : public Object<NSMutableData, NSData> {
 public:
  using Leaf = NSMutableData;

  NSMutableData() noexcept = default;
  explicit NSMutableData(std::span<const std::byte> bytes) : Object(bytes) {}

  virtual void append(std::span<const std::byte> bytes);
  virtual void setData(std::span<const std::byte> bytes);

  /// An NSData with the bytes of now.
  [[nodiscard]] Strong<NSObject> copy() const override;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSData>();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSMutableData>();

/// Data with a copy of these bytes, or of a text's.
[[nodiscard]] HAVRIN_EXPORT Strong<NSData> makeData(std::span<const std::byte> bytes);
[[nodiscard]] HAVRIN_EXPORT Strong<NSData> makeData(std::string_view text);

}  // namespace platform
}  // namespace havrin
