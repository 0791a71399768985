// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/documents/property_list.h>

#include <HavrinFoundation/platform/documents/binary_property_list.h>
#include <HavrinFoundation/platform/documents/xml_property_list.h>

#include <algorithm>
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

PropertyList::PropertyList(Dictionary value) : value_(std::make_shared<const Dictionary>(std::move(value))) {}

// Out of line: with ten alternatives, inlining them at each move would bloat the callers.
PropertyList::PropertyList(const PropertyList& other) = default;
PropertyList::PropertyList(PropertyList&& other) noexcept : value_(std::exchange(other.value_, Value())) {}
PropertyList& PropertyList::operator=(PropertyList other) noexcept {
  value_.swap(other.value_);
  return *this;
}
PropertyList::~PropertyList() {
  if (auto* const elements = std::get_if<Shared<Array>>(&value_)) release(std::move(*elements));
  if (auto* const entries = std::get_if<Shared<Dictionary>>(&value_)) release(std::move(*entries));
}

PropertyList::Kind PropertyList::kind() const noexcept {
  if (std::holds_alternative<std::uint64_t>(value_)) return Kind::integer;
  return static_cast<Kind>(value_.index());
}

std::optional<std::uint64_t> PropertyList::unsignedInteger() const noexcept {
  if (const auto* value = std::get_if<std::int64_t>(&value_); value && *value >= 0) {
    return static_cast<std::uint64_t>(*value);
  }
  return get<std::uint64_t>();
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
    if (mine->value_ == theirs->value_) continue;  // containers only where they are shared
    if (mine->value_.index() != theirs->value_.index()) return false;
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
