// SPDX-License-Identifier: Apache-2.0
// Fast enumeration: how a collection hands out its objects in batches, and the loop over it.
//
//   for (NSObject* object : each(stations)) show(object);    NSException (Generic) if the collection changes meanwhile
//   for (Station* station : eachOf<Station>(stations)) show(station);   the same, and InvalidArgument for other objects
//
//   class Playlist : public Object<Playlist, NSObject>, public NSFastEnumeration {
//     std::uint64_t countByEnumeratingWithState(NSFastEnumerationState& state,
//                                               std::span<Strong<NSObject>> slots) const override { ... }
//   };
//
// Arrays, sets, ordered sets and dictionaries (their keys) are enumerable; application classes that implement the
// interface are so everywhere the library asks for one.
// Left out: enumerator objects, enumeration in reverse.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/call_hold.h>
#include <HavrinFoundation/platform/object/object.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

namespace havrin {
inline namespace platform {

/// The state shared by a collection and the loop over it. Zero at the first call.
struct NSFastEnumerationState {
  /// The position, in a form that the collection chooses.
  std::uint64_t state = 0;
  /// Set by the collection: the batch, in its own storage or in the slots it was lent.
  const Strong<NSObject>* items = nullptr;
  /// Set by the collection: a number that it changes with every mutation, and that lives as long as it does.
  const std::uint64_t* mutations = nullptr;
  /// Also the collection's own.
  std::array<std::uint64_t, 5> extra{};
};

/// Implemented by collections, as a base beside NSObject.
class HAVRIN_EXPORT NSFastEnumeration {
 public:
  /// Sets `state.items` to the next batch and `state.mutations`. `slots` has room for 16 objects, for collections that
  /// do not store them contiguously; it is the same at every call of one enumeration.
  /// Result: the number of objects in the batch; 0 ends the enumeration.
  virtual std::uint64_t countByEnumeratingWithState(NSFastEnumerationState& state,
                                                    std::span<Strong<NSObject>> slots) const = 0;

 protected:
  ~NSFastEnumeration() = default;
};

}  // namespace platform

namespace detail {

// A collection that is an argument is held as the object that it is a base of.
template <>
struct Held<NSFastEnumeration*> : Held<NSObject*> {
  Held(NSFastEnumeration* argument, bool hold) : Held<NSObject*>(dynamic_cast<NSObject*>(argument), hold) {}
  static bool mayRunProgram(const NSFastEnumeration* argument) noexcept { return argument != nullptr; }
};

}  // namespace detail

inline namespace platform {

/// Throws NSException (Generic), which says that `collection` was mutated during its enumeration. `collection` is null
/// if it is not an NSObject.
[[noreturn]] HAVRIN_EXPORT void throwMutatedWhileEnumerated(const NSObject* collection);

/// One enumeration of a collection, as the range of a `for` loop. Made by `each`.
class HAVRIN_EXPORT FastEnumeration {
 public:
  static constexpr std::size_t kSlots = 16;

  FastEnumeration(const NSFastEnumeration* collection, NSObject* held) : collection_(collection), held_(held) {}
  FastEnumeration(const FastEnumeration&) = delete;
  FastEnumeration& operator=(const FastEnumeration&) = delete;

  struct End {};
  class Iterator {
   public:
    explicit Iterator(FastEnumeration& enumeration) : enumeration_(enumeration) {}
    NSObject* operator*() const { return enumeration_.state_.items[enumeration_.next_]; }
    Iterator& operator++() {
      enumeration_.advance();
      return *this;
    }
    bool operator!=(End) const { return enumeration_.count_ != 0; }

   private:
    FastEnumeration& enumeration_;
  };
  /// Starts the enumeration; once only.
  [[nodiscard]] Iterator begin() {
    if (collection_) fetch();
    if (count_) mutations_ = *state_.mutations;
    return Iterator(*this);
  }
  [[nodiscard]] End end() const { return {}; }

 private:
  void advance() {
    if (*state_.mutations != mutations_) throwMutatedWhileEnumerated(held_);
    if (++next_ == count_) fetch();
  }
  void fetch() {
    next_ = 0;
    count_ = collection_->countByEnumeratingWithState(state_, slots_);
  }

  const NSFastEnumeration* collection_;
  Strong<NSObject> held_;
  NSFastEnumerationState state_;
  std::uint64_t mutations_ = 0;
  std::uint64_t next_ = 0;
  std::uint64_t count_ = 0;
  std::array<Strong<NSObject>, kSlots> slots_;
};

/// The objects of `collection`, for a `for` loop; empty for null. The objects are borrowed; the collection is retained.
/// Throws, from the step after the change: NSException (Generic) when the collection was mutated in the loop.
template <std::derived_from<NSFastEnumeration> ClassType>
[[nodiscard]] FastEnumeration each(const ClassType* collection) {
  if constexpr (std::derived_from<ClassType, NSObject>) {
    return FastEnumeration(collection, const_cast<ClassType*>(collection));
  } else {
    return FastEnumeration(collection, nullptr);
  }
}
template <std::derived_from<NSFastEnumeration> ClassType>
[[nodiscard]] FastEnumeration each(const Strong<ClassType>& collection) {
  return each(static_cast<const ClassType*>(collection.get()));
}
template <std::derived_from<NSFastEnumeration> ClassType>
[[nodiscard]] FastEnumeration each(const ClassType& collection) {
  return each(&collection);
}

/// One enumeration whose objects are of one class. Made by `eachOf`.
template <class Element>
class TypedEnumeration {
 public:
  class Iterator {
   public:
    explicit Iterator(FastEnumeration::Iterator place) : place_(place) {}
    Element* operator*() const { return &checkedReference<Element>(*place_); }
    Iterator& operator++() {
      ++place_;
      return *this;
    }
    bool operator!=(FastEnumeration::End end) const { return place_ != end; }

   private:
    FastEnumeration::Iterator place_;
  };

  template <class Collection>
  explicit TypedEnumeration(const Collection& collection) : all_(each(collection)) {}
  /// Starts the enumeration; once only.
  [[nodiscard]] Iterator begin() { return Iterator(all_.begin()); }
  [[nodiscard]] FastEnumeration::End end() const { return all_.end(); }

 private:
  FastEnumeration all_;
};

/// As `each`, with the class of the objects. Throws, besides: NSException (InvalidArgument) at an object of another class.
template <std::derived_from<NSObject> Element, class Collection>
[[nodiscard]] TypedEnumeration<Element> eachOf(const Collection& collection) {
  return TypedEnumeration<Element>(collection);
}

}  // namespace platform
}  // namespace havrin
