// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/property_list.h>

#include <HavrinFoundation/platform/documents/binary_property_list.h>
#include <HavrinFoundation/platform/documents/xml_property_list.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

struct ByKey {
  using Entry = PropertyList::Dictionary::Entry;
  bool operator()(const Entry& entry, std::string_view key) const noexcept { return entry.key < key; }
  bool operator()(const Entry& first, const Entry& second) const noexcept { return first.key < second.key; }
};

// Destroying a tree recurses up to this depth. Deeper containers are put on a list that the frame at this depth
// empties, so that the stack is bounded.
constexpr std::size_t kNestedReleases = 32;
constinit thread_local std::size_t releaseDepth = 0;
constinit thread_local std::vector<std::shared_ptr<const void>>* deferredReleases = nullptr;

void release(std::shared_ptr<const void> container) noexcept {
  if (releaseDepth == kNestedReleases) return deferredReleases->push_back(std::move(container));
  if (++releaseDepth < kNestedReleases) {
    container.reset();
  } else {
    std::vector<std::shared_ptr<const void>> deferred{std::move(container)};
    deferredReleases = &deferred;
    while (!deferred.empty()) {
      container = std::move(deferred.back());
      deferred.pop_back();
      container.reset();
    }
  }
  --releaseDepth;
}

}  // namespace

PropertyList::PropertyList(std::string value)
    : PropertyList(Kind::text, std::make_shared<const std::string>(std::move(value))) {}
PropertyList::PropertyList(Data value) : PropertyList(Kind::data, std::make_shared<const Data>(std::move(value))) {}
PropertyList::PropertyList(Array value) : PropertyList(Kind::array, std::make_shared<const Array>(std::move(value))) {}
PropertyList::PropertyList(Dictionary value)
    : PropertyList(Kind::dictionary, std::make_shared<const Dictionary>(std::move(value))) {}

PropertyList::PropertyList(const PropertyList& other) : kind_(other.kind_), isUnsigned_(other.isUnsigned_) {
  if (hasPart()) {
    std::construct_at(&part_, other.part_);
  } else {
    bits_ = other.bits_;
  }
}
PropertyList::PropertyList(PropertyList&& other) noexcept : kind_(other.kind_), isUnsigned_(other.isUnsigned_) {
  if (hasPart()) {
    std::construct_at(&part_, std::move(other.part_));
    std::destroy_at(&other.part_);
  } else {
    bits_ = other.bits_;
  }
  other.kind_ = Kind::boolean;
  other.bits_ = 0;
}
PropertyList& PropertyList::operator=(PropertyList other) noexcept {
  std::destroy_at(this);
  std::construct_at(this, std::move(other));
  return *this;
}
PropertyList::~PropertyList() {
  if (!hasPart()) return;
  if (kind_ >= Kind::array) release(std::move(part_));
  std::destroy_at(&part_);
}

std::optional<std::int64_t> PropertyList::integer() const noexcept {
  if (kind_ != Kind::integer || isUnsigned_) return std::nullopt;
  return static_cast<std::int64_t>(bits_);
}

std::optional<std::uint64_t> PropertyList::unsignedInteger() const noexcept {
  if (kind_ != Kind::integer || (!isUnsigned_ && static_cast<std::int64_t>(bits_) < 0)) return std::nullopt;
  return bits_;
}

const PropertyList* PropertyList::valueForKey(std::string_view key) const noexcept {
  const Dictionary* entries = dictionary();
  return entries ? entries->find(key) : nullptr;
}

bool PropertyList::isEqual(const PropertyList& other) const {
  std::vector<std::pair<const PropertyList*, const PropertyList*>> pairs{{this, &other}};
  while (!pairs.empty()) {
    const auto [mine, theirs] = pairs.back();
    pairs.pop_back();
    if (mine->kind_ != theirs->kind_ || mine->isUnsigned_ != theirs->isUnsigned_) return false;
    if (!mine->hasPart()) {
      // Numbers rather than their bits: 0 equals -0, and NaN nothing.
      if (mine->real() != theirs->real() || mine->date() != theirs->date()) return false;
      if (mine->bits_ != theirs->bits_ && mine->kind_ != Kind::real && mine->kind_ != Kind::date) return false;
      continue;
    }
    if (mine->part_ == theirs->part_) continue;
    if (const auto* const text = mine->text(); text && *text == *theirs->text()) continue;
    if (const auto* const bytes = mine->data(); bytes && *bytes == *theirs->data()) continue;
    if (const auto* const elements = mine->array(); elements && elements->size() == theirs->array()->size()) {
      for (std::size_t i = 0; i < elements->size(); ++i) pairs.emplace_back(&(*elements)[i], &(*theirs->array())[i]);
      continue;
    }
    const auto* const entries = mine->dictionary();
    if (!entries || entries->entries().size() != theirs->dictionary()->entries().size()) return false;
    for (std::size_t i = 0; i < entries->entries().size(); ++i) {
      const auto& [key, value] = entries->entries()[i];
      const auto& their = theirs->dictionary()->entries()[i];
      if (key != their.key) return false;
      pairs.emplace_back(&value, &their.value);
    }
  }
  return true;
}

PropertyList::Dictionary::Dictionary(std::vector<Entry> entries) : entries_(std::move(entries)) {
  std::stable_sort(entries_.begin(), entries_.end(), ByKey());
  const auto sameKey = [](const Entry& first, const Entry& second) { return first.key == second.key; };
  entries_.erase(std::unique(entries_.begin(), entries_.end(), sameKey), entries_.end());
}

const PropertyList* PropertyList::Dictionary::find(std::string_view key) const noexcept {
  const auto found = std::lower_bound(entries_.begin(), entries_.end(), key, ByKey());
  return found != entries_.end() && found->key == key ? &found->value : nullptr;
}

void PropertyList::Dictionary::set(std::string_view key, PropertyList value) {
  const auto found = std::lower_bound(entries_.begin(), entries_.end(), key, ByKey());
  if (found != entries_.end() && found->key == key) {
    found->value = std::move(value);
  } else {
    entries_.insert(found, Entry{std::string(key), std::move(value)});
  }
}

Decoded<PropertyList> readPropertyList(std::span<const std::byte> bytes) {
  return isBinaryPropertyList(bytes) ? readBinaryPropertyList(bytes) : readXmlPropertyList(bytes);
}

}  // namespace platform
}  // namespace havrin
