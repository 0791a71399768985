// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/array_buffer.h>
#include <HavrinFoundation/platform/object/argument_errors.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

using Slot = Strong<NSObject>;

// A Strong is its pointer: moving the bytes moves the share, and leaves memory to construct in.
void relocate(Slot* to, Slot* from, std::uint64_t number) noexcept {
  std::memmove(static_cast<void*>(to), static_cast<const void*>(from), number * sizeof(Slot));
}

}  // namespace

// Objects that leave the array are released last: their destructors may come back to it.

NSMutableArray::NSMutableArray(std::uint64_t capacity) {
  if (capacity != 0) adopt(ArrayBuffer::make(capacity), 0);
}

// Makes the slots this array's alone, with room for `capacity` of them.
void NSMutableArray::makeWritable(std::uint64_t capacity) {
  if (!buffer_) {
    adopt(ArrayBuffer::make(ArrayBuffer::grownCapacity(capacity)), 0);
  } else if (!buffer_->isSole()) {
    ArrayBuffer* own = ArrayBuffer::copyOf(slots_, length_, std::max(capacity, buffer_->capacity()));
    buffer_->end(length_);
    adopt(own, length_);
  } else if (buffer_->capacity() < capacity) {
    adopt(buffer_->grownSole(length_, ArrayBuffer::grownCapacity(capacity)), length_);
  }
}

void NSMutableArray::resize(std::uint64_t length) noexcept {
  buffer_->resizeSole(length_, length);
  length_ = length;
}

// Drops the elements from `length` on. Never copies the storage, even if it is shared.
void NSMutableArray::shorten(std::uint64_t length) noexcept {
  ++mutations_;
  const std::uint64_t before = std::exchange(length_, length);
  buffer_->share(length);
  buffer_->end(before);
}

// Adds `more` elements at the end, which `fill` constructs.
template <class Fill>
void NSMutableArray::append(std::uint64_t more, Fill fill) {
  const std::uint64_t length = length_ + more;
  if (Slot* claimed = buffer_ && !buffer_->isSole() ? buffer_->claim(length_, more) : nullptr) {
    fill(claimed);
    buffer_->end(std::exchange(length_, length));
  } else {
    makeWritable(length);
    fill(slots_ + length_);
    resize(length);
  }
  ++mutations_;
}

void NSMutableArray::insertObject(NSObject* object, std::uint64_t index) {
  if (!object) throwNullArgument(*this, "insertObject:atIndex:", "object");
  if (index > length_) throwIndexBeyond(*this, "insertObject:atIndex:", index, length_);
  if (index == length_) {
    append(1, [&](Slot* free) noexcept { new (free) Slot(object); });
    return;
  }
  makeWritable(length_ + 1);
  relocate(slots_ + index + 1, slots_ + index, length_ - index);
  new (slots_ + index) Slot(object);
  resize(length_ + 1);
  ++mutations_;
}

void NSMutableArray::removeObjectAtIndex(std::uint64_t index) {
  if (index >= length_) throwIndexBeyond(*this, "removeObjectAtIndex:", index, length_);
  if (index == length_ - 1) {
    shorten(index);
    return;
  }
  makeWritable(length_);
  const Slot removed = std::move(slots_[index]);
  relocate(slots_ + index, slots_ + index + 1, length_ - index - 1);
  resize(length_ - 1);
  ++mutations_;
}

void NSMutableArray::replaceObjectAtIndex(std::uint64_t index, NSObject* object) {
  if (!object) throwNullArgument(*this, "replaceObjectAtIndex:withObject:", "object");
  if (index >= length_) throwIndexBeyond(*this, "replaceObjectAtIndex:withObject:", index, length_);
  makeWritable(length_);
  const Slot replaced = std::exchange(slots_[index], Slot(object));
  ++mutations_;
}

