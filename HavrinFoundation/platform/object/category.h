// SPDX-License-Identifier: Apache-2.0
// Categories: methods added to a class of another library, and the image that lists them.
//
//   namespace {
//   Strong<NSArray> select(NSArray& self, Predicate predicate) { ... }
//   constexpr MethodRow kRows[] = {row<NSArray, "select:", select>()};
//   }
//   extern constinit const Category kArrayBlocks{classObject<NSArray>, "Blocks", kRows, {}};
//
// The rows are constant data; nothing runs until the image's `Loader` attaches them, which is the one thing an image
// runs at load. Functions take the receiver by reference (class methods: its `ClassOf`) and then what the message
// declares. The receiver and the arguments are kept alive for the call (call_hold.h), but for `unheldRow`.
//
// Where two categories add the same selector to one class, the one attached last answers; within a program that is the
// order in which its libraries are loaded, and within an image the order of its list. An image that has attached its
// categories stays loaded until the process ends, also when its library is closed.
//
// A category in a static library is dropped by the linker unless something refers to it. Its messages header does:
//
//   extern const Image kPlayerImage;                                 // defined beside its Loader
//   namespace { [[gnu::used]] const Image* const kPlayerImageIsNeeded = &kPlayerImage; }
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/call_hold.h>
#include <HavrinFoundation/platform/object/message.h>
#include <HavrinFoundation/platform/object/observed.h>

#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

/// Methods for one class, as constant data that lives as long as the process.
struct Category {
  ClassObject* (*cls)();
  std::string_view name;
  std::span<const MethodRow> rows;
  std::span<const MethodRow> classRows;
};

class ConstantString;

/// What one library brings: its constant strings, its categories, and the functions that run once those are attached.
struct Image {
  std::string_view name;
  const unsigned char* identification;  // text that tools search a file for, or null
  std::span<const ConstantString* const> strings;
  std::span<const Category* const> categories;
  std::span<void (*const)()> initialisers;
  /// Whether its methods run no code of the program of their own, as the library's do: its categories leave leaf classes
  /// leaves.
  bool isLibrary = false;
};

/// Attaches an image when it is constructed: one per image, at namespace scope.
class HAVRIN_EXPORT Loader {
 public:
  explicit Loader(const Image& image);
};

}  // namespace platform

