// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/decoding/scalar_target.h>

#include <HavrinFoundation/platform/base/real_text.h>
#include <HavrinFoundation/platform/documents/digit_words.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

using detail::ErrorHolder;

// Doubles represent every integer up to this limit; beyond it, a whole double may be the rounding of another number.
constexpr double kExactLimit = 9007199254740992.0;  // 2^53

constexpr std::uint64_t kTens[] = {1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000};

// Powers of ten that are exact. If the digits are exact as a double too, one division rounds once (Clinger, 1990).
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                              1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};

// Reads decimal digits, eight at a time while eight bytes are readable.
struct Digits {
  const char* at;
  const char* end;
  const char* limit;
  std::uint64_t value = 0;

  void take() {
    while (limit - at >= 8) {
      const std::uint64_t word = loadWord(at);
      const unsigned count = leadingDigits(word);
      value = value * kTens[count] + valueOfDigits(word, count);
      at += count;
      if (count != 8) return;
    }
    for (; at != end && *at >= '0' && *at <= '9'; ++at) value = value * 10 + static_cast<std::uint64_t>(*at - '0');
  }
};

// The decimal exponent of the first non-zero digit, saturated. Requires a number that is not zero.
long decimalExponent(std::string_view text) {
  const std::size_t e = text.find_first_of("eE");
  const std::string_view digits = text.substr(0, e);
  const std::size_t first = digits.find_first_of("123456789");
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const long position = static_cast<long>(point) - static_cast<long>(first);
  if (e == std::string_view::npos) return position;
  std::string_view exponent = text.substr(e + 1);
  if (exponent.front() == '+') exponent.remove_prefix(1);
  long power = 0;
  const auto read = std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
  constexpr long kFar = std::numeric_limits<long>::max() / 4;
  if (read.ec != std::errc()) power = exponent.front() == '-' ? -kFar : kFar;
  return position + std::min(std::max(power, -kFar), kFar);
}

// The Real nearest to the number in `text`; underflow gives zero. Empty when: the number overflows.
template <class Real>
std::optional<Real> readReal(std::string_view text) {
  Real value = 0;
  const auto read = detail::realFromChars(text.data(), text.data() + text.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  if (decimalExponent(text) > 0) return std::nullopt;
  return text.front() == '-' ? -Real{0} : Real{0};
}

template <class T>
void store(void* scalar, T value) {
  std::memcpy(scalar, &value, sizeof value);
}

}  // namespace

std::string_view ScalarTarget::expected() const {
  static constexpr std::array<std::string_view, 14> kNames = {"a boolean",
                                                              "an 8-bit integer",
                                                              "a 16-bit integer",
                                                              "a 32-bit integer",
                                                              "a 64-bit integer",
                                                              "an unsigned 8-bit integer",
                                                              "an unsigned 16-bit integer",
                                                              "an unsigned 32-bit integer",
                                                              "an unsigned 64-bit integer",
                                                              "a number",
                                                              "a number",
                                                              "a string",
                                                              "an object",
                                                              "an array"};
  return kNames[static_cast<std::size_t>(type_)];
}

void ScalarTarget::putNull() {
  if (isNull_ != nullptr) {
    *isNull_ = true;
  } else if (detail_ == ErrorDetail::none) {
    fail(ErrorHolder::undescribed());
  } else {
    fail(DecodingError::valueNotFound(expected()));
  }
}

bool ScalarTarget::storeInteger(bool isNegative, std::uint64_t magnitude) {
  const std::uint64_t value = isNegative ? 0 - magnitude : magnitude;
  if (type_ == Type::int64 && std::in_range<std::int64_t>(magnitude)) return store(scalar_, value), true;  // most
  // Converted from the integer directly, so that it is rounded once.
  if (type_ == Type::float32) {
    const auto real = static_cast<float>(magnitude);
    return store(scalar_, isNegative ? -real : real), true;
  }
  if (type_ == Type::float64) {
    const auto real = static_cast<double>(magnitude);
    return store(scalar_, isNegative ? -real : real), true;
  }
  if (!isInteger()) return false;
  const bool isSigned = type_ < Type::uint8;
  const int width = static_cast<int>(type_) - static_cast<int>(isSigned ? Type::int8 : Type::uint8);
  const std::uint64_t largest = ~std::uint64_t{0} >> (64 - (8 << width) + (isSigned ? 1 : 0));
  if (magnitude > largest + (isNegative && isSigned ? 1 : 0)) return false;
  if (isNegative && !isSigned && magnitude != 0) return false;
  switch (width) {
    case 0:
      return store(scalar_, static_cast<std::uint8_t>(value)), true;
    case 1:
      return store(scalar_, static_cast<std::uint16_t>(value)), true;
    case 2:
      return store(scalar_, static_cast<std::uint32_t>(value)), true;
    default:
      return store(scalar_, value), true;
  }
}

