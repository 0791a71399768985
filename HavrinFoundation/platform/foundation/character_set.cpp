#include <HavrinFoundation/platform/foundation/character_set.h>

#include <HavrinFoundation/platform/foundation/character_set_storage.h>
#include <HavrinFoundation/platform/foundation/unicode.h>

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>

namespace havrin::inline platform {

namespace {

constexpr char32_t kLastScalar = 0x10FFFF;
constexpr char32_t kFirstSurrogate = 0xD800, kLastSurrogate = 0xDFFF;

constexpr bool isScalar(char32_t value) {
  return value < kFirstSurrogate || (value > kLastSurrogate && value <= kLastScalar);
}

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

CharacterSet::Storage::Page& CharacterSet::Storage::editablePage(std::size_t number) {
  std::uint16_t& index = index_[number];
  if (index == kNoneIndex || index == kAllIndex) {
    const Page copy = pages_[index];
    pages_.push_back(copy);
    index = static_cast<std::uint16_t>(pages_.size() - 1);
  }
  return pages_[index];
}

void CharacterSet::Storage::setPage(std::size_t number, const Page& page) {
  if (page == kNone || page == kAll) {
    index_[number] = page == kNone ? kNoneIndex : kAllIndex;
  } else {
    editablePage(number) = page;
  }
}

void CharacterSet::Storage::setBits(ClosedRange<char32_t> range, bool value) {
  const auto lastUpTo = [&range](char32_t limit) { return std::min(range.upperBound, limit); };
  for (char32_t first = range.lowerBound; first <= range.upperBound; first = (first | 0xFF) + 1) {
    const std::size_t number = first >> 8;
    const char32_t last = lastUpTo(first | char32_t{0xFF});
    if (last - first == 0xFF) {
      index_[number] = value ? kAllIndex : kNoneIndex;
      continue;
    }
    Page& page = editablePage(number);
    for (char32_t at = first; at <= last; at = (at | 63) + 1) {
      const std::uint64_t from = ~0ull << (at & 63);
      const std::uint64_t upTo = ~0ull >> (63 - (lastUpTo(at | char32_t{63}) & 63));
      std::uint64_t& word = page[(at >> 6) & 3];
      word = value ? word | (from & upTo) : word & ~(from & upTo);
    }
  }
}

void CharacterSet::Storage::refreshAsciiRows() noexcept {
  asciiRows_ = {};
  for (char32_t scalar = 0; scalar < 0x80; ++scalar) {
    if (bit(scalar))
      asciiRows_[scalar & 0xF] = static_cast<std::uint8_t>(asciiRows_[scalar & 0xF] | 1u << (scalar >> 4));
  }
}

CharacterSet::CharacterSet(std::string_view charactersIn) { insert(charactersIn); }

CharacterSet::CharacterSet(ClosedRange<char32_t> charactersIn) { insert(charactersIn); }

CharacterSet::CharacterSet(const CharacterSet& other) noexcept : storage_(other.storage_), inverted_(other.inverted_) {
  if (storage_ != nullptr) storage_->retain();
}

CharacterSet::~CharacterSet() {
  if (storage_ != nullptr && storage_->release()) delete storage_;
}

// Each is built once, by whoever comes first, and never destroyed: late threads may still ask.
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

CharacterSet::Storage& CharacterSet::ownStorage() {
  if (storage_ == nullptr) {
    storage_ = new Storage;
  } else if (storage_->isShared()) {
    CharacterSet copy;
    copy.storage_ = new Storage(*storage_);
    std::swap(storage_, copy.storage_);
  }
  return *storage_;
}

void CharacterSet::setMembership(ClosedRange<char32_t> range, bool member) {
  if (range.lowerBound > kLastScalar) return;
  Storage& storage = ownStorage();
  storage.setBits({range.lowerBound, std::min(range.upperBound, kLastScalar)}, member != inverted_);
  if (range.lowerBound < 0x80) storage.refreshAsciiRows();
}

void CharacterSet::setMembership(std::string_view charactersIn, bool member) {
  if (charactersIn.empty()) return;
  Storage& storage = ownStorage();
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
  Storage& storage = ownStorage();
  const std::uint64_t flip = inverted_ ? ~0ull : 0, addedFlip = added.inverted_ ? ~0ull : 0;
  for (std::size_t number = 0; number < Storage::kPageCount; ++number) {
    Storage::Page page = storage.page(number);
    for (std::size_t word = 0; word < page.size(); ++word) {
      const std::uint64_t more = added.storage_ == nullptr ? 0 : added.storage_->page(number)[word];
      page[word] = ((page[word] ^ flip) | (more ^ addedFlip)) ^ flip;
    }
    storage.setPage(number, page);
  }
  storage.refreshAsciiRows();
}

CharacterSet CharacterSet::inverted() const noexcept {
  CharacterSet result = *this;
  result.inverted_ = !inverted_;
  return result;
}

bool CharacterSet::hasSameMembersAs(const CharacterSet& other) const noexcept {
  if (storage_ == other.storage_) return inverted_ == other.inverted_;
  static constexpr Storage::Page kNoPage{};
  const std::uint64_t difference = inverted_ != other.inverted_ ? ~0ull : 0;
  for (std::size_t number = 0; number < Storage::kPageCount; ++number) {
    if (number == kFirstSurrogate >> 8) number = (kLastSurrogate >> 8) + 1;
    const Storage::Page& left = storage_ == nullptr ? kNoPage : storage_->page(number);
    const Storage::Page& right = other.storage_ == nullptr ? kNoPage : other.storage_->page(number);
    for (std::size_t word = 0; word < left.size(); ++word) {
      if ((left[word] ^ right[word]) != difference) return false;
    }
  }
  return true;
}

}  // namespace havrin::inline platform
