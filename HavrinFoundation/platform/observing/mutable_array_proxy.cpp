// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/mutable_array_proxy.h>

#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/observing/change.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>

#include <string>
#include <utility>

namespace havrin {
inline namespace platform {

namespace {

class KeyValueMutableArray final : public Object<KeyValueMutableArray, NSMutableArray> {
 public:
  KeyValueMutableArray(NSObject& owner, NSString& key)
      : owner_(&owner), key_(&key), capital_(withText(key, [](std::string_view text) { return capitalised(text); })) {}

  std::uint64_t count() const override { return present()->count(); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return present()->objectAtIndex(index); }

  void insertObject(NSObject* object, std::uint64_t index) override {
    change(NSKeyValueChange::insertion, index, "insertObject:in" + capital_ + "AtIndex:", object,
           [&](NSMutableArray& array) { array.insertObject(object, index); });
  }
  void removeObjectAtIndex(std::uint64_t index) override {
    change(NSKeyValueChange::removal, index, "removeObjectFrom" + capital_ + "AtIndex:", nullptr,
           [&](NSMutableArray& array) { array.removeObjectAtIndex(index); });
  }
  void replaceObjectAtIndex(std::uint64_t index, NSObject* object) override {
    change(NSKeyValueChange::replacement, index, "replaceObjectIn" + capital_ + "AtIndex:withObject:", object,
           [&](NSMutableArray& array) { array.replaceObjectAtIndex(index, object); });
  }

 private:
  Strong<NSArray> present() const {
    const Strong<NSObject> value = send<"valueForKey:">(owner_, key_);
    if (!value) return makeArray({});
    return checkedCast<NSArray>(value);
  }

  // Through the owner's own method for the step where it has one, else by setting a changed copy. The copy is changed
  // first, so that an index beyond the end throws before any observer is notified.
  template <class Edit>
  void change(NSKeyValueChange kind, std::uint64_t index, const std::string& method, NSObject* object, Edit edit) {
    const Strong<NSObject> copy = present()->mutableCopy();
    edit(static_cast<NSMutableArray&>(*copy));
    ClassObject* shown = classOf(*owner_).object();
    const std::size_t arguments = kind == NSKeyValueChange::removal ? 1 : 2;
    const MethodRow* step = callableRow(*shown, method, arguments);
    const MethodRow* setter =
        step ? nullptr : withText(*key_, [&](std::string_view key) { return rowsForKey(*shown, key).setter; });
    changeArray(*owner_, *key_, kind, makeIndexSet({index}), [&] {
      if (step) {
        const Strong<NSNumber> number = makeNumber(index);
        const bool objectFirst = kind == NSKeyValueChange::insertion;
        NSObject* const inOrder[] = {objectFirst ? object : number.get(), objectFirst ? number.get() : object};
        step->signature->call(shown->implementation(*step), owner_, inOrder);
      } else if (setter) {
        NSObject* const value = copy;
        setter->signature->call(shown->implementation(*setter), owner_, &value);  // not the one that notifies
      } else {
        send<"setValue:forUndefinedKey:">(owner_, copy, key_);
      }
    });
  }

  const Strong<NSObject> owner_;
  const Strong<NSString> key_;
  const std::string capital_;
};

}  // namespace

Strong<NSMutableArray> mutableArrayValueForKey(NSObject& owner, NSString* key) {
  requireKey(owner, key, "mutableArrayValueForKey:");
  return make<KeyValueMutableArray>(owner, *plainString(*key));
}

}  // namespace platform
}  // namespace havrin
