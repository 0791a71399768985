// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/collections/set_blocks_messages.h>

#include <HavrinFoundation/platform/object/argument_errors.h>

namespace havrin {

namespace {

Strong<NSSet> filtered(NSSet& self, ElementPredicate predicate, bool wanted) {
  const Strong<NSSet> passing =
      self.objectsPassingTest([&](NSObject* element, bool&) { return predicate(element) == wanted; });
  return send<"setWithSet:">(classOf(self), passing);
}

Strong<NSSet> selectInSet(NSSet& self, ElementPredicate predicate) {
  if (!predicate) throwNullArgument(self, "select:", "block");
  return filtered(self, predicate, true);
}

Strong<NSSet> rejectInSet(NSSet& self, ElementPredicate predicate) {
  if (!predicate) throwNullArgument(self, "reject:", "block");
  return filtered(self, predicate, false);
}

Strong<NSArray> mapSet(NSSet& self, ElementTransform transform) { return send<"map:">(self.allObjects(), transform); }

Strong<NSArray> compactMapSet(NSSet& self, ElementTransform transform) {
  return send<"compactMap:">(self.allObjects(), transform);
}

Strong<NSOrderedSet> selectInOrderedSet(NSOrderedSet& self, ElementPredicate predicate) {
  return send<"orderedSetWithArray:">(classOf(self), send<"select:">(self.array(), predicate));
}

Strong<NSOrderedSet> rejectInOrderedSet(NSOrderedSet& self, ElementPredicate predicate) {
  return send<"orderedSetWithArray:">(classOf(self), send<"reject:">(self.array(), predicate));
}

Strong<NSArray> mapOrderedSet(NSOrderedSet& self, ElementTransform transform) {
  return send<"map:">(self.array(), transform);
}

Strong<NSArray> compactMapOrderedSet(NSOrderedSet& self, ElementTransform transform) {
  return send<"compactMap:">(self.array(), transform);
}

constexpr MethodRow kSetRows[] = {row<NSSet, "select:", selectInSet>(), row<NSSet, "reject:", rejectInSet>(),
                                  row<NSSet, "map:", mapSet>(), row<NSSet, "compactMap:", compactMapSet>()};
constexpr MethodRow kOrderedSetRows[] = {
    row<NSOrderedSet, "select:", selectInOrderedSet>(), row<NSOrderedSet, "reject:", rejectInOrderedSet>(),
    row<NSOrderedSet, "map:", mapOrderedSet>(), row<NSOrderedSet, "compactMap:", compactMapOrderedSet>()};

}  // namespace

extern constinit const Category kSetBlocks{classObject<NSSet>, "HavrinFoundation", kSetRows, {}};
extern constinit const Category kOrderedSetBlocks{classObject<NSOrderedSet>, "HavrinFoundation", kOrderedSetRows, {}};

}  // namespace havrin
