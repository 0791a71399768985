// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/set.h>

#include <HavrinFoundation/platform/foundation/collection_hash.h>
#include <HavrinFoundation/platform/foundation/collection_nesting.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/string.h>

#include <string>
#include <utility>

namespace havrin {
inline namespace platform {

NSSet::NSSet(std::span<NSObject* const> objects) {
  elements_.reserve(objects.size());
  for (NSObject* object : objects) {
    if (!object) throwNullArgument(*this, "initWithObjects:", "object");
    elements_.insert({object});
  }
}

NSSet::~NSSet() = default;

Strong<NSSet> NSSet::setWithSet(ClassOf<NSSet> self, NSSet* set) { return alloc(self)->initWithSet(set); }

Strong<NSSet> NSSet::initWithSet(const NSSet* set) {
  if (set) {
    elements_.reserve(set->count());
    for (NSObject* object : each(set)) elements_.insert({object});
  }
  return Strong<NSSet>(this);
}

// Whether the table is all there is to it: a subclass of the program may answer member: by itself.
bool NSSet::isPlain() const {
  const ClassObject* cls = dispatchClass(this)->shown();
  return cls == classObject<NSSet>() || cls == classObject<NSMutableSet>();
}

std::uint64_t NSSet::count() const { return elements_.size(); }

Strong<NSObject> NSSet::member(const NSObject* object) const {
  const Entry* entry = object ? elements_.find(*object) : nullptr;
  return entry ? entry->key : nullptr;
}

Strong<NSArray> NSSet::allObjects() const {
  ArrayBuilder objects(elements_.size());
  elements_.forEach([&](const Entry& entry) {
    objects.add(entry.key);
    return true;
  });
  return objects.finish();
}

Strong<NSSet> NSSet::objectsPassingTest(Test test) const {
  if (!test) throwNullArgument(*this, "objectsPassingTest:", "test");
  const Strong<NSSet> hold(const_cast<NSSet*>(this));
  auto passing = make<NSSet>();
  bool stop = false;
  for (NSObject* object : each(this)) {
    if (test(object, stop)) passing->elements_.insert({object});
    if (stop) break;
  }
  return passing;
}

std::uint64_t NSSet::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                 std::span<Strong<NSObject>> slots) const {
  state.mutations = &mutations();
  state.items = slots.data();
  if (isPlain()) return elements_.fill(slots, state.state);
  std::uint64_t filled = 0;
  const Strong<NSArray> objects = allObjects();
  const std::uint64_t end = objects->count();
  while (filled < slots.size() && state.state < end) slots[filled++] = objects->objectAtIndex(state.state++);
  return filled;
}

const std::uint64_t& NSSet::mutations() const {
  static constexpr std::uint64_t kNever = 0;
  return kNever;
}

bool NSSet::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const auto* set = cast<NSSet>(other);
  if (!set || set->count() != count()) return false;
  const CollectionDepth depth;
  if (depth.isTooDeep()) return equalCollections(*this, *set);
  for (NSObject* object : each(this)) {
    if (!set->containsObject(object)) return false;
  }
  return true;
}

// A sum, since equal sets may have their elements in another order.
std::uint64_t NSSet::hash() const {
  std::uint64_t hash = count();
  for (NSObject* object : each(this)) hash += mixedHash(elementHash(object));
  return hash;
}

Strong<NSString> NSSet::description() const {
  const CollectionDepth depth;
  if (depth.isTooDeep()) return makeString("{...}");
  std::string text = "{";
  for (NSObject* object : each(this)) {
    if (text.size() > 1) text += ", ";
    text += utf8(*object->description());
  }
  return makeString(text + "}");
}

Strong<NSObject> NSSet::copy() const { return Strong<NSObject>(const_cast<NSSet*>(this)); }

Strong<NSObject> NSSet::mutableCopy() const { return make<NSMutableSet>()->initWithSet(this); }

void NSMutableSet::addObject(NSObject* object) {
  if (!object) throwNullArgument(*this, "addObject:", "object");
  if (elements_.insert({object})) ++mutations_;
}

void NSMutableSet::removeObject(const NSObject* object) {
  if (object && elements_.erase(*object)) ++mutations_;
}

void NSMutableSet::removeAllObjects() {
  if (isPlain()) {
    const ObjectTable<Entry> gone = std::exchange(elements_, {});  // released when the table is empty
    ++mutations_;
    return;
  }
  const Strong<NSArray> objects = allObjects();
  for (NSObject* object : each(objects)) removeObject(object);
}

Strong<NSObject> NSMutableSet::copy() const { return make<NSSet>()->initWithSet(this); }

template ClassObject* buildClass<NSSet>();
template ClassObject* buildClass<NSMutableSet>();

}  // namespace platform
}  // namespace havrin
