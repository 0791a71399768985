#include <HavrinFoundation/platform/decoding/decoding_sources.h>

namespace havrin::inline platform {

ValueSource::~ValueSource() = default;
KeyedSource::~KeyedSource() = default;
UnkeyedSource::~UnkeyedSource() = default;

bool KeyedSource::read(std::string_view key, ScalarTarget& target) const {
  auto value = find(key);
  if (value) {
    value->read(target);
  } else if (value.failure()) {
    target.fail(std::move(value.failure()));
  } else {
    return false;
  }
  return true;
}

void UnkeyedSource::read(ScalarTarget& target) {
  auto value = current();
  if (!value) return target.fail(std::move(value.failure()));
  value->read(target);
  if (target.failure()) return;
  if (auto moved = advance(); !moved) target.fail(std::move(moved.failure()));
}

}  // namespace havrin::inline platform
