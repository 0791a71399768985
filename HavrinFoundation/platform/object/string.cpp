// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/object/string.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/unicode/character_set.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace havrin {
inline namespace platform {

namespace {

// Reads a string unit by unit, through the virtual functions where a subclass may have its own.
template <class Body>
auto withUnits(const NSString& string, Body body) {
  if (!string.isPlain()) {
    std::u16string units;
    const std::uint64_t length = string.length();
    units.reserve(length);
    for (std::uint64_t i = 0; i < length; ++i) units += string.characterAtIndex(i);
    return body(std::u16string_view(units));
  }
  return string.isWide() ? body(string.wide()) : body(string.narrow());
}

bool isNumberSpace(auto unit) { return unit == ' ' || (unit >= '\t' && unit <= '\r'); }

// The position after white space and one sign.
template <class View>
std::size_t skipSign(View units, bool& negative) noexcept {
  std::size_t i = 0;
  while (i < units.size() && isNumberSpace(units[i])) ++i;
  negative = false;
  if (i < units.size() && (units[i] == '+' || units[i] == '-')) negative = units[i++] == '-';
  return i;
}

template <class View>
std::int64_t readInteger(View units) {
  bool negative = false;
  std::size_t i = skipSign(units, negative);
  constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
  std::int64_t value = 0;  // counted downward, where there is room for one more
  for (; i < units.size() && units[i] >= '0' && units[i] <= '9'; ++i) {
    if (__builtin_mul_overflow(value, std::int64_t{10}, &value) ||
        __builtin_sub_overflow(value, static_cast<std::int64_t>(units[i] - '0'), &value)) {
      return negative ? kLowest : std::numeric_limits<std::int64_t>::max();
    }
  }
  if (negative) return value;
  return value == kLowest ? std::numeric_limits<std::int64_t>::max() : -value;
}

template <class View>
bool readBool(View units) noexcept {
  bool negative = false;
  std::size_t i = skipSign(units, negative);
  while (i < units.size() && units[i] == '0') ++i;
  if (i == units.size()) return false;
  const auto c = units[i];
  return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
}

// FNV-1a over units, so that narrow and wide storage of one text agree.
template <class View>
std::uint64_t hashUnits(View units) {
  std::uint64_t hash = 0xcbf2'9ce4'8422'2325;
  for (const auto unit : units) {
    hash = (hash ^ static_cast<char16_t>(unit)) * 0x0000'0100'0000'01b3;
  }
  return hash;
}

template <class A, class B>
bool sameUnits(A a, B b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (static_cast<char16_t>(static_cast<std::make_unsigned_t<typename A::value_type>>(a[i])) !=
        static_cast<char16_t>(static_cast<std::make_unsigned_t<typename B::value_type>>(b[i]))) {
      return false;
    }
  }
  return true;
}
bool sameUnits(std::string_view a, std::string_view b) { return a == b; }
bool sameUnits(std::u16string_view a, std::u16string_view b) { return a == b; }

std::string narrowed(std::u16string_view units) { return std::string(units.begin(), units.end()); }

}  // namespace

NSString::NSString(std::string_view text) {
  if (isAscii(text)) {
    own(text);
  } else {
    own(platform::utf16(text));
  }
}

NSString::NSString(std::u16string_view units) {
  if (isAscii(units)) {
    own(narrowed(units));
  } else {
    own(units);
  }
}

template <class Unit>
NSString::NSString(Behind, std::basic_string_view<Unit> units) noexcept
    : units_(this + 1), length_(units.size()), wide_(sizeof(Unit) > 1) {
  std::memcpy(static_cast<void*>(this + 1), units.data(), units.size() * sizeof(Unit));
}

template <class Unit>
Strong<NSString> NSString::withUnitsBehind(std::basic_string_view<Unit> units) {
  void* memory = allocateUnborn(sizeof(NSString) + units.size() * sizeof(Unit));
  return Strong<NSString>::adopt(::new (memory) NSString(Behind{}, units));
}

void NSString::own(std::string_view narrow) {
  if (narrow.empty()) return;
  void* memory = std::malloc(narrow.size());
  if (!memory) throw std::bad_alloc();
  std::memcpy(memory, narrow.data(), narrow.size());
  borrow(std::string_view(static_cast<const char*>(memory), narrow.size()));
  owned_ = true;
}

void NSString::own(std::u16string_view wide) {
  void* memory = std::malloc(wide.size() * sizeof(char16_t));
  if (!memory) throw std::bad_alloc();
  std::memcpy(memory, wide.data(), wide.size() * sizeof(char16_t));
  borrow(std::u16string_view(static_cast<const char16_t*>(memory), wide.size()));
  owned_ = true;
}

void NSString::freeUnits() noexcept { std::free(const_cast<void*>(units_)); }

void NSString::borrow(std::string_view narrow) noexcept {
  units_ = narrow.data();
  length_ = narrow.size();
  wide_ = false;
}

void NSString::borrow(std::u16string_view wide) noexcept {
  units_ = wide.data();
  length_ = wide.size();
  wide_ = true;
}

