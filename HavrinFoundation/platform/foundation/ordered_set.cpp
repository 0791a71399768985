// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/ordered_set.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/string.h>

#include <string>

namespace havrin {
inline namespace platform {

namespace {

// A live view of an ordered set as an array; it follows changes of the set.
class OrderedSetArray : public Object<OrderedSetArray, NSArray> {
 public:
  explicit OrderedSetArray(const NSOrderedSet& set) : set_(const_cast<NSOrderedSet*>(&set)) {}

  [[nodiscard]] std::uint64_t count() const override { return set_->count(); }
  [[nodiscard]] Strong<NSObject> objectAtIndex(std::uint64_t index) const override {
    return set_->objectAtIndex(index);
  }

 private:
  Strong<NSOrderedSet> set_;
};

}  // namespace

NSOrderedSet::NSOrderedSet() : order_(make<NSMutableArray>()) {}

NSOrderedSet::NSOrderedSet(std::span<NSObject* const> objects) : NSOrderedSet() {
  members_.reserve(objects.size());
  for (NSObject* object : objects) {
    if (!object) throwNullArgument(*this, "initWithObjects:", "object");
    insert(object, order_->count());
  }
}

NSOrderedSet::~NSOrderedSet() = default;

Strong<NSOrderedSet> NSOrderedSet::orderedSetWithArray(ClassOf<NSOrderedSet> self, NSArray* array) {
  return alloc(self)->initWithArray(array);
}

Strong<NSOrderedSet> NSOrderedSet::initWithArray(const NSArray* array) {
  if (array) {
    members_.reserve(array->count());
    for (NSObject* object : each(array)) insert(object, order_->count());
  }
  return Strong<NSOrderedSet>(this);
}

void NSOrderedSet::insert(NSObject* object, std::uint64_t index) {
  if (members_.insert({object})) order_->insertObject(object, index);
}

void NSOrderedSet::remove(std::uint64_t index) {
  const Strong<NSObject> object = order_->objectAtIndex(index);
  members_.erase(*object);
  order_->removeObjectAtIndex(index);
}

std::uint64_t NSOrderedSet::count() const { return order_->count(); }

Strong<NSObject> NSOrderedSet::objectAtIndex(std::uint64_t index) const {
  if (index >= order_->count()) throwIndexBeyond(*this, "objectAtIndex:", index, order_->count());
  return order_->objectAtIndex(index);
}

std::uint64_t NSOrderedSet::indexOfObject(const NSObject* object) const {
  const Entry* entry = object ? members_.find(*object) : nullptr;
  if (!entry) return kNotFound;
  const NSObject* const wanted = entry->key;
  std::uint64_t found = kNotFound;
  order_->visit([&](NSObject* element, std::uint64_t index) {
    if (element == wanted) found = index;
    return element != wanted;
  });
  return found;
}

Strong<NSArray> NSOrderedSet::array() const {
  // The elements of an immutable set of the layer's own class stay as they are: a snapshot, in constant time, shows them.
  if (classOf(*this) == classOf<NSOrderedSet>()) return order_->snapshot();
  return make<OrderedSetArray>(*this);
}

std::uint64_t NSOrderedSet::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                        std::span<Strong<NSObject>> slots) const {
  if (classOf(*this) == classOf<NSOrderedSet>() || classOf(*this) == classOf<NSMutableOrderedSet>()) {
    return order_->countByEnumeratingWithState(state, slots);
  }
  static constexpr std::uint64_t kNever = 0;
  state.mutations = &kNever;
  state.items = slots.data();
  std::uint64_t filled = 0;
  for (const std::uint64_t end = count(); filled < slots.size() && state.state < end; ++filled) {
    slots[filled] = objectAtIndex(state.state++);
  }
  return filled;
}

bool NSOrderedSet::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* set = cast<NSOrderedSet>(other);
  return set && array()->isEqual(set->array());
}

std::uint64_t NSOrderedSet::hash() const { return array()->hash(); }

Strong<NSString> NSOrderedSet::description() const { return makeString("{" + utf8(*array()->description()) + "}"); }

Strong<NSObject> NSOrderedSet::copy() const { return Strong<NSObject>(const_cast<NSOrderedSet*>(this)); }

Strong<NSObject> NSOrderedSet::mutableCopy() const { return make<NSMutableOrderedSet>()->initWithArray(array()); }

void NSMutableOrderedSet::insertObject(NSObject* object, std::uint64_t index) {
  if (!object) throwNullArgument(*this, "insertObject:atIndex:", "object");
  if (index > NSOrderedSet::count()) throwIndexBeyond(*this, "insertObject:atIndex:", index, NSOrderedSet::count());
  insert(object, index);
}

void NSMutableOrderedSet::removeObjectAtIndex(std::uint64_t index) {
  if (index >= NSOrderedSet::count()) throwIndexBeyond(*this, "removeObjectAtIndex:", index, NSOrderedSet::count());
  remove(index);
}

void NSMutableOrderedSet::removeObject(const NSObject* object) {
  if (const std::uint64_t index = indexOfObject(object); index != kNotFound) removeObjectAtIndex(index);
}

Strong<NSObject> NSMutableOrderedSet::copy() const { return make<NSOrderedSet>()->initWithArray(array()); }

template ClassObject* buildClass<NSOrderedSet>();
template ClassObject* buildClass<NSMutableOrderedSet>();

}  // namespace platform
}  // namespace havrin
