// SPDX-License-Identifier: Apache-2.0
// NSKeyedArchiver: objects into a keyed archive, in the binary form, which NSKeyedUnarchiver reads.
//
//   Strong<NSError> why;
//   const auto data = NSKeyedArchiver::archivedDataWithRootObject(names, false, &why);
//   if (!data) std::puts(utf8(*why->description()).c_str());      unknown class Station: declare ...
//
//   auto archiver = make<NSKeyedArchiver>();                      or value by value
//   archiver->encodeObject(names, "names");
//   archiver->encodeInteger(3, "version");
//   const auto bytes = archiver->encodedData();
//
// Every archive that is written can be read if objects decode their values in the order of encoding; in another order,
// long chains of the application's objects may exceed the nesting limit. See keyed_unarchiver.h.
// Objects of a subclass of one of the layer's classes are written as that class, unless the subclass is registered.
// Left out: writing XML, delegates, substitution of objects, class names for a single archiver.
#pragma once

#include <HavrinFoundation/platform/archives/coder.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace havrin {
inline namespace platform {

class ArchiveWriter;
class NSData;

/// An archiver. A failure, after which encodedData() is null, when: the class of an object is not registered, or does
/// not adopt NSCoding (NSSecureCoding, where required); a collection contains itself; objects exceed
/// NSKeyedUnarchiver::kDeepestNesting or kLargestExpansion; an object encodes a key twice.
/// Threads: one at a time.
class HAVRIN_EXPORT NSKeyedArchiver : public Object<NSKeyedArchiver, NSCoder> {
 public:
  NSKeyedArchiver();
  ~NSKeyedArchiver() override;

  /// Sets whether the class of each object must adopt NSSecureCoding. Call it before anything is encoded.
  /// Result: the archiver itself.
  virtual Strong<NSKeyedArchiver> initRequiringSecureCoding(bool required);

  /// An archive with the root object `object`, which may be null.
  /// Null when: it cannot be encoded; `error`, unless null, then receives NSCoderInvalidValueError with the reason.
  /// Cost: linear in the output. Strings and data of up to 256 bytes that occur several times are written once.
  [[nodiscard]] static Strong<NSData> archivedDataWithRootObject(NSObject* object, bool requiringSecureCoding,
                                                                 Strong<NSError>* error);

  void encodeObject(NSObject* object, std::string_view key) override;
  void encodeBool(bool value, std::string_view key) override;
  void encodeInteger(std::int64_t value, std::string_view key) override;
  void encodeDouble(double value, std::string_view key) override;
  void encodeBytes(std::span<const std::byte> bytes, std::string_view key) override;

  [[nodiscard]] bool requiresSecureCoding() const override { return requiresSecureCoding_; }

  /// The archive of the values encoded so far. Null when: there was a failure; it is called from `encodeWithCoder:`,
  /// which is a failure.
  [[nodiscard]] virtual Strong<NSData> encodedData();

 private:
  friend class ArchiveWriter;

  std::unique_ptr<ArchiveWriter> writer_;
  bool requiresSecureCoding_ = false;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSKeyedArchiver>();

}  // namespace platform
}  // namespace havrin
