// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/foundation/array.h>

#include <HavrinFoundation/platform/foundation/array_buffer.h>
#include <HavrinFoundation/platform/foundation/collection_hash.h>
#include <HavrinFoundation/platform/foundation/collection_nesting.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/string.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

constinit const std::uint64_t kNeverMutated = 0;

Strong<NSObject> held(const NSObject* object) { return const_cast<NSObject*>(object); }

Strong<NSArray> emptyArray() {
  static NSArray* const kEmpty = make<NSArray>().detach();
  return kEmpty;
}

}  // namespace

NSArray::~NSArray() {
  if (buffer_) {
    buffer_->end(length_);
  } else {
    std::destroy_n(slots_, length_);
  }
}

void NSArray::adopt(ArrayBuffer* buffer, std::uint64_t length) noexcept {
  buffer_ = buffer;
  slots_ = buffer ? buffer->slots() : nullptr;
  length_ = length;
}

const std::uint64_t& NSArray::mutations() const { return kNeverMutated; }

Strong<NSObject> NSArray::objectAtIndex(std::uint64_t index) const {
  if (index >= length_) throwIndexBeyond(*this, "objectAtIndex:", index, length_);
  return slots_[index];
}

Strong<NSObject> NSArray::objectAtIndexedSubscript(std::uint64_t index) const { return objectAtIndex(index); }

Strong<NSObject> NSArray::firstObject() const { return count() == 0 ? nullptr : objectAtIndex(0); }

Strong<NSObject> NSArray::lastObject() const {
  const std::uint64_t number = count();
  return number == 0 ? nullptr : objectAtIndex(number - 1);
}

bool NSArray::containsObject(const NSObject* object) const { return indexOfObject(object) != kNotFound; }

std::uint64_t NSArray::indexOfObject(const NSObject* object) const {
  if (!object) return kNotFound;
  const auto hold = held(this);
  const auto holdObject = held(object);
  std::uint64_t found = kNotFound;
  visit([&](NSObject* element, std::uint64_t index) {
    if (element == object || object->isEqual(element)) found = index;
    return found == kNotFound;
  });
  return found;
}

std::uint64_t NSArray::indexOfObjectPassingTest(Test test) const {
  if (!test) throwNullArgument(*this, "indexOfObjectPassingTest:", "block");
  const auto hold = held(this);
  std::uint64_t found = kNotFound;
  visit([&](NSObject* element, std::uint64_t index) {
    bool stop = false;
    if (test(element, index, stop)) found = index;
    return found == kNotFound && !stop;
  });
  return found;
}

Strong<NSIndexSet> NSArray::indexesOfObjectsPassingTest(Test test) const {
  if (!test) throwNullArgument(*this, "indexesOfObjectsPassingTest:", "block");
  const auto hold = held(this);
  std::vector<NSRange> passing;
  visit([&](NSObject* element, std::uint64_t index) {
    bool stop = false;
    if (test(element, index, stop)) appendIndex(passing, index);
    return !stop;
  });
  return make<NSIndexSet>(std::move(passing));
}

void NSArray::enumerateObjectsUsingBlock(
    BlockView<void(NSObject* object, std::uint64_t index, bool& stop)> block) const {
  if (!block) throwNullArgument(*this, "enumerateObjectsUsingBlock:", "block");
  const auto hold = held(this);
  visit([&](NSObject* element, std::uint64_t index) {
    bool stop = false;
    block(element, index, stop);
    return !stop;
  });
}

// A new array of the elements and `more` others, which `fill` constructs: in the same buffer where the slots behind the
// elements are free.
template <class Fill>
Strong<NSArray> NSArray::adding(std::uint64_t more, Fill fill) const {
  auto result = make<NSArray>();
  ArrayBuffer* buffer = buffer_;
  Slot* free = buffer ? buffer->claim(length_, more) : nullptr;
  if (!free) {
    buffer = ArrayBuffer::copyOf(slots_, length_, ArrayBuffer::grownCapacity(length_ + more));
    buffer->resizeSole(length_, length_ + more);
    free = buffer->slots() + length_;
  }
  fill(free);
  result->adopt(buffer, length_ + more);
  return result;
}

Strong<NSArray> NSArray::arrayByAddingObject(NSObject* object) const {
  if (!object) throwNullArgument(*this, "arrayByAddingObject:", "object");
  if (!isPlain()) return snapshot()->arrayByAddingObject(object);
  return adding(1, [&](Slot* free) noexcept { new (free) Slot(object); });
}

Strong<NSArray> NSArray::arrayByAddingObjectsFromArray(const NSArray* array) const {
  if (!array || array->count() == 0) return snapshot();
  if (!isPlain()) return snapshot()->arrayByAddingObjectsFromArray(array);
  const Strong<NSArray> more = array->snapshot();
  return adding(more->length_,
                [&](Slot* free) noexcept { std::uninitialized_copy_n(more->slots_, more->length_, free); });
}

Strong<NSArray> NSArray::subarrayWithRange(NSRange range) const {
  if (!isWithin(range, count())) throwRangeBeyond(*this, "subarrayWithRange:", range, count());
  ArrayBuilder builder(range.length);
  const bool plain = isPlain();
  for (std::uint64_t i = range.location; i < range.location + range.length; ++i) {
    builder.add(plain ? slots_[i] : objectAtIndex(i));
  }
  return builder.finish();
}

