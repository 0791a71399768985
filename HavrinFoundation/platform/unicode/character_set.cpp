// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/unicode/character_set.h>

#include <HavrinFoundation/platform/unicode/character_set_storage.h>
#include <HavrinFoundation/platform/unicode/unicode.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>

namespace havrin {
inline namespace platform {

using detail::CharacterSetStorage;

namespace {

constexpr char32_t kLastScalar = 0x10FFFF;
constexpr char32_t kFirstSurrogate = 0xD800, kLastSurrogate = 0xDFFF;

constexpr bool isScalar(char32_t value) {
  return value < kFirstSurrogate || (value > kLastSurrogate && value <= kLastScalar);
}

constexpr std::array<std::uint64_t, 1024> kEmptyPlane{};

// The scalars whose general category has its bit in `categories`, and some ranges more.
CharacterSet setOfCategories(std::uint32_t categories, std::initializer_list<ClosedRange<char32_t>> more = {}) {
  struct Collected {
    std::uint32_t categories;
    CharacterSet set;
  } collected{categories, {}};
  u_enumCharTypes(
      [](const void* context, UChar32 first, UChar32 limit, UCharCategory category) -> UBool {
        auto& [wanted, set] = *static_cast<Collected*>(const_cast<void*>(context));
        if ((wanted & U_MASK(category)) != 0) {
          set.insert({static_cast<char32_t>(first), static_cast<char32_t>(limit - 1)});
        }
        return true;
      },
      &collected);
  for (const auto& range : more) collected.set.insert(range);
  return std::move(collected.set);
}

}  // namespace

}  // namespace platform

namespace detail {

CharacterSetStorage::CharacterSetStorage(const CharacterSetStorage& other)
    : asciiRows_(other.asciiRows_), basic_(other.basic_) {
  for (std::size_t i = 0; i < higher_.size(); ++i) {
    if (other.higher_[i] != nullptr) higher_[i] = std::make_unique<Plane>(*other.higher_[i]);
  }
}

const CharacterSetStorage::Plane& CharacterSetStorage::plane(std::size_t number) const noexcept {
  if (number == 0) return basic_;
  return higher_[number - 1] == nullptr ? kEmptyPlane : *higher_[number - 1];
}

CharacterSetStorage::Plane& CharacterSetStorage::editablePlane(std::size_t number) {
  if (number == 0) return basic_;
  auto& plane = higher_[number - 1];
  if (plane == nullptr) plane = std::make_unique<Plane>();
  return *plane;
}

void CharacterSetStorage::setBits(ClosedRange<char32_t> range, bool value) {
  for (char32_t first = range.lowerBound; first <= range.upperBound;) {
    const std::size_t number = first >> 16;
    const char32_t limit = std::min<char32_t>(range.upperBound, first | 0xFFFF) + 1;
    if (value || hasPlane(number)) {
      Plane& plane = editablePlane(number);
      for (char32_t at = first; at < limit; at = (at | 63) + 1) {
        std::uint64_t bits = ~0ull << (at & 63);
        if ((at | 63) >= limit) bits &= ~0ull >> (64 - (limit & 63));
        std::uint64_t& word = plane[(at >> 6) & 1023];
        word = value ? word | bits : word & ~bits;
      }
    }
    first = limit;
  }
}

void CharacterSetStorage::refreshAsciiRows() noexcept {
  asciiRows_ = {};
  for (char32_t scalar = 0; scalar < 0x80; ++scalar) {
    if (bit(scalar))
      asciiRows_[scalar & 0xF] = static_cast<std::uint8_t>(asciiRows_[scalar & 0xF] | 1u << (scalar >> 4));
  }
}

}  // namespace detail

inline namespace platform {

CharacterSet::CharacterSet(std::string_view charactersIn) { insert(charactersIn); }

CharacterSet::CharacterSet(ClosedRange<char32_t> charactersIn) { insert(charactersIn); }

CharacterSet::CharacterSet(const CharacterSet& other) noexcept : storage_(other.storage_), inverted_(other.inverted_) {
  if (storage_ != nullptr) storage_->retain();
}

CharacterSet::~CharacterSet() {
  if (storage_ != nullptr && storage_->release()) delete storage_;
}

// Each is built once, at first use, and never destroyed: late threads may still use it.
CharacterSet CharacterSet::letters() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_L_MASK | U_GC_M_MASK));
  return set;
}

CharacterSet CharacterSet::decimalDigits() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_ND_MASK));
  return set;
}

CharacterSet CharacterSet::alphanumerics() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK));
  return set;
}

CharacterSet CharacterSet::uppercaseLetters() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_LU_MASK | U_GC_LT_MASK));
  return set;
}

