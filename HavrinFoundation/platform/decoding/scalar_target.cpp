#include <HavrinFoundation/platform/decoding/scalar_target.h>

#include <HavrinFoundation/platform/documents/digit_words.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <system_error>

namespace havrin::inline platform {
namespace {

using detail::ErrorHolder;

// A double holds every whole number up to here exactly; beyond, a whole double may stand for another number's text.
constexpr double kExactLimit = 9007199254740992.0;  // 2^53

// A number's text as a sign, an integer and a power of ten: the number is digits / 10^fraction. Empty when: it has an
// exponent, or its digits leave 64 bits.
struct Decimal {
  bool isNegative;
  bool isInteger;  // no decimal point
  std::uint64_t digits;
  std::size_t fraction;
};

// The same for an integer of 20 digits, the longest of which some fit.
std::optional<Decimal> readLongInteger(bool isNegative, std::string_view digits) {
  std::uint64_t value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (read.ec != std::errc() || read.ptr != digits.data() + digits.size()) return std::nullopt;
  return Decimal{isNegative, true, value, 0};
}

constexpr std::uint64_t kTens[] = {1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000};

std::optional<Decimal> readDecimal(std::string_view text, std::size_t readable) {
  constexpr std::size_t kSafeDigits = 19;  // always fit
  const char* at = text.data();
  const char* const end = at + text.size();
  const char* const limit = at + readable;
  const bool isNegative = *at == '-';
  if (isNegative) ++at;
  if (end - at > static_cast<std::ptrdiff_t>(kSafeDigits)) return readLongInteger(isNegative, {at, end});
  std::uint64_t digits = 0;
  const auto takeDigits = [&] {
    while (limit - at >= 8) {
      const std::uint64_t word = loadWord(at);
      const unsigned count = leadingDigits(word);
      digits = digits * kTens[count] + valueOfDigits(word, count);
      at += count;
      if (count != 8) return;
    }
    for (; at != end; ++at) {
      const auto digit = static_cast<unsigned>(*at - '0');
      if (digit > 9) break;
      digits = digits * 10 + digit;
    }
  };
  takeDigits();
  if (at == end) return Decimal{isNegative, true, digits, 0};
  if (*at != '.') return std::nullopt;
  const char* const fraction = ++at;
  takeDigits();
  if (at != end) return std::nullopt;
  return Decimal{isNegative, false, digits, static_cast<std::size_t>(end - fraction)};
}

// Where the first digit that is not zero stands, as a power of ten; the number is not zero. Saturates.
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

// The nearest double, where the digits and the power of ten are held exactly by doubles: one division then rounds once
// (Clinger, 1990). Most reals of the world are such; the others are empty.
std::optional<double> exactQuotient(const Decimal& decimal) {
  static constexpr std::array<double, 20> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                                     1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
  if (decimal.digits > static_cast<std::uint64_t>(kExactLimit)) return std::nullopt;
  const double value = static_cast<double>(decimal.digits) / kPowers[decimal.fraction];
  return decimal.isNegative ? -value : value;
}

// The number nearest to the one that `text` writes; a number too small to tell from zero reads as zero. Empty when: it
// is too large.
template <class Real>
std::optional<Real> readReal(std::string_view text) {
  Real value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  if (decimalExponent(text) > 0) return std::nullopt;
  return text.front() == '-' ? -Real{0} : Real{0};
}

template <class T>
void store(void* scalar, T value) {
  std::memcpy(scalar, &value, sizeof value);
}

template <class T>
bool storeChecked(void* scalar, bool isNegative, std::uint64_t magnitude) {
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<T>::max());
  if (magnitude > kMax + (isNegative && std::numeric_limits<T>::is_signed ? 1 : 0)) return false;
  if (isNegative && !std::numeric_limits<T>::is_signed && magnitude != 0) return false;
  store(scalar, static_cast<T>(isNegative ? 0 - magnitude : magnitude));
  return true;
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
  if (type_ == Type::int64) return storeChecked<std::int64_t>(scalar_, isNegative, magnitude);
  switch (type_) {
    case Type::int8:
      return storeChecked<std::int8_t>(scalar_, isNegative, magnitude);
    case Type::int16:
      return storeChecked<std::int16_t>(scalar_, isNegative, magnitude);
    case Type::int32:
      return storeChecked<std::int32_t>(scalar_, isNegative, magnitude);
    case Type::int64:
      return storeChecked<std::int64_t>(scalar_, isNegative, magnitude);
    case Type::uint8:
      return storeChecked<std::uint8_t>(scalar_, isNegative, magnitude);
    case Type::uint16:
      return storeChecked<std::uint16_t>(scalar_, isNegative, magnitude);
    case Type::uint32:
      return storeChecked<std::uint32_t>(scalar_, isNegative, magnitude);
    case Type::uint64:
      return storeChecked<std::uint64_t>(scalar_, isNegative, magnitude);
    // An integer becomes a real with one rounding, as its digits would.
    case Type::float32: {
      const auto value = static_cast<float>(magnitude);
      return store(scalar_, isNegative ? -value : value), true;
    }
    case Type::float64: {
      const auto value = static_cast<double>(magnitude);
      return store(scalar_, isNegative ? -value : value), true;
    }
    default:
      return false;
  }
}

void ScalarTarget::putInteger(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  if (!storeInteger(value < 0, value < 0 ? 0 - bits : bits)) refuseNumber(std::to_string(value));
}

void ScalarTarget::putInteger(std::uint64_t value) {
  if (!storeInteger(false, value)) refuseNumber(std::to_string(value));
}

// Whether the target, a number, could hold `value`.
bool ScalarTarget::storeReal(double value) {
  if (type_ == Type::float64) return store(scalar_, value), true;
  if (type_ == Type::float32) {
    const auto narrow = static_cast<float>(value);
    if (std::isinf(narrow) && !std::isinf(value)) return false;
    return store(scalar_, narrow), true;
  }
  // A number that is not a number fails the first comparison.
  if (!(std::fabs(value) < kExactLimit) || std::trunc(value) != value) return false;
  return storeInteger(value < 0, static_cast<std::uint64_t>(std::fabs(value)));
}

void ScalarTarget::putReal(double value) {
  if ((isInteger() || isReal()) && storeReal(value)) return;
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  refuseNumber(std::string_view(text, static_cast<std::size_t>(end - text)));
}

void ScalarTarget::putNumberText(std::string_view text, std::size_t readable) {
  if (!isInteger() && !isReal()) return refuseNumber(text);
  // Most numbers are integers of a few digits.
  const std::size_t sign = text.front() == '-' ? 1 : 0;
  if (readable >= sign + 8) {
    const std::uint64_t word = loadWord(text.data() + sign);
    const unsigned count = leadingDigits(word);
    if (sign + count == text.size()) {
      const std::uint64_t value = valueOfDigits(word, count);
      return storeInteger(sign != 0, value) ? void() : refuseNumber(text);
    }
  }
  const std::optional<Decimal> decimal = readDecimal(text, std::max(text.size(), readable));
  if (!decimal || (!decimal->isInteger && type_ == Type::float32)) return putRealText(text);
  if (decimal->isInteger) return storeInteger(decimal->isNegative, decimal->digits) ? void() : refuseNumber(text);
  const std::optional<double> value = exactQuotient(*decimal);
  if (!value) return putRealText(text);
  if (!storeReal(*value)) refuseNumber(text);
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

// A number that does not fit a number, or a number where none is wanted.
void ScalarTarget::refuseNumber(std::string_view number) {
  if (!isInteger() && !isReal()) return refuse(Found::number, number);
  if (detail_ == ErrorDetail::none) return fail(ErrorHolder::undescribed());
  fail(DecodingError::unusable(expected(), Found::number, number));
}

}  // namespace havrin::inline platform
