// Why a value could not be decoded, as an exception and as a value.
//
//   typeMismatch at stations[12].listeners: expected a 64-bit integer, found the string "many"
//   keyNotFound at stations[3]: no value for the key "name"
//   valueNotFound at stations[4].name: expected a string, found null
//   dataCorrupted at stations[7].plays: expected a 64-bit integer, found the number 99999999999999999999
//
// Decoding itself throws nothing: each step gives a `Decoded<Type>`, which holds a value or the error. Where a caller
// asked for exceptions (`decode`, as against `tryDecode`), the error is thrown as a `DecodingError`.
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

/// What stands in decoded data where a value was looked for. `nothing` is the end of an array, or an empty document.
enum class Found : std::uint8_t { nothing, null, boolean, number, string, array, object, date, data, uid };

template <class Type>
class Decoded;

/// Whether an error is described. Who drops errors unseen asks for none, and pays nothing for them.
enum class ErrorDetail : bool { none, full };

}  // namespace platform

namespace detail {

struct DecodingErrorRecord;

/// Owns a share of an error's record, or nothing. One pointer wide, so that carrying "no error" costs nothing.
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

  /// An error that says nothing, for those who drop it unseen: it has no record.
  [[nodiscard]] static ErrorHolder undescribed() { return ErrorHolder(noRecord()); }

  explicit operator bool() const { return record_ != nullptr; }
  [[nodiscard]] bool isDescribed() const { return reinterpret_cast<std::uintptr_t>(record_) > 1; }
  [[nodiscard]] const DecodingErrorRecord& operator*() const;

  /// Puts a key in front of the error's path, unless the path is complete already.
  void prepend(std::string_view name) {
    if (isDescribed()) prependKey(CodingKey(name));
  }
  void prepend(std::size_t index) {
    if (isDescribed()) prependKey(CodingKey(index));
  }
  /// Puts `path` in front of the error's path and marks it complete. Does nothing to a complete path.
  void complete(const CodingPath& path);
  /// Throws the error; an exception of the caller's own type leaves as it came.
  [[noreturn]] void raise() const;

  /// The exception that is being handled, as an error. An exception that is no DecodingError is kept inside; lack of
  /// memory and a thread's cancellation are no errors of decoding and are thrown on.
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

/// An error of decoding: its kind, the path of the value it concerns, and what was found there. Cheap to copy.
/// Threads: an error may be read from several threads at a time.
class HAVRIN_EXPORT DecodingError : public std::exception {
 public:
  enum class Kind : std::uint8_t {
    typeMismatch,   ///< a value of another type stands there
    valueNotFound,  ///< null stands there, or the array has ended
    keyNotFound,    ///< the object has no such key
    dataCorrupted,  ///< the type is right and the value unusable, or the whole document is malformed
  };

  /// The error a decoder or a type of the caller's reports. Its path begins where it is reported; every container it
  /// passes on its way out puts its own key in front. `excerpt` is the beginning of the value's text.
  [[nodiscard]] static DecodingError typeMismatch(std::string_view expected, Found found,
                                                  std::string_view excerpt = {});
  [[nodiscard]] static DecodingError valueNotFound(std::string_view expected, Found found = Found::null);
  [[nodiscard]] static DecodingError keyNotFound(std::string_view key);
  [[nodiscard]] static DecodingError dataCorrupted(std::string_view why);
  [[nodiscard]] static DecodingError unusable(std::string_view expected, Found found, std::string_view excerpt);

  explicit DecodingError(detail::ErrorHolder holder) : holder_(std::move(holder)) {}

  [[nodiscard]] Kind kind() const;
  /// Where the value stands, from the outermost value on once the error has reached the caller.
  [[nodiscard]] CodingPath path() const;
  /// What was wanted: "a 64-bit integer", "an array". Empty for a missing key and for a reason in words.
  [[nodiscard]] std::string expected() const;
  /// What stood there: "the string \"many\"", "null", "an object", "the end of the array".
  [[nodiscard]] std::string found() const;
  /// The key that is missing, or the reason in words that came with the error.
  [[nodiscard]] std::string detail() const;
  /// The exception that a type of the caller's threw, when it was no DecodingError. Null when there is none.
  [[nodiscard]] std::exception_ptr underlyingError() const;
  /// Everything in one line, as at the head of this file.
  [[nodiscard]] std::string description() const;
  /// `description()`, valid as long as this error or a copy of it.
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

/// A value, or the error that stands in its place. Used like an optional: test it, then dereference it.
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

  /// The value. Only after a test that it is there.
  [[nodiscard]] Type& operator*() & { return value_; }
  [[nodiscard]] const Type& operator*() const& { return value_; }
  [[nodiscard]] Type&& operator*() && { return std::move(value_); }
  [[nodiscard]] Type* operator->() { return &value_; }
  [[nodiscard]] const Type* operator->() const { return &value_; }

  /// The error. Only after a test that the value is not there.
  [[nodiscard]] DecodingError error() const { return DecodingError(failure_); }
  [[nodiscard]] detail::ErrorHolder& failure() { return failure_; }

  /// Drops the value and holds the error instead. Only while the value is there.
  void fail(detail::ErrorHolder failure) noexcept {
    std::destroy_at(&value_);
    std::construct_at(&failure_, std::move(failure));
    hasValue_ = false;
  }

  /// The value.
  /// Throws: the DecodingError, or the exception that a type of the caller's threw, as it came.
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