bool NSString::isPlain() const {
  const ClassObject* cls = dispatchClass(this)->shown();
  return cls == classObject<NSString>() || cls == classObject<NSMutableString>();
}

char16_t NSString::characterAtIndex(std::uint64_t index) const {
  if (index >= length_) {
    throw NSException(NSRangeException,
                      methodReason(*this, "characterAtIndex:",
                                   "index " + std::to_string(index) + " beyond length " + std::to_string(length_)));
  }
  return wide_ ? wide()[index] : static_cast<unsigned char>(narrow()[index]);
}

std::int64_t NSString::integerValue() const {
  return withUnits(*this, [](auto units) { return readInteger(units); });
}

bool NSString::boolValue() const {
  return withUnits(*this, [](auto units) { return readBool(units); });
}

NSRange NSString::rangeOfCharacterFromSet(const CharacterSet& set) const {
  const auto range = withUnits(*this, [&set](auto units) { return rangeOfCharacter(units, set); });
  return range ? NSRange{range->lowerBound, range->upperBound - range->lowerBound} : NSRange{kNotFound, 0};
}

bool NSString::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSString* string = cast<NSString>(other);
  if (!string || length() != string->length()) return false;
  return withUnits(*this,
                   [&](auto mine) { return withUnits(*string, [&](auto theirs) { return sameUnits(mine, theirs); }); });
}

std::uint64_t NSString::hash() const {
  return withUnits(*this, [](auto units) { return hashUnits(units); });
}

Strong<NSString> NSString::description() const { return Strong<NSString>(const_cast<NSString*>(this)); }

Strong<NSObject> NSString::copy() const { return Strong<NSObject>(const_cast<NSString*>(this)); }

Strong<NSObject> NSString::mutableCopy() const {
  return withUnits(*this, [](auto units) { return Strong<NSObject>(make<NSMutableString>(units)); });
}

Strong<NSString> makeString(std::string_view text) {
  if (isAscii(text)) return NSString::withUnitsBehind(text);
  const std::u16string units = utf16(text);
  return NSString::withUnitsBehind(std::u16string_view(units));
}

Strong<NSString> makeString(std::u16string_view units) {
  if (isAscii(units)) return makeString(std::string_view(narrowed(units)));
  return NSString::withUnitsBehind(units);
}

std::string utf8(const NSString& string) {
  if (string.isPlain()) return string.isWide() ? utf8(string.wide()) : std::string(string.narrow());
  return utf8(utf16(string));
}

bool boolValue(std::string_view text) noexcept { return readBool(text); }

std::optional<std::string> strictUtf8(const NSString& string) {
  return withUnits(string, [](auto units) -> std::optional<std::string> {
    if constexpr (std::is_same_v<decltype(units), std::u16string_view>) {
      if (!isWellFormed(units)) return std::nullopt;
      return utf8(units);
    } else {
      return std::string(units);
    }
  });
}

std::u16string utf16(const NSString& string) {
  return withUnits(string, [](auto units) { return std::u16string(units.begin(), units.end()); });
}

NSMutableString::NSMutableString(std::string_view text) { append(text); }

NSMutableString::NSMutableString(std::u16string_view units) { append(units); }

NSMutableString::~NSMutableString() = default;

void NSMutableString::append(std::string_view text) {
  if (!isWide_ && isAscii(text)) {
    narrow_ += text;
  } else {
    widen();
    units16_ += platform::utf16(text);
  }
  refresh();
}

void NSMutableString::append(std::u16string_view units) {
  if (!isWide_ && isAscii(units)) {
    narrow_.append(units.begin(), units.end());
  } else {
    widen();
    units16_ += units;
  }
  refresh();
}

void NSMutableString::appendString(NSString* string) {
  if (!string) throwNullArgument(*this, "appendString:", "string");
  append(platform::utf16(*string));
}

void NSMutableString::setString(NSString* string) {
  if (!string) throwNullArgument(*this, "setString:", "string");
  const std::u16string units = platform::utf16(*string);  // which may be this string's own
  narrow_.clear();
  units16_.clear();
  isWide_ = false;
  append(units);
}

Strong<NSObject> NSMutableString::copy() const { return makeString(platform::utf16(*this)); }

void NSMutableString::widen() {
  if (isWide_) return;
  units16_.assign(narrow_.begin(), narrow_.end());
  narrow_.clear();
  isWide_ = true;
}

void NSMutableString::refresh() noexcept {
  if (isWide_) {
    borrow(std::u16string_view(units16_));
  } else {
    borrow(std::string_view(narrow_));
  }
}

void bindConstantStrings(std::span<const ConstantString* const> strings) {
  ClassObject* cls = classObject<NSString>();
  for (const ConstantString* string : strings) {
    headerOf(static_cast<NSString*>(*string)).cls.store(cls, std::memory_order_relaxed);
  }
}

template ClassObject* buildClass<NSString>();
template ClassObject* buildClass<NSMutableString>();

}  // namespace platform
}  // namespace havrin
