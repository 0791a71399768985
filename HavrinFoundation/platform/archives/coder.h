// NSCoder: how objects write themselves into an archive and come back from it, value by value, each under a key.
//
//   class Favourite : public Object<Favourite, NSObject> {
//     Strong<NSString> name_;
//     std::int64_t plays_ = 0;
//    public:
//     void encodeWithCoder(NSCoder* coder) const {
//       coder->encodeObject(name_, "name");
//       coder->encodeInteger(plays_, "plays");
//     }
//     Strong<NSObject> initWithCoder(NSCoder* coder) {
//       name_ = coder->decodeObject<NSString>("name");
//       plays_ = coder->decodeIntegerForKey("plays");
//       return this;
//     }
//     using Protocols = List<NSSecureCoding>;
//     using Members = List<Method<"encodeWithCoder:", &Favourite::encodeWithCoder>,
//                          Method<"initWithCoder:", &Favourite::initWithCoder>>;
//   };
//   const ArchivedClass<Favourite> kArchivedFavourite("Favourite");       keyed_unarchiver.h: archives know the name
//
// The coders are NSKeyedArchiver and NSKeyedUnarchiver; each answers its half, the other half throws NSException
// (InvalidArgument). Keys are UTF-8, and one object uses each key once.
// Left out: values without keys, objects that are written only when something else holds them, stand-ins for objects
// while they are written, geometry, selectors and arrays of numbers as values.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/coding_protocols.h>
#include <HavrinFoundation/platform/foundation/error.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace havrin {
inline namespace platform {

class NSCoder;
class NSSet;

/// Writes the receiver's values to `coder`. The classes of foundation/, time/ and net/ that adopt NSCoding are written by
/// the archiver itself and do not answer this.
template <>
struct Message<NSObject, "encodeWithCoder:"> : Signature<void(NSCoder* coder)> {};

/// Makes an allocated object of what `coder` holds. Result: the object to use in its place, or null for none.
template <>
struct Message<NSObject, "initWithCoder:"> : Signature<Strong<NSObject>(NSCoder* coder)> {};

/// Sent to each object that `initWithCoder:` made, where its class answers. Result: the object to use in its place.
template <>
struct Message<NSObject, "awakeAfterUsingCoder:"> : Signature<Strong<NSObject>(NSCoder* coder)> {};

/// What an exception is named that says that something could not be decoded.
inline constexpr std::string_view NSInvalidUnarchiveOperationException = "NSInvalidUnarchiveOperationException";

/// The codes of coding errors, in NSCocoaErrorDomain.
inline constexpr std::int64_t NSCoderReadCorruptError = 4864;
inline constexpr std::int64_t NSCoderValueNotFoundError = 4865;
inline constexpr std::int64_t NSCoderInvalidValueError = 4866;

/// What a coder does when something cannot be decoded.
enum class NSDecodingFailurePolicy : std::int64_t { RaiseException = 0, SetErrorAndReturn = 1 };

/// Threads: one at a time.
class HAVRIN_EXPORT NSCoder : public Object<NSCoder, NSObject> {
 public:
  /// Writes a value under `key`. An object is written once, however often it is encoded; null is kept as null.
  virtual void encodeObject(NSObject* object, std::string_view key);
  virtual void encodeBool(bool value, std::string_view key);
  virtual void encodeInteger(std::int64_t value, std::string_view key);
  virtual void encodeDouble(double value, std::string_view key);
  virtual void encodeBytes(std::span<const std::byte> bytes, std::string_view key);

  /// Whether there is a value under `key`, be it null.
  [[nodiscard]] virtual bool containsValueForKey(std::string_view key);

  // The value under `key`; null, 0, false or no bytes where there is none.
  // A failure, see failWithError, when: the value is of another kind, or a number lies outside the type. Integers are no
  // reals, numbers are no booleans, and the reverse.

  /// While secure coding is required only the classes named may come, with their subclasses, and inside collections the
  /// same ones; each adopts NSSecureCoding. While it is not, any class may, and which is named means nothing.
  [[nodiscard]] virtual Strong<NSObject> decodeObjectOfClass(Class cls, std::string_view key);
  [[nodiscard]] virtual Strong<NSObject> decodeObjectOfClasses(const NSSet* classes, std::string_view key);
  /// An object of any class. A failure while secure coding is required.
  [[nodiscard]] virtual Strong<NSObject> decodeObjectForKey(std::string_view key);
  [[nodiscard]] virtual bool decodeBoolForKey(std::string_view key);
  [[nodiscard]] virtual std::int64_t decodeIntegerForKey(std::string_view key);
  [[nodiscard]] std::int32_t decodeInt32ForKey(std::string_view key);
  [[nodiscard]] virtual double decodeDoubleForKey(std::string_view key);
  /// The nearest float. A failure when a finite number becomes infinite.
  [[nodiscard]] float decodeFloatForKey(std::string_view key);
  /// Good until the coder has finished decoding or ends.
  [[nodiscard]] virtual std::span<const std::byte> decodeBytesForKey(std::string_view key);

  /// The object under `key` as a Type. A failure when it is of another class, whether or not secure coding is required.
  template <class Type>
  [[nodiscard]] Strong<Type> decodeObject(std::string_view key) {
    Strong<NSObject> object = decodeObjectOfClass(classOf<Type>(), key);
    if (!object || isKind<Type>(object)) return Strong<Type>::adopt(static_cast<Type*>(object.detach()));
    failWithWrongClass(object, typeName<Type>(), key);
    return nullptr;
  }

  [[nodiscard]] virtual bool requiresSecureCoding() const { return false; }
  [[nodiscard]] virtual NSDecodingFailurePolicy decodingFailurePolicy() const;

  /// Gives up: the first error is kept, and from then on every value decodes as null or 0. `initWithCoder:` calls it for
  /// values that it cannot use. Throws: NSException (InvalidUnarchiveOperation) where the policy says so.
  virtual void failWithError(NSError* error);
  /// The first failure; null while there is none.
  [[nodiscard]] virtual Strong<NSError> error() const { return error_; }
  [[nodiscard]] bool hasFailed() const { return static_cast<bool>(error_); }

 private:
  void failWithWrongClass(NSObject* object, std::string_view wanted, std::string_view key);

  Strong<NSError> error_;
};

/// An error of coding, in NSCocoaErrorDomain, with a text for developers.
[[nodiscard]] HAVRIN_EXPORT Strong<NSError> makeCodingError(std::int64_t code, std::string_view text);

}  // namespace platform
}  // namespace havrin
