// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archive_reader.h>

#include <charconv>

// The rows of objects that collections are made of, charged according to their use.

namespace havrin {
inline namespace platform {
using Kind = BinaryObject::Kind;

bool ArchiveReader::add(std::uint64_t number, Use use, Objects& row, std::vector<SoughtObject>& sought) {
  const auto uid = archive_->uidAt(number);
  if (!uid) {
    fail("an element of a collection is not a reference to an object");
    return false;
  }
  NSObject* const object = objectWithUid(*uid);
  if (!object) {
    if (!hasFailed()) fail("a collection contains null");
    return false;
  }
  row.push_back(object);
  if (use == Use::inOrder) return true;
  const std::uint64_t work = objects_[*uid].extent.expansion;
  if (!chargeWork(work) || (use == Use::keys && !charge(kArchivedKeyPartSize * work))) return false;
  sought.push_back({object->hash(), work});
  return true;
}

bool ArchiveReader::objects(std::string_view key, Use use, Objects& row) {
  const auto array = value(key, Kind::array);
  if (!array) {
    fail("expected array, got no value (key \"" + std::string(key) + "\")");
    return false;
  }
  const std::uint64_t count = array->count();
  if (!charge(count * (use == Use::inOrder ? kArchivedElementSize : kArchivedMemberSize))) return false;
  row.reserve(row.size() + count);
  std::vector<SoughtObject> sought;
  if (use != Use::inOrder) sought.reserve(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    if (!add(array->element(i), use, row, sought)) return false;
  }
  return chargeSearch(sought);
}

// The keys come in any order, so one pass sorts the values by number; a look-up per number would be quadratic.
bool ArchiveReader::numberedObjects(std::string_view prefix, Objects& row) {
  constexpr std::uint64_t kMissing = ~std::uint64_t{0};
  const BinaryObject& values = frame_->values;
  std::vector<std::uint64_t> numbers(values.count(), kMissing);
  std::uint64_t found = 0;
  for (std::uint64_t i = 0; i < values.count(); ++i) {
    const auto key = archive_->objectAt(values.key(i));
    if (key && !chargeWork(ArchivedExtent::ofText(key->count()).expansion)) return false;
    if (!key || (key->kind() != Kind::asciiText && key->kind() != Kind::utf8Text)) continue;
    if (!key->asciiText().starts_with(prefix)) continue;
    const std::string_view digits = key->asciiText().substr(prefix.size());
    std::uint64_t index = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    if (error != std::errc() || end != digits.data() + digits.size() || index >= numbers.size()) continue;
    found += numbers[index] == kMissing;
    numbers[index] = values.value(i);
  }
  if (!charge(found * kArchivedMemberSize)) return false;
  std::vector<SoughtObject> sought;
  for (std::uint64_t i = 0; i < found; ++i) {
    if (numbers[i] == kMissing) {
      fail("the keys \"" + std::string(prefix) + "<n>\" are not numbered consecutively from 0");
      return false;
    }
    if (!add(numbers[i], Use::members, row, sought)) return false;
  }
  return chargeSearch(sought);
}

bool ArchiveReader::chargeSearch(std::vector<SoughtObject>& sought) {
  const std::uint64_t work = searchWork(sought);
  return chargeWork(work) && addExtent(work);
}

std::vector<ArchiveReader::Part> ArchiveReader::partsOf(std::string_view key) {
  const auto number = archive_->find(frame_->values, key, frame_->next);
  const auto uid = number ? archive_->uidAt(*number) : std::nullopt;
  const auto values = uid ? archive_->object(*uid) : detail::ErrorHolder::undescribed();
  if (!values || values->kind() != Kind::dictionary) return {};
  const auto array = archive_->member(*values, "NS.objects", Kind::array);
  std::vector<Part> parts;
  if (!array || !charge(array->count() * kArchivedElementSize)) return {};
  for (std::uint64_t i = 0; i < array->count(); ++i) {
    const auto part = archive_->uidAt(array->element(i));
    if (!part || *part >= objects_.count() || objects_[*part].state != Slot::State::made) return {};
    parts.push_back({objects_[*part].object, objects_[*part].extent.expansion});
  }
  return parts;
}

}  // namespace platform
}  // namespace havrin