void ScalarTarget::putInteger(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  if (!storeInteger(value < 0, value < 0 ? 0 - bits : bits)) refuseNumber(std::to_string(value));
}

void ScalarTarget::putInteger(std::uint64_t value) {
  if (!storeInteger(false, value)) refuseNumber(std::to_string(value));
}

// Stores `value` in a numeric target. Result: false if it does not fit.
bool ScalarTarget::storeReal(double value) {
  if (type_ == Type::float64) return store(scalar_, value), true;
  if (type_ == Type::float32) {
    const auto narrow = static_cast<float>(value);
    if (std::isinf(narrow) && !std::isinf(value)) return false;
    return store(scalar_, narrow), true;
  }
  // NaN fails the first comparison.
  if (!(std::fabs(value) < kExactLimit) || std::trunc(value) != value) return false;
  return storeInteger(value < 0, static_cast<std::uint64_t>(std::fabs(value)));
}

void ScalarTarget::putReal(double value) {
  if ((isInteger() || isReal()) && storeReal(value)) return;
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  refuseNumber(std::string_view(text, static_cast<std::size_t>(end - text)));
}

// A full word of digits means that the number may go on.
bool ScalarTarget::putShortNumber(const char* number, std::size_t readable) {
  if (readable < kShortNumber) return false;
  const bool isNegative = *number == '-';
  if (isNegative) ++number;
  const std::uint64_t whole = loadWord(number);
  const unsigned wholeDigits = leadingDigits(whole);
  if (wholeDigits == 0 || wholeDigits == sizeof whole) return false;
  std::uint64_t digits = valueOfDigits(whole, wholeDigits);
  const auto hasExponent = [](char behind) { return behind == 'e' || behind == 'E'; };
  number += wholeDigits;
  if (*number != '.') return !hasExponent(*number) && storeInteger(isNegative, digits);
  const std::uint64_t fraction = loadWord(++number);
  const unsigned fractionDigits = leadingDigits(fraction);
  if (fractionDigits == sizeof fraction || hasExponent(number[fractionDigits]) || type_ == Type::float32) return false;
  digits = digits * kTens[fractionDigits] + valueOfDigits(fraction, fractionDigits);
  const double value = static_cast<double>(digits) / kPowers[fractionDigits];
  return storeReal(isNegative ? -value : value);
}

void ScalarTarget::putNumberText(std::string_view text, std::size_t readable) {
  constexpr std::ptrdiff_t kSafeDigits = 19;  // never overflow 64 bits
  if (!isInteger() && !isReal()) return refuseNumber(text);
  const bool isNegative = text.front() == '-';
  const char* const begin = text.data();
  Digits digits{begin + (isNegative ? 1 : 0), begin + text.size(), begin + std::max(text.size(), readable)};
  if (digits.end - digits.at > kSafeDigits) return putLongNumberText(isNegative, text);
  digits.take();
  if (digits.at == digits.end) return storeInteger(isNegative, digits.value) ? void() : refuseNumber(text);
  if (*digits.at != '.' || type_ == Type::float32) return putRealText(text);
  const char* const fraction = ++digits.at;
  digits.take();
  if (digits.at != digits.end || digits.value > static_cast<std::uint64_t>(kExactLimit)) return putRealText(text);
  const double value = static_cast<double>(digits.value) / kPowers[digits.end - fraction];
  if (!storeReal(isNegative ? -value : value)) refuseNumber(text);
}

// An integer of 20 digits may fit.
void ScalarTarget::putLongNumberText(bool isNegative, std::string_view text) {
  const char* const end = text.data() + text.size();
  std::uint64_t value = 0;
  const auto read = std::from_chars(text.data() + (isNegative ? 1 : 0), end, value);
  if (read.ec != std::errc() || read.ptr != end) return putRealText(text);
  if (!storeInteger(isNegative, value)) refuseNumber(text);
}

// A number with a fraction, an exponent or more than 20 digits.
void ScalarTarget::putRealText(std::string_view text) {
  if (type_ == Type::float32) {
    const std::optional<float> value = readReal<float>(text);
    return value ? store(scalar_, *value) : refuseNumber(text);
  }
  const std::optional<double> value = readReal<double>(text);
  if (!value || !storeReal(*value)) refuseNumber(text);
}

void ScalarTarget::refuse(Found found, std::string_view excerpt) {
  if (detail_ == ErrorDetail::none) return fail(ErrorHolder::undescribed());
  fail(DecodingError::typeMismatch(expected(), found, excerpt));
}

// The error for a number that is out of range, or that was found in place of another type.
void ScalarTarget::refuseNumber(std::string_view number) {
  if (!isInteger() && !isReal()) return refuse(Found::number, number);
  if (detail_ == ErrorDetail::none) return fail(ErrorHolder::undescribed());
  fail(DecodingError::unusable(expected(), Found::number, number));
}

}  // namespace platform
}  // namespace havrin
