// SPDX-License-Identifier: Apache-2.0
// A list of objects in a call, ended by null.
//
//   send<"arrayByCombiningElementsOfArrays:">(classOf<NSArray>(), nilTerminated(first, second, nullptr))
//
// The list ends at its first null, or at its end; nothing after the null is read.
#pragma once

#include <HavrinFoundation/platform/object/call_hold.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <span>
#include <vector>

namespace havrin {
inline namespace platform {

template <class... Arguments>
struct NilTerminatedValues {
  std::array<NSObject*, sizeof...(Arguments)> objects;
};

/// The objects of a list before its first null. Borrows them, and the list: for the length of the call that takes it.
template <std::derived_from<NSObject> ClassType>
class NilTerminated {
 public:
  template <class... Arguments>
  requires(std::convertible_to<Arguments, ClassType*>&&...)
      NilTerminated(const NilTerminatedValues<Arguments...>& values)
  noexcept : objects_(values.objects) {
    std::size_t count = 0;
    while (count < objects_.size() && objects_[count]) ++count;
    objects_ = objects_.first(count);
  }

  class Iterator {
   public:
    explicit Iterator(NSObject* const* object) noexcept : object_(object) {}
    ClassType* operator*() const noexcept { return static_cast<ClassType*>(*object_); }
    Iterator& operator++() noexcept {
      ++object_;
      return *this;
    }
    friend bool operator==(const Iterator&, const Iterator&) = default;

   private:
    NSObject* const* object_;
  };
  [[nodiscard]] Iterator begin() const noexcept { return Iterator(objects_.data()); }
  [[nodiscard]] Iterator end() const noexcept { return Iterator(objects_.data() + objects_.size()); }

 private:
  std::span<NSObject* const> objects_;
};

/// The list, from pointers, `Strong`s and null.
template <class... Arguments>
requires(std::convertible_to<const Arguments&, NSObject*>&&...)
    [[nodiscard]] NilTerminatedValues<Arguments...> nilTerminated(const Arguments&... objects) {
  return {{static_cast<NSObject*>(objects)...}};
}

}  // namespace platform

namespace detail {

template <class ClassType>
struct Held<NilTerminated<ClassType>> {
  std::vector<Strong<NSObject>> objects;

  Held(const NilTerminated<ClassType>& argument, bool hold) {
    if (!hold) return;
    for (NSObject* object : argument) objects.emplace_back(object);
  }
  static bool mayRunProgram(const NilTerminated<ClassType>& argument) {
    for (const NSObject* object : argument) {
      if (detail::mayRunProgram(object)) return true;
    }
    return false;
  }
};

}  // namespace detail

}  // namespace havrin
