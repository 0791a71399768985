// NSKeyedArchiver: objects into a keyed archive, in the binary form, which NSKeyedUnarchiver reads.
//
//   Strong<NSError> why;
//   const auto data = NSKeyedArchiver::archivedDataWithRootObject(names, false, &why);
//   if (!data) std::puts(utf8(*why->description()).c_str());      an object of class Station, which archives do not ...
//
//   auto archiver = make<NSKeyedArchiver>();                      or value by value
//   archiver->encodeObject(names, "names");
//   archiver->encodeInteger(3, "version");
//   const auto bytes = archiver->encodedData();
//
// What can be written is what can be read, when the values of an object are asked for in the order in which they were
// written; in another order, long chains of the application's objects may nest too deep. See keyed_unarchiver.h.
// Objects of a subclass of one of the layer's classes are written as that class, unless archives know the subclass.
// Left out: writing XML, delegates, stand-ins for objects, names of classes for one archiver alone.
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

/// A failure, after which encodedData() is null, when: archives do not know the class of an object, or it does not adopt
/// NSCoding (NSSecureCoding, where that is required); a collection holds itself; objects nest deeper than
/// NSKeyedUnarchiver::kDeepestNesting, or stand for more than kLargestExpansion; one object encodes a key twice.
/// Threads: one at a time.
class HAVRIN_EXPORT NSKeyedArchiver : public Object<NSKeyedArchiver, NSCoder> {
 public:
  NSKeyedArchiver();
  ~NSKeyedArchiver() override;

  /// Whether each object's class must adopt NSSecureCoding; said before anything is encoded. Result: the archiver to use in its place, here itself.
  virtual Strong<NSKeyedArchiver> initRequiringSecureCoding(bool required);

  /// An archive whose outermost object is `object`, null included.
  /// Null when: it cannot be written; `error`, if there is one, then says why, as NSCoderInvalidValueError.
  /// Cost: linear in what is written. Strings and data that occur several times are written once.
  [[nodiscard]] static Strong<NSData> archivedDataWithRootObject(NSObject* object, bool requiringSecureCoding,
                                                                 Strong<NSError>* error);

  void encodeObject(NSObject* object, std::string_view key) override;
  void encodeBool(bool value, std::string_view key) override;
  void encodeInteger(std::int64_t value, std::string_view key) override;
  void encodeDouble(double value, std::string_view key) override;
  void encodeBytes(std::span<const std::byte> bytes, std::string_view key) override;

  [[nodiscard]] bool requiresSecureCoding() const override { return requiresSecureCoding_; }

  /// The archive of what has been encoded so far. Null when: something could not be; an object is being written, by its
  /// `encodeWithCoder:`, which is a failure.
  [[nodiscard]] virtual Strong<NSData> encodedData();

 private:
  friend class ArchiveWriter;

  std::unique_ptr<ArchiveWriter> writer_;
  bool requiresSecureCoding_ = false;
};

}  // namespace platform
}  // namespace havrin
