// SPDX-License-Identifier: Apache-2.0
// Decoding errors, used both as values and as exceptions.
//
//   const auto error = DecodingError::typeMismatch("a 64-bit integer", Found::string, "many");
//   error.kind() == DecodingError::Kind::typeMismatch          true
//   error.found()                                              "the string \"many\""
//   DecodingError::keyNotFound("name").description()
//           "keyNotFound at the top level: no value for the key \"name\""
//   const Decoded<int> outcome = error;
//   outcome ? *outcome : -1                                    -1
//
// Descriptions name the kind, the path and the reason:
//
// - typeMismatch at stations[12].listeners: expected a 64-bit integer, found the string "many"
// - keyNotFound at stations[3]: no value for the key "name"
// - valueNotFound at stations[4].name: expected a string, found null
// - dataCorrupted at stations[7].plays: expected a 64-bit integer, found the number 99999999999999999999
//
// Decoding reports errors as values: each step returns a `Decoded<Type>`, which holds either a value or an error. The
// throwing functions (`decode` beside `tryDecode`) throw the same error as a `DecodingError`.
#pragma once

#include <HavrinFoundation/platform/documents/coding_path.h>
#include <HavrinFoundation/platform/export.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

/// The kind of value that was found in the data. `nothing` is the end of an array, or an empty document.
enum class Found : std::uint8_t { nothing, null, boolean, number, string, array, object, date, data, uid };

template <class Type>
class Decoded;

/// Whether an error carries a description. Callers that discard errors pass `none` and pay nothing for them.
enum class ErrorDetail : bool { none, full };

}  // namespace platform