namespace detail {

// The twin of a setter that the notifying class of an observed object answers. The setter of the class below is called,
// so that a subclass's override takes part inside the notification.
template <Text Name, class Arguments>
void notifyingSetter(NSObject* self, Arguments value) {
  struct Change {
    NSObject* self;
    Arguments& value;
  } change{self, value};
  const auto apply = [](void* context) {
    auto& [object, argument] = *static_cast<Change*>(context);
    ClassObject* below = dispatchClass(object)->shown();
    Implementation setter = below->cached(selector<Name>.number.load(std::memory_order_relaxed));
    if (!setter) setter = below->resolve(selector<Name>, typeid(void(Arguments)), object);
    reinterpret_cast<void (*)(NSObject*, Arguments)>(setter)(object, std::forward<Arguments>(argument));
  };
  // The class has changed back when the object is being destroyed.
  const Notifications* const notifications = dispatchClass(self)->notifications();
  notifications ? notifications->change(self, selector<Name>, apply, &change) : apply(&change);
}

template <Text Name, class FunctionType>
struct Twin {
  static constexpr bool exists = false;
};
template <Text Name, class Arguments>
requires(isSetterSelector(Name.view())) struct Twin<Name, void(Arguments)> {
  static constexpr bool exists = true;
  static Implementation get() { return reinterpret_cast<Implementation>(&notifyingSetter<Name, Arguments>); }
};

// Answers the function Trampoline::call, or its notifying twin.
template <Text Name, class FunctionType, class Trampoline>
Implementation implementationOf(bool observed) {
  if constexpr (Twin<Name, FunctionType>::exists) {
    if (observed) return Twin<Name, FunctionType>::get();
  }
  return reinterpret_cast<Implementation>(&Trampoline::call);
}

template <class ClassType, auto Function, class FunctionType>
struct CategoryTrampoline;
template <class ClassType, auto Function, class Result, class... Arguments>
struct CategoryTrampoline<ClassType, Function, Result(Arguments...)> {
  static constexpr bool fits = std::is_invocable_r_v<Result, decltype(Function), ClassType&, Arguments...>;
  static Result call(NSObject* self, Arguments... arguments) {
    return callHeld<Arguments...>(
        [&](auto&&... held) -> Result {
          return Function(static_cast<ClassType&>(*self), std::forward<decltype(held)>(held)...);
        },
        mayRunProgram(self), self, arguments...);
  }
};
template <class ClassType, auto Function, class FunctionType>
struct UnheldTrampoline;
template <class ClassType, auto Function, class Result, class... Arguments>
struct UnheldTrampoline<ClassType, Function, Result(Arguments...)> {
  static constexpr bool fits = std::is_invocable_r_v<Result, decltype(Function), ClassType&, Arguments...>;
  static Result call(NSObject* self, Arguments... arguments) {
    return Function(static_cast<ClassType&>(*self), std::forward<Arguments>(arguments)...);
  }
};
template <class ClassType, auto Function, class FunctionType>
struct ClassTrampoline;
template <class ClassType, auto Function, class Result, class... Arguments>
struct ClassTrampoline<ClassType, Function, Result(Arguments...)> {
  static constexpr bool fits = std::is_invocable_r_v<Result, decltype(Function), ClassOf<ClassType>, Arguments...>;
  static Result call(NSObject* self, Arguments... arguments) {
    return callHeld<Arguments...>(
        [&, function = Function](auto&&... held) -> Result {
          return function(ClassOf<ClassType>(static_cast<ClassObject*>(self)), std::forward<decltype(held)>(held)...);
        },
        !static_cast<ClassObject*>(self)->isLeaf(), nullptr, arguments...);  // a class outlives every call
  }
};

template <Text Name, class Declaration, class Trampoline>
constexpr MethodRow rowOf() {
  static_assert(Trampoline::fits, "row: the function differs from the declared message");
  return {&selector<Name>, &implementationOf<Name, typename Declaration::Type, Trampoline>,
          &SignatureInfoOf<typename Declaration::Type>::info};
}

}  // namespace detail

inline namespace platform {

/// The row that gives instances of ClassType the method `Function` for the declared message Name.
template <class ClassType, Text Name, auto Function>
[[nodiscard]] constexpr MethodRow row() {
  using Declaration = detail::MessageOf<ClassType, Name>;
  static_assert(!std::is_same_v<Declaration, detail::NotFound>, "row: the class declares no such message");
  return detail::rowOf<Name, Declaration,
                       detail::CategoryTrampoline<ClassType, Function, typename Declaration::Type>>();
}
/// The same, and nothing is kept alive for the call: for a function that holds what it needs, where two counts matter.
template <class ClassType, Text Name, auto Function>
[[nodiscard]] constexpr MethodRow unheldRow() {
  using Declaration = detail::MessageOf<ClassType, Name>;
  static_assert(!std::is_same_v<Declaration, detail::NotFound>, "unheldRow: the class declares no such message");
  return detail::rowOf<Name, Declaration, detail::UnheldTrampoline<ClassType, Function, typename Declaration::Type>>();
}
/// The row that gives the class ClassType itself the method `Function` for the declared class message Name.
template <class ClassType, Text Name, auto Function>
[[nodiscard]] constexpr MethodRow classRow() {
  using Declaration = detail::ClassMessageOf<ClassType, Name>;
  static_assert(!std::is_same_v<Declaration, detail::NotFound>, "classRow: the class declares no such message");
  return detail::rowOf<Name, Declaration, detail::ClassTrampoline<ClassType, Function, typename Declaration::Type>>();
}

}  // namespace platform
}  // namespace havrin
