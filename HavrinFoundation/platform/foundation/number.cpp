// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/number.h>

#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace havrin {
inline namespace platform {

namespace {

// The first value beyond std::int64_t. The largest integers of 64 bits are not doubles, so bounds are compared with it.
constexpr double kTwo63 = 9223372036854775808.0;

template <class Integer>
Integer truncated(double value, double lowest, double beyond) {
  if (std::isnan(value)) return 0;
  if (value < lowest) return std::numeric_limits<Integer>::min();
  if (value >= beyond) return std::numeric_limits<Integer>::max();
  return static_cast<Integer>(value);
}

// A number as sign and magnitude when it is whole and fits, so that all types meet in one form: compared as doubles,
// 2^53 + 1 would equal 2^53.
struct Whole {
  bool exact;
  bool negative;
  std::uint64_t magnitude;
  friend bool operator==(const Whole&, const Whole&) = default;
};

Whole wholeOf(const NSNumber& number) {
  if (number.kind() == NSNumber::Kind::real) {
    const double value = number.doubleValue();
    if (!(std::trunc(value) == value) || !(std::fabs(value) < 2 * kTwo63)) return {false, false, 0};
    return {true, value < 0, static_cast<std::uint64_t>(std::fabs(value))};
  }
  if (number.kind() == NSNumber::Kind::unsignedInteger) return {true, false, number.unsignedIntegerValue()};
  const std::int64_t value = number.integerValue();
  const auto bits = static_cast<std::uint64_t>(value);
  return {true, value < 0, value < 0 ? 0 - bits : bits};
}

NSNumber& numberArgument(NSObject* object) { return checkedReference<NSNumber>(object); }

}  // namespace

std::int64_t NSNumber::integerValue() const {
  return kind_ == Kind::real ? truncated<std::int64_t>(real_, -kTwo63, kTwo63) : integer_;
}

std::uint64_t NSNumber::unsignedIntegerValue() const {
  if (kind_ != Kind::real) return static_cast<std::uint64_t>(integer_);
  if (real_ < 0) return static_cast<std::uint64_t>(integerValue());  // wraps as a negative integer does
  return truncated<std::uint64_t>(real_, 0, 2 * kTwo63);
}

double NSNumber::doubleValue() const {
  switch (kind_) {
    case Kind::real:
      return real_;
    case Kind::unsignedInteger:
      return static_cast<double>(static_cast<std::uint64_t>(integer_));
    default:
      return static_cast<double>(integer_);
  }
}

bool NSNumber::boolValue() const { return kind_ == Kind::real ? real_ != 0 : integer_ != 0; }

Strong<NSString> NSNumber::stringValue() const {
  char text[40];
  std::to_chars_result end{};
  switch (kind_) {
    case Kind::real:
      end = std::to_chars(text, text + sizeof text, real_);
      break;
    case Kind::unsignedInteger:
      end = std::to_chars(text, text + sizeof text, static_cast<std::uint64_t>(integer_));
      break;
    default:
      end = std::to_chars(text, text + sizeof text, integer_);
  }
  return makeString(std::string_view(text, static_cast<std::size_t>(end.ptr - text)));
}

bool NSNumber::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSNumber* number = cast<NSNumber>(other);
  if (!number) return false;
  const Whole mine = wholeOf(*this);
  const Whole theirs = wholeOf(*number);
  if (mine.exact || theirs.exact) return mine == theirs;
  const double a = doubleValue();
  const double b = number->doubleValue();
  return a == b || (std::isnan(a) && std::isnan(b));  // a NaN is found again in a set
}

// Numbers that are equal hash alike, whatever their types; so do all NaNs.
std::uint64_t NSNumber::hash() const {
  const Whole whole = wholeOf(*this);
  if (whole.exact) return (whole.magnitude * 2 + whole.negative) * 0x9E37'79B9'7F4A'7C15;
  const double value = doubleValue();
  if (std::isnan(value)) return 0x7FF8;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits * 0x9E37'79B9'7F4A'7C15;
}

Strong<NSString> NSNumber::description() const { return stringValue(); }

Strong<NSObject> NSNumber::copy() const { return Strong<NSObject>(const_cast<NSNumber*>(this)); }

NSNull* NSNull::null() {
  static NSNull* const kNull = make<NSNull>().detach();
  return kNull;
}

Strong<NSString> NSNull::description() const { return makeString("<null>"); }

Strong<NSObject> NSNull::copy() const { return Strong<NSObject>(const_cast<NSNull*>(this)); }

Strong<NSObject> boxBoolean(bool value) { return makeNumber(value); }
Strong<NSObject> boxInteger(std::int64_t value) { return makeNumber(value); }
Strong<NSObject> boxUnsigned(std::uint64_t value) { return makeNumber(value); }
Strong<NSObject> boxReal(double value) { return makeNumber(value); }
bool unboxBoolean(NSObject* object) { return numberArgument(object).boolValue(); }
std::int64_t unboxInteger(NSObject* object) { return numberArgument(object).integerValue(); }
std::uint64_t unboxUnsigned(NSObject* object) { return numberArgument(object).unsignedIntegerValue(); }
double unboxReal(NSObject* object) { return numberArgument(object).doubleValue(); }

template ClassObject* buildClass<NSNumber>();
template ClassObject* buildClass<NSNull>();

}  // namespace platform
}  // namespace havrin