namespace detail {

struct DecodingErrorRecord;

/// A shared reference to the record of an error, or null. One pointer wide, so that "no error" is free to pass around.
class HAVRIN_EXPORT ErrorHolder {
 public:
  ErrorHolder() = default;
  explicit ErrorHolder(DecodingErrorRecord* record) : record_(record) {}
  ErrorHolder(ErrorHolder&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  ErrorHolder(const ErrorHolder& other) noexcept : record_(other.record_) {
    if (isDescribed()) retain();
  }
  ErrorHolder& operator=(ErrorHolder other) noexcept {
    std::swap(record_, other.record_);
    return *this;
  }
  ~ErrorHolder() {
    if (isDescribed()) release();
  }

  /// An error without a record, for callers that discard it (ErrorDetail::none).
  [[nodiscard]] static ErrorHolder undescribed() { return ErrorHolder(noRecord()); }

  explicit operator bool() const { return record_ != nullptr; }
  [[nodiscard]] bool isDescribed() const { return reinterpret_cast<std::uintptr_t>(record_) > 1; }
  [[nodiscard]] const DecodingErrorRecord& operator*() const;

  /// Prepends a key to the path of the error, unless the path is complete.
  void prepend(std::string_view name) {
    if (isDescribed()) prependKey(CodingKey(name));
  }
  void prepend(std::size_t index) {
    if (isDescribed()) prependKey(CodingKey(index));
  }
  /// Prepends `path` to the path of the error and marks it complete. A complete path is left alone.
  void complete(const CodingPath& path);
  /// Throws the error. If it wraps an exception of another type, that exception is rethrown.
  [[noreturn]] void raise() const;

  /// The exception that is being handled, as an error. An exception that is not a DecodingError is wrapped; bad_alloc
  /// and the cancellation of the thread are not decoding errors and are rethrown.
  [[nodiscard]] static ErrorHolder fromCurrentException();

 private:
  static DecodingErrorRecord* noRecord() { return reinterpret_cast<DecodingErrorRecord*>(std::uintptr_t{1}); }
  void prependKey(CodingKey key);
  void retain() const noexcept;
  void release() noexcept;
  DecodingErrorRecord& own();

  DecodingErrorRecord* record_ = nullptr;
};

}  // namespace detail

inline namespace platform {

/// A decoding error: its kind, the path of the value it concerns, and the value found there.
/// Cost: copying shares one record and does not allocate.
/// Threads: one error, and copies of it, may be read by several threads at a time.
class HAVRIN_EXPORT DecodingError : public std::exception {
 public:
  enum class Kind : std::uint8_t {
    typeMismatch,   ///< the value has another type
    valueNotFound,  ///< the value is null, or the array has ended
    keyNotFound,    ///< the object does not have the key
    dataCorrupted,  ///< the type is right but the value is unusable, or the document is malformed
  };

  /// An error to return from a decoder or from `fromDecoder` of the caller's type. Its path starts empty; each
  /// container that passes it outward prepends its key. `expected` is a noun phrase such as "a 64-bit integer";
  /// `excerpt` is the text of the value, of which the first 40 bytes are kept.
  [[nodiscard]] static DecodingError typeMismatch(std::string_view expected, Found found,
                                                  std::string_view excerpt = {});
  [[nodiscard]] static DecodingError valueNotFound(std::string_view expected, Found found = Found::null);
  [[nodiscard]] static DecodingError keyNotFound(std::string_view key);
  [[nodiscard]] static DecodingError dataCorrupted(std::string_view why);
  [[nodiscard]] static DecodingError unusable(std::string_view expected, Found found, std::string_view excerpt);

  explicit DecodingError(detail::ErrorHolder holder) : holder_(std::move(holder)) {}

  [[nodiscard]] Kind kind() const;
  /// The path of the value; from the top level once the error has reached the caller.
  [[nodiscard]] CodingPath path() const;
  /// The expected value: "a 64-bit integer", "an array". Empty for keyNotFound and for errors that have a detail text.
  [[nodiscard]] std::string expected() const;
  /// The value found: "the string \"many\"", "null", "an object", "the end of the array". Empty where expected() is.
  [[nodiscard]] std::string found() const;
  /// The missing key of keyNotFound, or the text passed to dataCorrupted. Empty for other errors.
  [[nodiscard]] std::string detail() const;
  /// The exception thrown by the caller's type, if it was not a DecodingError; null otherwise.
  [[nodiscard]] std::exception_ptr underlyingError() const;
  /// Kind, path and reason in one line, as in the opening comment.
  [[nodiscard]] std::string description() const;
  /// `description()`; valid as long as this error or a copy of it. Without memory for the text, the name of the kind.
  [[nodiscard]] const char* what() const noexcept override;

  [[nodiscard]] const detail::ErrorHolder& holder() const& { return holder_; }
  [[nodiscard]] detail::ErrorHolder holder() && { return std::move(holder_); }

 private:
  detail::ErrorHolder holder_;
};

}  // namespace platform

namespace detail {
template <class Type>
inline constexpr bool kIsOutcome = std::same_as<Type, DecodingError> || std::same_as<Type, ErrorHolder>;
template <class Type>
inline constexpr bool kIsOutcome<Decoded<Type>> = true;
}  // namespace detail

inline namespace platform {

/// A value or an error. Used like an optional: test it, then dereference it.
template <class Type>
class [[nodiscard]] Decoded {
 public:
  using value_type = Type;

  template <class Other = Type>
  requires(std::convertible_to<Other&&, Type> && !detail::kIsOutcome<std::remove_cvref_t<Other>>) Decoded(Other&& value)
      : value_(std::forward<Other>(value)), hasValue_(true) {}
  template <class... Arguments>
  explicit Decoded(std::in_place_t, Arguments&&... arguments)
      : value_(std::forward<Arguments>(arguments)...), hasValue_(true) {}
  Decoded(DecodingError error) : failure_(std::move(error).holder()), hasValue_(false) {}
  Decoded(detail::ErrorHolder failure) : failure_(std::move(failure)), hasValue_(false) {}
  Decoded(Decoded&& other) noexcept(std::is_nothrow_move_constructible_v<Type>) : hasValue_(other.hasValue_) {
    if (hasValue_) {
      std::construct_at(&value_, std::move(other.value_));
    } else {
      std::construct_at(&failure_, std::move(other.failure_));
    }
  }
  Decoded& operator=(Decoded&&) = delete;
  ~Decoded() { hasValue_ ? std::destroy_at(&value_) : std::destroy_at(&failure_); }

  [[nodiscard]] explicit operator bool() const { return hasValue_; }

  /// The value. Requires that there is one.
  [[nodiscard]] Type& operator*() & { return value_; }
  [[nodiscard]] const Type& operator*() const& { return value_; }
  [[nodiscard]] Type&& operator*() && { return std::move(value_); }
  [[nodiscard]] Type* operator->() { return &value_; }
  [[nodiscard]] const Type* operator->() const { return &value_; }

  /// The error. Requires that there is no value.
  [[nodiscard]] DecodingError error() const { return DecodingError(failure_); }
  [[nodiscard]] detail::ErrorHolder& failure() { return failure_; }

  /// Replaces the value by an error. Requires that there is a value.
  void fail(detail::ErrorHolder failure) noexcept {
    std::destroy_at(&value_);
    std::construct_at(&failure_, std::move(failure));
    hasValue_ = false;
  }

  /// The value.
  /// Throws: the DecodingError, or the exception that it wraps (underlyingError).
  [[nodiscard]] Type value() && {
    if (!hasValue_) failure_.raise();
    return std::move(value_);
  }

 private:
  union {
    Type value_;
    detail::ErrorHolder failure_;
  };
  bool hasValue_;
};

/// Success, or an error.
template <>
class [[nodiscard]] Decoded<void> {
 public:
  using value_type = void;

  Decoded() = default;
  Decoded(DecodingError error) : failure_(std::move(error).holder()) {}
  Decoded(detail::ErrorHolder failure) : failure_(std::move(failure)) {}

  [[nodiscard]] explicit operator bool() const { return !failure_; }
  [[nodiscard]] DecodingError error() const { return DecodingError(failure_); }
  [[nodiscard]] detail::ErrorHolder& failure() { return failure_; }

  /// Throws: the error, if there is one.
  void value() && {
    if (failure_) failure_.raise();
  }

 private:
  detail::ErrorHolder failure_;
};

}  // namespace platform
}  // namespace havrin
