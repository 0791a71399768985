// SPDX-License-Identifier: Apache-2.0
// What keeps the receiver and the arguments of a message alive for the call. For the rows of members.h and category.h.
//
// A method may run code of the program: an override, a block, an observer, a destructor. Such code may drop the last
// reference to the receiver or to an argument. So a row holds them all, unless every object among them is of a leaf
// class, whose methods run no code of the program, and there is no block.
//
// Cost: a load and a test for each object; two atomic counts for each object where they are held.
#pragma once

#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/class.h>

#include <concepts>
#include <type_traits>
#include <utility>

namespace havrin {

namespace detail {

[[nodiscard]] inline bool mayRunProgram(const NSObject* object) noexcept {
  return object && !dispatchClass(object)->isLeaf();
}

/// An argument that has nothing to keep alive. Specialised for those that have. The method receives the argument, or the
/// result of `passed` where a specialisation has such a member.
template <class Argument>
struct Held {
  Held(const Argument&, bool) noexcept {}
  static bool mayRunProgram(const Argument&) noexcept { return false; }
};

template <std::derived_from<NSObject> Type>
struct Held<Type*> {
  Strong<NSObject> object;

  Held(Type* argument, bool hold) noexcept : object(hold ? const_cast<std::remove_cv_t<Type>*>(argument) : nullptr) {}
  static bool mayRunProgram(Type* argument) noexcept { return detail::mayRunProgram(argument); }
};

template <class Function>
struct Held<Block<Function>> {
  Block<Function> block;

  Held(const Block<Function>& argument, bool) noexcept : block(argument) {}
  static bool mayRunProgram(const Block<Function>&) noexcept { return true; }
  // The method reads this block: code that the call runs may assign to the caller's variable, or destroy it.
  [[nodiscard]] const Block<Function>& passed() const noexcept { return block; }
};

template <class Function>
struct Held<BlockView<Function>> {
  Block<Function> block;

  Held(const BlockView<Function>& argument, bool) noexcept : block(argument.share()) {}
  static bool mayRunProgram(const BlockView<Function>&) noexcept { return true; }
};

template <class Given, class Holder>
decltype(auto) passed(std::remove_reference_t<Given>& argument, const Holder& held) {
  if constexpr (requires { held.passed(); }) {
    return held.passed();
  } else {
    return std::forward<Given>(argument);
  }
}

/// Calls `body` with the arguments while they, and the receiver where there is one to hold, are held. `runsProgram`: the
/// method may run code of the program whatever the objects are.
template <class... Arguments, class Body>
decltype(auto) callHeld(Body&& body, bool runsProgram, NSObject* receiver,
                        std::remove_reference_t<Arguments>&... arguments) {
  const bool hold = runsProgram || (Held<std::remove_cvref_t<Arguments>>::mayRunProgram(arguments) || ...);
  const auto call = [&](const Held<NSObject*>&, const Held<std::remove_cvref_t<Arguments>>&... held) -> decltype(auto) {
    return body(detail::passed<Arguments>(arguments, held)...);
  };
  return call(Held<NSObject*>(receiver, hold), Held<std::remove_cvref_t<Arguments>>(arguments, hold)...);
}

}  // namespace detail

}  // namespace havrin
