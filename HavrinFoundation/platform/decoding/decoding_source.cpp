// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/decoding/decoding_source.h>

namespace havrin {
inline namespace platform {

DecodingSource::~DecodingSource() = default;

bool DecodingSource::readKey(ObjectCursor& cursor, std::string_view key, ScalarTarget& target) const {
  auto value = find(cursor, key);
  if (!value) {
    target.fail(std::move(value.failure()));
  } else if (*value == kNone) {
    return false;
  } else {
    read(*value, target);
  }
  return true;
}

void DecodingSource::readElement(ArrayCursor& cursor, ScalarTarget& target) const {
  auto value = current(cursor);
  if (!value) return target.fail(std::move(value.failure()));
  read(*value, target);
  if (target.failure()) return;
  if (auto moved = advance(cursor); !moved) target.fail(std::move(moved.failure()));
}

detail::ErrorHolder DecodingSource::readFields(ObjectCursor& cursor, std::span<const Field> fields,
                                               const void* container, ErrorDetail detail) const {
  for (const Field& field : fields) {
    if (auto failure = detail::readField(*this, cursor, field, container, detail)) return failure;
  }
  return {};
}

}  // namespace platform
}  // namespace havrin
