// SPDX-License-Identifier: Apache-2.0
// Bytes of a property list in either form: what is read is written, and what was written reads as the same and is written
// alike; objects are given by number without looking outside the data.
#include <HavrinFoundation/platform/documents/binary_property_list.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

using namespace havrin;

namespace {

void require(bool law) {
  if (!law) std::abort();
}

void visitObjects(std::span<const std::byte> bytes) {
  const auto list = BinaryPropertyList::fromData(bytes);
  if (!list) return;
  std::uint64_t budget = bytes.size();
  for (std::uint64_t i = 0; i < list->objectCount(); ++i) {
    const auto object = list->object(i);
    if (!object) continue;
    require(object->encodedSize() <= list->objectBytes());
    if (object->encodedSize() > budget) break;  // they overlap
    budget -= object->encodedSize();
    if (object->isText()) require(object->text().size() <= 3 * object->count());
    const auto requireReference = [&list](std::uint64_t number) {
      require(number < list->objectCount() || (list->offsetOf(number) == 0 && !list->object(number)));
    };
    const bool isArray = object->kind() == BinaryObject::Kind::array;
    const bool isDictionary = object->kind() == BinaryObject::Kind::dictionary;
    for (std::uint64_t at = 0; (isArray || isDictionary) && at < object->count(); ++at) {
      if (isArray) requireReference(object->element(at));
      if (isDictionary) requireReference(object->key(at));
      if (isDictionary) requireReference(object->value(at));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> bytes(reinterpret_cast<const std::byte*>(data), size);
  visitObjects(bytes);
  const auto read = readPropertyList(bytes);
  if (!read) {
    require(!read.error().detail().empty());
    return 0;
  }
  const auto written = binaryPropertyList(*read);
  const auto again = readPropertyList(written);
  require(static_cast<bool>(again));
  require(binaryPropertyList(*again) == written);
  return 0;
}
