// SPDX-License-Identifier: Apache-2.0
// NSCoder: the interface by which objects encode themselves into an archive and decode themselves, value by value, each
// under a key.
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
//   const ArchivedClass<Favourite> kArchivedFavourite("Favourite");       keyed_unarchiver.h: registers the name
//
// The coders are NSKeyedArchiver, which encodes, and NSKeyedUnarchiver, which decodes; the other half of the functions
// throws NSException (InvalidArgument). Keys are UTF-8, and an object uses each key once.
// Left out: values without keys, objects that are written only when another object holds them, stand-ins for objects
// while they are written, geometry, selectors and arrays of numbers as values.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/error.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/members.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace havrin {
inline namespace platform {

class NSCoder;
class NSSet;

/// Encodes the receiver's values with `coder`. The layer's own classes that adopt NSCoding are encoded by the archiver
/// itself and do not respond to this.
template <>
struct Message<NSObject, "encodeWithCoder:"> : Signature<void(NSCoder* coder)> {};

/// Initialises an allocated object from `coder`. Result: the object to use in its place; null if decoding failed.
template <>
struct Message<NSObject, "initWithCoder:"> : Signature<Strong<NSObject>(NSCoder* coder)> {};

/// Sent to each object after `initWithCoder:`, if its class responds. Result: the object to use in its place.
template <>
struct Message<NSObject, "awakeAfterUsingCoder:"> : Signature<Strong<NSObject>(NSCoder* coder)> {};

/// The name of the exception thrown on a decoding failure under NSDecodingFailurePolicy::RaiseException.
inline constexpr std::string_view NSInvalidUnarchiveOperationException = "NSInvalidUnarchiveOperationException";

/// The codes of coding errors, in NSCocoaErrorDomain.
inline constexpr std::int64_t NSCoderReadCorruptError = 4864;
inline constexpr std::int64_t NSCoderValueNotFoundError = 4865;
inline constexpr std::int64_t NSCoderInvalidValueError = 4866;

/// What a coder does on a decoding failure: throw, or keep the first error and return null or 0.
enum class NSDecodingFailurePolicy : std::int64_t { RaiseException = 0, SetErrorAndReturn = 1 };

/// The base class of archiver and unarchiver. Threads: one at a time.
class HAVRIN_EXPORT NSCoder : public Object<NSCoder, NSObject> {
 public:
  /// Encodes a value under `key`. An object that is encoded several times is written once; null is decoded as null.
  virtual void encodeObject(NSObject* object, std::string_view key);
  virtual void encodeBool(bool value, std::string_view key);
  virtual void encodeInteger(std::int64_t value, std::string_view key);
  virtual void encodeDouble(double value, std::string_view key);
  virtual void encodeBytes(std::span<const std::byte> bytes, std::string_view key);

  /// Whether there is a value under `key`, null included.
  [[nodiscard]] virtual bool containsValueForKey(std::string_view key);

  // The value under `key`; null, 0, false or no bytes if there is none.
  // A failure, see failWithError, when: the value is of another kind, or a number is out of the range of the type.
  // Integers, reals and booleans are different kinds.

  /// The object under `key`. While secure coding is required, only the given classes and their subclasses are allowed,
  /// inside collections too, and each must adopt NSSecureCoding. Otherwise the classes are not checked. For an array of
  /// stations: `decodeObjectOfClasses(makeSet({classOf<NSArray>(), classOf<Station>()}), "stations")`.
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
  /// Result: valid until the coder has finished decoding or is destroyed.
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

  /// Fails decoding: the first error is kept, and every further value decodes as null or 0. Call it from
  /// `initWithCoder:` for values that are not usable.
  /// Throws: NSException (InvalidUnarchiveOperation) under the policy RaiseException.
  virtual void failWithError(NSError* error);
  /// The first failure; null while there is none.
  [[nodiscard]] virtual Strong<NSError> error() const { return error_; }
  [[nodiscard]] bool hasFailed() const { return static_cast<bool>(error_); }

 private:
  void failWithWrongClass(NSObject* object, std::string_view wanted, std::string_view key);

  Strong<NSError> error_;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSCoder>();

/// An error in NSCocoaErrorDomain with the debug description `text`.
[[nodiscard]] HAVRIN_EXPORT Strong<NSError> makeCodingError(std::int64_t code, std::string_view text);

}  // namespace platform
}  // namespace havrin
