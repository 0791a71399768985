// NSKeyedUnarchiver: objects out of a keyed archive, in its binary form or as XML.
//
//   Strong<NSError> why;
//   auto unarchiver = alloc<NSKeyedUnarchiver>()->initForReadingFromData(data, &why);
//   if (!unarchiver) std::puts(utf8(*why->description()).c_str());           no keyed archive
//   unarchiver->setRequiresSecureCoding(false);                              or ask for classes: ...OfClasses
//   const auto names = unarchiver->decodeObject<NSArray>(NSKeyedArchiveRootObjectKey);
//   if (unarchiver->error()) ...                                             object 7: no class "Favourite" is known
//
//   NSKeyedUnarchiver::unarchivedObjectOfClass(classOf<NSString>(), data, &why)     all of that in one call
//
// Archives hold strings, numbers, nulls, data, dates, identifiers, links, arrays, dictionaries, sets and ordered sets,
// mutable or not, attributed strings, and objects of the application's classes, which say how in coder.h and are made
// known by one line:
//
//   const ArchivedClass<Favourite> kArchivedFavourite("Favourite");
//
// Reading takes nothing on trust. Sizes and references are checked before they are used; objects nest no deeper than
// kDeepestNesting, and stand, shared parts counted each time, for no more than kLargestExpansion; a collection that holds
// itself is refused; what is made stays within 32 times the size of the archive, or 16 MiB where that is more, and so does
// the work of telling keys and members of sets apart: thousands with one hash are refused. An object of the application
// may hold itself, by a value of its own: it meets itself before its `initWithCoder:` has returned.
//
// Left out: delegates, classes by name for one unarchiver alone, archives without keys, archives inside archives.
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

/// The key of the outermost object of an archive that holds one.
inline constexpr std::string_view NSKeyedArchiveRootObjectKey = "root";

/// Threads: one at a time; any thread with 2 MiB of stack, which reading what nests deepest takes.
class HAVRIN_EXPORT NSKeyedUnarchiver : public Object<NSKeyedUnarchiver, NSCoder> {
 public:
  /// Objects nest at most so deep in what is read and in what NSKeyedArchiver writes.
  static constexpr std::size_t kDeepestNesting = 1024;
  /// How many parts a collection may stand for, parts of parts counted, and shared ones each time; members of a set and
  /// keys count once more for every other one of their hash.
  static constexpr std::uint64_t kLargestExpansion = std::uint64_t{1} << 24;

  /// An unarchiver of nothing, for an init message.
  NSKeyedUnarchiver();
  ~NSKeyedUnarchiver() override;

  /// Makes an allocated unarchiver read `data`. Result: the unarchiver to use in its place, here itself.
  /// Null when: the data is no keyed archive; then `error`, if there is one, gets NSCoderReadCorruptError. Null data is
  /// no archive.
  /// Cost: constant for the binary form, linear for XML. Objects are made when they are decoded, each once.
  virtual Strong<NSKeyedUnarchiver> initForReadingFromData(NSData* data, Strong<NSError>* error);

  /// The outermost object of an archive, with secure coding required.
  /// Null when: it cannot be decoded, or is not among the classes. `error`, if there is one, then says why; null at the
  /// root is the error NSCoderValueNotFoundError.
  [[nodiscard]] static Strong<NSObject> unarchivedObjectOfClass(Class cls, NSData* data, Strong<NSError>* error);
  [[nodiscard]] static Strong<NSObject> unarchivedObjectOfClasses(const NSSet* classes, NSData* data,
                                                                  Strong<NSError>* error);

  /// Makes archives know a class of the application by `name`, or takes the name away for null. Names of the layer's own
  /// classes may be given too. One class may be read under several names; it is written under the first that still is
  /// its own. Threads: any.
  /// Throws: NSException (InvalidArgument) for an empty name.
  static void setClass(Class cls, std::string_view name);
  /// The class that archives know by `name`; null for none.
  [[nodiscard]] static Class classForName(std::string_view name);

  /// True at first. It is switched off before anything is decoded.
  virtual void setRequiresSecureCoding(bool required);
  [[nodiscard]] bool requiresSecureCoding() const override { return requiresSecureCoding_; }
  /// SetErrorAndReturn at first.
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

  /// Says that nothing more is decoded, and lets the archive go. Not needed before the unarchiver ends. A failure while
  /// an object is being read.
  virtual void finishDecoding();

 private:
  [[nodiscard]] Strong<NSObject> decode(Class cls, const NSSet* classes, std::string_view key);

  std::unique_ptr<ArchiveReader> reader_;
  NSDecodingFailurePolicy policy_ = NSDecodingFailurePolicy::SetErrorAndReturn;
  bool requiresSecureCoding_ = true;
};

/// Makes the class Type known to archives before the program begins, as a constant beside the class.
template <class Type>
struct ArchivedClass {
  static_assert(std::is_default_constructible_v<Type>,
                "ArchivedClass: archives make objects before they know their values");
  explicit ArchivedClass(std::string_view name = typeName<Type>()) {
    NSKeyedUnarchiver::setClass(classOf<Type>(), name);
  }
};

}  // namespace platform
}  // namespace havrin
