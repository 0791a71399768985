#include <HavrinFoundation/platform/coding/property_list.h>

#include <HavrinFoundation/platform/coding/binary_property_list.h>
#include <HavrinFoundation/platform/coding/xml_property_list.h>

#include <algorithm>
#include <utility>

namespace havrin::inline platform {
namespace {

struct ByKey {
  using Entry = PropertyList::Dictionary::Entry;
  bool operator()(const Entry& entry, std::string_view key) const noexcept { return entry.key < key; }
  bool operator()(const Entry& first, const Entry& second) const noexcept { return first.key < second.key; }
};

}  // namespace

PropertyList::PropertyList(Dictionary value) : value_(std::make_shared<const Dictionary>(std::move(value))) {}

// Out of line: ten alternatives make much code at every place where a value is moved.
PropertyList::PropertyList(const PropertyList& other) = default;
PropertyList::PropertyList(PropertyList&& other) noexcept : value_(std::exchange(other.value_, Value())) {}
PropertyList& PropertyList::operator=(const PropertyList& other) = default;
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept {
  value_ = std::exchange(other.value_, Value());
  return *this;
}
PropertyList::~PropertyList() = default;

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

bool PropertyList::isEqual(const PropertyList& other) const noexcept {
  if (value_.index() != other.value_.index()) return false;
  return std::visit(
      [&other]<class T>(const T& value) {
        const T& same = *std::get_if<T>(&other.value_);
        if constexpr (requires { value.get(); }) {
          return value == same || *value == *same;
        } else {
          return value == same;
        }
      },
      value_);
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

std::string PropertyListError::description() const {
  std::string text = unit == Unit::byte ? "byte " : "line ";
  text += std::to_string(position);
  text += ": ";
  text += reason;
  return text;
}

PropertyListResult<PropertyList> readPropertyList(std::span<const std::byte> bytes) {
  return isBinaryPropertyList(bytes) ? readBinaryPropertyList(bytes) : readXmlPropertyList(bytes);
}

}  // namespace havrin::inline platform
