// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/change_dictionary.h>

#include <HavrinFoundation/platform/foundation/number.h>

#include <array>

namespace havrin {
inline namespace platform {

constinit const LazyString NSKeyValueChangeKindKey{"kind"};
constinit const LazyString NSKeyValueChangeNewKey{"new"};
constinit const LazyString NSKeyValueChangeOldKey{"old"};
constinit const LazyString NSKeyValueChangeIndexesKey{"indexes"};
constinit const LazyString NSKeyValueChangeNotificationIsPriorKey{"notificationIsPrior"};

namespace {

// Never destroyed.
const KeyedValue& kindNumber(NSKeyValueChange kind) {
  static const auto* const kNumbers =
      new std::array<KeyedValue, 5>{makeNumber(0), makeNumber(1), makeNumber(2), makeNumber(3), makeNumber(4)};
  return (*kNumbers)[static_cast<std::size_t>(kind)];
}
const KeyedValue& yes() {
  static const auto* const kYes = new KeyedValue(makeNumber(true));
  return *kYes;
}

}  // namespace

NSKeyValueChangeDictionary::~NSKeyValueChangeDictionary() = default;

template <class Body>
bool NSKeyValueChangeDictionary::any(Body body) const {
  if (body(NSKeyValueChangeKindKey, kindNumber(values_.kind))) return true;
  if (values_.newValue && body(NSKeyValueChangeNewKey, values_.newValue)) return true;
  if (values_.oldValue && body(NSKeyValueChangeOldKey, values_.oldValue)) return true;
  if (values_.indexes && body(NSKeyValueChangeIndexesKey, values_.indexes)) return true;
  if (values_.prior && body(NSKeyValueChangeNotificationIsPriorKey, yes())) return true;
  return extraKey_ && body(extraKey_, extraValue_);
}

std::uint64_t NSKeyValueChangeDictionary::count() const {
  std::uint64_t count = 0;
  any([&](NSString*, const KeyedValue&) {
    ++count;
    return false;
  });
  return count;
}

Strong<NSObject> NSKeyValueChangeDictionary::objectForKey(const NSObject* key) const {
  Strong<NSObject> found;
  const auto findWhere = [&](auto matches) {
    return any([&](NSString* own, const KeyedValue& value) {
      if (!matches(own)) return false;
      found = value.object();
      return true;
    });
  };
  if (findWhere([&](NSString* own) { return own == key; }) || !isKind<NSString>(key)) return found;
  findWhere([&](NSString* own) { return own->isEqual(key); });
  return found;
}

Strong<NSArray> NSKeyValueChangeDictionary::allKeys() const {
  ArrayBuilder keys(6);
  any([&](NSString* key, const KeyedValue&) {
    keys.add(key);
    return false;
  });
  return keys.finish();
}

Strong<NSObject> NSKeyValueChangeDictionary::mutableCopy() const {
  auto copy = make<NSMutableDictionary>();
  any([&](NSString* key, const KeyedValue& value) {
    copy->setObject(value.object(), key);
    return false;
  });
  return copy;
}

Strong<NSDictionary> NSKeyValueChangeDictionary::adding(NSString* key, Strong<NSObject> value) const {
  if (extraKey_) {  // the fourth slot is taken
    const Strong<NSObject> more = mutableCopy();
    static_cast<NSMutableDictionary&>(*more).setObject(value, key);
    return Strong<NSDictionary>(static_cast<NSMutableDictionary*>(more.get()));
  }
  auto result = make<NSKeyValueChangeDictionary>(values_);
  result->extraKey_ = key;
  result->extraValue_ = std::move(value);
  return result;
}

NSKeyValueChangeDictionary* NSKeyValueChangeDictionary::plainSetting() {
  static auto* const kPlain = make<NSKeyValueChangeDictionary>(Values{}).detach();
  return kPlain;
}

}  // namespace platform
}  // namespace havrin