Strong<NSArray> NSArray::objectsAtIndexes(const NSIndexSet* indexes) const {
  if (!indexes) throwNullArgument(*this, "objectsAtIndexes:", "index set");
  if (indexes->count() != 0 && indexes->lastIndex() >= count()) {
    throwIndexBeyond(*this, "objectsAtIndexes:", indexes->lastIndex(), count());
  }
  ArrayBuilder builder(indexes->count());
  const bool plain = isPlain();
  for (const NSRange& range : indexes->ranges()) {
    for (std::uint64_t i = range.location; i < range.location + range.length; ++i) {
      builder.add(plain ? slots_[i] : objectAtIndex(i));
    }
  }
  return builder.finish();
}

bool NSArray::isEqual(const NSObject* other) const {
  if (this == other) return true;
  const NSArray* array = cast<NSArray>(other);
  if (!array || array->count() != count()) return false;
  const CollectionDepth depth;
  if (depth.isTooDeep()) return equalCollections(*this, *array);
  const auto hold = held(this);
  const Strong<NSArray> theirs = array->snapshot();
  if (theirs->length_ != count()) return false;
  bool equal = true;
  visit([&](NSObject* element, std::uint64_t index) {
    const NSObject* their = theirs->slots_[index];
    equal = element == their || element->isEqual(their);
    return equal;
  });
  return equal;
}

std::uint64_t NSArray::hash() const {
  constexpr std::uint64_t kHashed = 16;
  std::uint64_t hash = count();
  visit([&hash](const NSObject* object, std::uint64_t index) {
    hash = hash * 31 + elementHash(object);
    return index + 1 < kHashed;
  });
  return mixedHash(hash);
}

Strong<NSString> NSArray::description() const {
  const CollectionDepth depth;
  if (depth.isTooDeep()) return makeString("(...)");
  const auto hold = held(this);
  std::string text = "(";
  visit([&](NSObject* element, std::uint64_t index) {
    if (index != 0) text += ", ";
    text += element == this ? "(this array)" : utf8(*element->description());
    return true;
  });
  return makeString(text + ")");
}

Strong<NSObject> NSArray::copy() const { return snapshot(); }

Strong<NSObject> NSArray::mutableCopy() const {
  const Strong<NSArray> present = snapshot();
  auto result = make<NSMutableArray>();
  if (present->length_ != 0) {
    result->adopt(ArrayBuffer::copyOf(present->slots_, present->length_, present->length_), present->length_);
  }
  return result;
}

// The present objects of a mutable array or a subclass.
Strong<NSArray> NSArray::copied() const {
  if (isExactly<NSMutableArray>()) {
    if (length_ == 0) return emptyArray();
    if (length_ < buffer_->capacity() / 2)
      return makeArray(elements());  // most of the buffer would be kept for nothing
    auto result = make<NSArray>();
    buffer_->share(length_);
    result->adopt(buffer_, length_);
    return result;
  }
  const std::uint64_t number = count();
  ArrayBuilder builder(number);
  for (std::uint64_t i = 0; i < number; ++i) builder.add(objectAtIndex(i));
  return builder.finish();
}

std::uint64_t NSArray::countByEnumeratingWithState(NSFastEnumerationState& state,
                                                   std::span<Strong<NSObject>> slots) const {
  state.mutations = &mutations();
  if (isPlain()) {
    if (state.state++ != 0) return 0;
    state.items = slots_;
    return length_;
  }
  const std::uint64_t end = count();
  std::uint64_t filled = 0;
  while (filled < slots.size() && state.state < end) slots[filled++] = objectAtIndex(state.state++);
  state.items = slots.data();
  return filled;
}

ArrayBuilder::ArrayBuilder(std::uint64_t expected) : capacity_(expected) {
  if (expected > std::numeric_limits<std::int64_t>::max() / sizeof(Strong<NSObject>)) throw std::bad_alloc();
  if (expected != 0) memory_ = NSArray::allocateUnborn(sizeof(NSArray) + expected * sizeof(Strong<NSObject>));
}

ArrayBuilder::~ArrayBuilder() {
  if (!memory_) return;
  std::destroy_n(room(), count_);
  NSArray::freeUnborn(memory_);
}

void ArrayBuilder::grow() {
  const std::uint64_t capacity = capacity_ < 4 ? 8 : capacity_ * 2;
  const std::size_t size = sizeof(NSArray) + capacity * sizeof(Strong<NSObject>);
  memory_ = memory_ ? NSArray::resizeUnborn(memory_, size) : NSArray::allocateUnborn(size);
  capacity_ = capacity;
}

Strong<NSArray> ArrayBuilder::finish() {
  holdNoted();
  noted_ = 0;
  if (count_ == 0) return emptyArray();
  constexpr std::uint64_t kWorthACall = 32;
  if (capacity_ - count_ >= kWorthACall) {
    memory_ = NSArray::resizeUnborn(memory_, sizeof(NSArray) + count_ * sizeof(Strong<NSObject>));
  }
  capacity_ = 0;
  return Strong<NSArray>::adopt(::new (std::exchange(memory_, nullptr))
                                    NSArray(NSArray::Behind{}, std::exchange(count_, 0)));
}

void ArrayBuilder::throwNull() { throw NSException(NSInvalidArgumentException, "an array cannot hold null"); }

Strong<NSArray> makeArray(std::initializer_list<NSObject*> objects) {
  return makeArray(std::span<NSObject* const>(objects.begin(), objects.size()));
}

template ClassObject* buildClass<NSArray>();
template ClassObject* buildClass<NSMutableArray>();

}  // namespace platform
}  // namespace havrin