void NSMutableArray::addObject(NSObject* object) {
  if (!object) throwNullArgument(*this, "addObject:", "object");
  if (isExactly<NSMutableArray>()) {
    append(1, [&](Slot* free) noexcept { new (free) Slot(object); });
  } else {
    insertObject(object, count());
  }
}

void NSMutableArray::addObjectsFromArray(const NSArray* array) {
  if (!array) return;
  const Strong<NSArray> objects = array->snapshot();  // which may be this array's own
  if (!isExactly<NSMutableArray>()) {
    for (const Slot& object : objects->elements()) insertObject(object, count());
  } else if (!objects->elements().empty()) {
    append(objects->length_,
           [&](Slot* free) noexcept { std::uninitialized_copy_n(objects->slots_, objects->length_, free); });
  }
}

void NSMutableArray::exchangeObjectAtIndex(std::uint64_t index, std::uint64_t otherIndex) {
  const std::uint64_t number = count();
  if (std::max(index, otherIndex) >= number) {
    throwIndexBeyond(*this, "exchangeObjectAtIndex:withObjectAtIndex:", std::max(index, otherIndex), number);
  }
  if (index == otherIndex) return;
  if (isExactly<NSMutableArray>()) {
    makeWritable(length_);
    std::swap(slots_[index], slots_[otherIndex]);
    ++mutations_;
  } else {
    const Slot first = objectAtIndex(index);
    const Slot second = objectAtIndex(otherIndex);
    replaceObjectAtIndex(index, second);
    replaceObjectAtIndex(otherIndex, first);
  }
}

void NSMutableArray::removeLastObject() {
  if (const std::uint64_t number = count()) removeObjectAtIndex(number - 1);
}

void NSMutableArray::removeObjectsAtIndexes(const NSIndexSet* indexes) {
  if (!indexes) throwNullArgument(*this, "removeObjectsAtIndexes:", "index set");
  if (indexes->count() == 0) return;
  if (indexes->lastIndex() >= count()) {
    throwIndexBeyond(*this, "removeObjectsAtIndexes:", indexes->lastIndex(), count());
  }
  if (!isExactly<NSMutableArray>()) {
    const Strong<NSObject> hold(const_cast<NSIndexSet*>(indexes));
    const auto ranges = indexes->ranges();
    // NOLINTNEXTLINE(modernize-loop-convert): views in reverse do not compile with clang 14
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
      for (std::uint64_t i = range->length; i-- > 0;) removeObjectAtIndex(range->location + i);
    }
    return;
  }
  std::vector<Slot> removed;
  removed.reserve(indexes->count());
  makeWritable(length_);
  std::uint64_t kept = indexes->firstIndex();
  const auto ranges = indexes->ranges();
  for (auto range = ranges.begin(); range != ranges.end(); ++range) {
    Slot* const from = slots_ + range->location;
    std::move(from, from + range->length, std::back_inserter(removed));
    const std::uint64_t next = range + 1 == ranges.end() ? length_ : range[1].location;
    const std::uint64_t gap = next - range->location - range->length;
    relocate(slots_ + kept, from + range->length, gap);
    kept += gap;
  }
  resize(kept);
  ++mutations_;
}

void NSMutableArray::removeObjectsInRange(NSRange range) {
  const std::uint64_t number = count();
  if (!isWithin(range, number)) throwRangeBeyond(*this, "removeObjectsInRange:", range, number);
  if (range.length == 0) return;
  if (isExactly<NSMutableArray>() && range.location + range.length == length_) {
    shorten(range.location);
  } else {
    removeObjectsAtIndexes(makeIndexSet(range));
  }
}

void NSMutableArray::removeAllObjects() {
  if (const std::uint64_t number = count()) removeObjectsInRange({0, number});
}

Strong<NSMutableArray> makeMutableArray(std::initializer_list<NSObject*> objects) {
  auto array = make<NSMutableArray>(objects.size());
  for (NSObject* object : objects) array->addObject(object);
  return array;
}

}  // namespace platform
}  // namespace havrin