CharacterSet CharacterSet::lowercaseLetters() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_LL_MASK));
  return set;
}

CharacterSet CharacterSet::whitespaces() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_ZS_MASK, {{0x09, 0x09}}));
  return set;
}

CharacterSet CharacterSet::newlines() {
  static const auto& set = *new CharacterSet(setOfCategories(0, {{0x0A, 0x0D}, {0x85, 0x85}, {0x2028, 0x2029}}));
  return set;
}

CharacterSet CharacterSet::whitespacesAndNewlines() {
  static const auto& set = *new CharacterSet(setOfCategories(U_GC_Z_MASK, {{0x09, 0x0D}, {0x85, 0x85}}));
  return set;
}

bool CharacterSet::contains(char32_t scalar) const noexcept {
  return isScalar(scalar) && (storage_ != nullptr && storage_->bit(scalar)) != inverted_;
}

CharacterSetStorage& CharacterSet::ownStorage() {
  if (storage_ == nullptr) {
    storage_ = new CharacterSetStorage;
  } else if (storage_->isShared()) {
    CharacterSet copy;
    copy.storage_ = new CharacterSetStorage(*storage_);
    std::swap(storage_, copy.storage_);
  }
  return *storage_;
}

void CharacterSet::setMembership(ClosedRange<char32_t> range, bool member) {
  if (range.lowerBound > kLastScalar) return;
  CharacterSetStorage& storage = ownStorage();
  storage.setBits({range.lowerBound, std::min(range.upperBound, kLastScalar)}, member != inverted_);
  if (range.lowerBound < 0x80) storage.refreshAsciiRows();
}

void CharacterSet::setMembership(std::string_view charactersIn, bool member) {
  if (charactersIn.empty()) return;
  CharacterSetStorage& storage = ownStorage();
  for (std::size_t i = 0; i < charactersIn.size();) {
    const Scalar scalar = scalarAt(charactersIn, i);
    storage.setBits({scalar.value, scalar.value}, member != inverted_);
    i += scalar.length;
  }
  storage.refreshAsciiRows();
}

void CharacterSet::formUnion(const CharacterSet& other) {
  if (other.storage_ == nullptr && !other.inverted_) return;
  const CharacterSet added = other;  // keeps the storage if `other` is this set
  CharacterSetStorage& storage = ownStorage();
  const std::uint64_t flip = inverted_ ? ~0ull : 0, addedFlip = added.inverted_ ? ~0ull : 0;
  for (std::size_t number = 0; number < CharacterSetStorage::kPlanes; ++number) {
    const bool stored = added.storage_ != nullptr && added.storage_->hasPlane(number);
    if (!stored && !added.inverted_) continue;
    const CharacterSetStorage::Plane& more = stored ? added.storage_->plane(number) : kEmptyPlane;
    CharacterSetStorage::Plane& plane = storage.editablePlane(number);
    for (std::size_t word = 0; word < plane.size(); ++word) {
      plane[word] = ((plane[word] ^ flip) | (more[word] ^ addedFlip)) ^ flip;
    }
  }
  storage.refreshAsciiRows();
}

CharacterSet CharacterSet::inverted() const noexcept {
  CharacterSet result = *this;
  result.inverted_ = !inverted_;
  return result;
}

std::uint64_t CharacterSet::hash() const noexcept {
  std::uint64_t hash = 0;
  for (std::size_t word = 0; word < 4; ++word) {
    const std::uint64_t stored = storage_ == nullptr ? 0 : storage_->basic()[word];
    hash = (hash ^ stored ^ (inverted_ ? ~0ull : 0)) * 0x9E37'79B9'7F4A'7C15;
  }
  return hash ^ hash >> 32;
}

bool CharacterSet::hasSameMembersAs(const CharacterSet& other) const noexcept {
  if (storage_ == other.storage_) return inverted_ == other.inverted_;
  const std::uint64_t difference = inverted_ != other.inverted_ ? ~0ull : 0;
  for (std::size_t number = 0; number < CharacterSetStorage::kPlanes; ++number) {
    const CharacterSetStorage::Plane& left = storage_ == nullptr ? kEmptyPlane : storage_->plane(number);
    const CharacterSetStorage::Plane& right = other.storage_ == nullptr ? kEmptyPlane : other.storage_->plane(number);
    for (std::size_t word = 0; word < left.size(); ++word) {
      if (number == 0 && word == kFirstSurrogate / 64) word = kLastSurrogate / 64 + 1;
      if ((left[word] ^ right[word]) != difference) return false;
    }
  }
  return true;
}

}  // namespace platform
}  // namespace havrin
