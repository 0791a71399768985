// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/coder.h>

#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cmath>
#include <string>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

[[noreturn]] void throwOtherHalf(const NSCoder& coder, std::string_view selector) {
  throw NSException(
      NSInvalidArgumentException,
      "-[" + std::string(classOf(coder).name()) + " " + std::string(selector) +
          "]: this coder does not support the operation; NSKeyedArchiver encodes, NSKeyedUnarchiver decodes");
}

std::string quoted(std::string_view key) { return '"' + std::string(key) + '"'; }

}  // namespace

void NSCoder::encodeObject(NSObject*, std::string_view) { throwOtherHalf(*this, "encodeObject:forKey:"); }
void NSCoder::encodeBool(bool, std::string_view) { throwOtherHalf(*this, "encodeBool:forKey:"); }
void NSCoder::encodeInteger(std::int64_t, std::string_view) { throwOtherHalf(*this, "encodeInteger:forKey:"); }
void NSCoder::encodeDouble(double, std::string_view) { throwOtherHalf(*this, "encodeDouble:forKey:"); }
void NSCoder::encodeBytes(std::span<const std::byte>, std::string_view) {
  throwOtherHalf(*this, "encodeBytes:length:forKey:");
}

bool NSCoder::containsValueForKey(std::string_view) { throwOtherHalf(*this, "containsValueForKey:"); }
Strong<NSObject> NSCoder::decodeObjectForKey(std::string_view) { throwOtherHalf(*this, "decodeObjectForKey:"); }
Strong<NSObject> NSCoder::decodeObjectOfClass(Class, std::string_view) {
  throwOtherHalf(*this, "decodeObjectOfClass:forKey:");
}
Strong<NSObject> NSCoder::decodeObjectOfClasses(const NSSet*, std::string_view) {
  throwOtherHalf(*this, "decodeObjectOfClasses:forKey:");
}
bool NSCoder::decodeBoolForKey(std::string_view) { throwOtherHalf(*this, "decodeBoolForKey:"); }
std::int64_t NSCoder::decodeIntegerForKey(std::string_view) { throwOtherHalf(*this, "decodeIntegerForKey:"); }
double NSCoder::decodeDoubleForKey(std::string_view) { throwOtherHalf(*this, "decodeDoubleForKey:"); }
std::span<const std::byte> NSCoder::decodeBytesForKey(std::string_view) {
  throwOtherHalf(*this, "decodeBytesForKey:returnedLength:");
}

std::int32_t NSCoder::decodeInt32ForKey(std::string_view key) {
  const std::int64_t value = decodeIntegerForKey(key);
  if (std::in_range<std::int32_t>(value)) return static_cast<std::int32_t>(value);
  failWithError(
      makeCodingError(NSCoderReadCorruptError, "the integer does not fit into 32 bits (key " + quoted(key) + ')'));
  return 0;
}

float NSCoder::decodeFloatForKey(std::string_view key) {
  const double value = decodeDoubleForKey(key);
  const auto narrow = static_cast<float>(value);
  // An infinity that was encoded stays one; a finite value must not become one.
  if (!std::isinf(narrow) || std::isinf(value)) return narrow;
  failWithError(
      makeCodingError(NSCoderReadCorruptError, "the real is too large for a float (key " + quoted(key) + ')'));
  return 0;
}

NSDecodingFailurePolicy NSCoder::decodingFailurePolicy() const { return NSDecodingFailurePolicy::SetErrorAndReturn; }

void NSCoder::failWithError(NSError* error) {
  // The first error counts: later ones often follow from it.
  if (!error_)
    error_ = error ? error : makeCodingError(NSCoderReadCorruptError, "failWithError: without an error").get();
  if (decodingFailurePolicy() == NSDecodingFailurePolicy::RaiseException) {
    throw NSException(NSInvalidUnarchiveOperationException, utf8(*error_->description()));
  }
}

void NSCoder::failWithWrongClass(NSObject* object, std::string_view wanted, std::string_view key) {
  failWithError(makeCodingError(NSCoderReadCorruptError, "expected " + std::string(wanted) + ", got " +
                                                             std::string(classOf(*object).name()) + " (key " +
                                                             quoted(key) + ')'));
}

Strong<NSError> makeCodingError(std::int64_t code, std::string_view text) {
  return make<NSError>(NSCocoaErrorDomain, code, makeDictionary({{NSDebugDescriptionErrorKey, makeString(text)}}));
}

template ClassObject* buildClass<NSCoder>();

}  // namespace platform
}  // namespace havrin
