// SPDX-License-Identifier: Apache-2.0
// NSKeyedUnarchiver: objects out of a keyed archive, in its binary form or as XML.
//
//   Strong<NSError> why;
//   auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, &why);
//   if (!unarchiver) std::puts(utf8(*why->description()).c_str());           not a keyed archive: ...
//   unarchiver->setRequiresSecureCoding(false);                              or pass classes: ...OfClasses
//   const auto names = unarchiver->decodeObject<NSArray>(NSKeyedArchiveRootObjectKey);
//   if (unarchiver->error()) std::puts("damaged");                           object 7: unknown class "Favourite": ...
//
//   NSKeyedUnarchiver::unarchivedObjectOfClass(classOf<NSString>(), data, &why)     all of this in one call
//
// Archives hold strings, numbers, nulls, data, dates, identifiers, links, arrays, dictionaries, sets and ordered sets,
// mutable or not, attributed strings, and objects of the application's classes that adopt NSCoding (coder.h) and are
// registered by one line, `const ArchivedClass<Favourite> kArchivedFavourite("Favourite");`.
//
// Input is not trusted. Sizes and references are checked before use; nesting is limited to kDeepestNesting and the
// expanded size, with shared parts counted at each occurrence, to kLargestExpansion; a collection that contains itself
// is refused. The memory for decoded objects is limited to the larger of 16 MiB and 32 times the size of the archive.
// The work of comparing keys and set members is limited, too: thousands with the same hash are refused. An object of
// the application may contain itself and is then visible to its own `initWithCoder:` before that has returned.
//
// Left out: delegates, class names for a single unarchiver, archives without keys, archives inside archives.
#pragma once

#include <HavrinFoundation/platform/archives/coder.h>
#include <HavrinFoundation/platform/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>

namespace havrin {
inline namespace platform {

class ArchiveReader;
class NSData;

/// The key of the root object of an archive.
inline constexpr std::string_view NSKeyedArchiveRootObjectKey = "root";

/// An unarchiver. Threads: one at a time; the deepest nesting needs 2 MiB of stack.
class HAVRIN_EXPORT NSKeyedUnarchiver : public Object<NSKeyedUnarchiver, NSCoder> {
 public:
  /// The deepest nesting of objects, in reading and in NSKeyedArchiver.
  static constexpr std::size_t kDeepestNesting = 1024;
  /// The largest number of parts of a collection, counted recursively and shared parts at each occurrence. Set members
  /// and keys count once more for each other one with the same hash.
  static constexpr std::uint64_t kLargestExpansion = std::uint64_t{1} << 24;

  /// An unarchiver without an archive, for initForReadingFromData.
  NSKeyedUnarchiver();
  ~NSKeyedUnarchiver() override;

  /// Opens the archive in `data`. Result: the unarchiver itself.
  /// Null when: `data` is null or not a keyed archive; `error`, unless null, then receives NSCoderReadCorruptError.
  /// Cost: constant for the binary form, linear for XML. Objects are made when they are decoded, each once.
  virtual Strong<NSKeyedUnarchiver> initForReadingFromData(NSData* data, Strong<NSError>* error);

  /// The root object of an archive, with secure coding required.
  /// Null when: it cannot be decoded, or is not of the classes; `error`, unless null, then receives the reason. A null
  /// root is NSCoderValueNotFoundError.
  [[nodiscard]] static Strong<NSObject> unarchivedObjectOfClass(Class cls, NSData* data, Strong<NSError>* error);
  [[nodiscard]] static Strong<NSObject> unarchivedObjectOfClasses(const NSSet* classes, NSData* data,
                                                                  Strong<NSError>* error);

  /// Registers a class under `name`; null removes the name. Names of the layer's own classes may be replaced, too. A
  /// class may have several names for decoding; it is encoded under the first of them that is still its own.
  /// Threads: any.
  /// Throws: NSException (InvalidArgument) for an empty name.
  static void setClass(Class cls, std::string_view name);
  /// The class registered under `name`; null if there is none. Threads: any.
  [[nodiscard]] static Class classForName(std::string_view name);

  /// True by default. Set it before anything is decoded.
  virtual void setRequiresSecureCoding(bool required);
  [[nodiscard]] bool requiresSecureCoding() const override { return requiresSecureCoding_; }
  /// SetErrorAndReturn by default.
  virtual void setDecodingFailurePolicy(NSDecodingFailurePolicy policy);
  [[nodiscard]] NSDecodingFailurePolicy decodingFailurePolicy() const override { return policy_; }

  [[nodiscard]] bool containsValueForKey(std::string_view key) override;
  [[nodiscard]] Strong<NSObject> decodeObjectForKey(std::string_view key) override;
  [[nodiscard]] Strong<NSObject> decodeObjectOfClass(Class cls, std::string_view key) override;
  [[nodiscard]] Strong<NSObject> decodeObjectOfClasses(const NSSet* classes, std::string_view key) override;
  [[nodiscard]] bool decodeBoolForKey(std::string_view key) override;
  [[nodiscard]] std::int64_t decodeIntegerForKey(std::string_view key) override;
  [[nodiscard]] double decodeDoubleForKey(std::string_view key) override;
  [[nodiscard]] std::span<const std::byte> decodeBytesForKey(std::string_view key) override;

  /// Releases the archive; further values are absent. Not needed before the unarchiver is destroyed. A failure when: it
  /// is called from `initWithCoder:`.
  virtual void finishDecoding();

 private:
  [[nodiscard]] Strong<NSObject> decode(Class cls, const NSSet* classes, std::string_view key);

  std::unique_ptr<ArchiveReader> reader_;
  NSDecodingFailurePolicy policy_ = NSDecodingFailurePolicy::SetErrorAndReturn;
  bool requiresSecureCoding_ = true;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSKeyedUnarchiver>();

/// Registers the class Type with archives, as a constant at namespace scope beside the class.
template <class Type>
struct ArchivedClass {
  static_assert(
      std::is_default_constructible_v<Type>,
      "ArchivedClass: Type needs a default constructor, because objects are made before their values are decoded");
  explicit ArchivedClass(std::string_view name = typeName<Type>()) {
    NSKeyedUnarchiver::setClass(classOf<Type>(), name);
  }
};

}  // namespace platform
}  // namespace havrin
