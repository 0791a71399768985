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
// declares. The receiver and the arguments are kept alive for the call (call_hold.h).
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

#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/call_hold.h>
#include <HavrinFoundation/platform/object/message.h>
#include <HavrinFoundation/platform/object/observed.h>

namespace havrin::inline platform {

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

namespace detail {

// The twin of a setter that the notifying class of an observed object answers. The setter of the class below is called,
// so that a subclass's override takes part inside the notification.
template <Text S, class A>
void notifyingSetter(NSObject* self, A value) {
  struct Change {
    NSObject* self;
    A& value;
  } change{self, value};
  notifyChange(
      self, selector<S>,
      [](void* context) {
        auto& [object, argument] = *static_cast<Change*>(context);
        ClassObject* below = dispatchClass(object)->shown();
        Implementation setter = below->cached(selector<S>.number.load(std::memory_order_relaxed));
        if (!setter) setter = below->resolve(selector<S>, typeid(void(A)), object);
        reinterpret_cast<void (*)(NSObject*, A)>(setter)(object, std::forward<A>(argument));
      },
      &change);
}

template <Text S, class F>
struct Twin {
  static constexpr bool exists = false;
};
template <Text S, class A>
requires(isSetterSelector(S.view())) struct Twin<S, void(A)> {
  static constexpr bool exists = true;
  static Implementation get() { return reinterpret_cast<Implementation>(&notifyingSetter<S, A>); }
};

// Answers the function Trampoline::call, or its notifying twin.
template <Text S, class F, class Trampoline>
Implementation implementationOf(bool observed) {
  if constexpr (Twin<S, F>::exists) {
    if (observed) return Twin<S, F>::get();
  }
  return reinterpret_cast<Implementation>(&Trampoline::call);
}

template <class C, auto Function, class F>
struct CategoryTrampoline;
template <class C, auto Function, class R, class... A>
struct CategoryTrampoline<C, Function, R(A...)> {
  static constexpr bool fits = std::is_invocable_r_v<R, decltype(Function), C&, A...>;
  static R call(NSObject* self, A... arguments) {
    return callHeld<A...>([&]() -> R { return Function(static_cast<C&>(*self), std::forward<A>(arguments)...); },
                          mayRunProgram(self), self, arguments...);
  }
};
template <class C, auto Function, class F>
struct ClassTrampoline;
template <class C, auto Function, class R, class... A>
struct ClassTrampoline<C, Function, R(A...)> {
  static constexpr bool fits = std::is_invocable_r_v<R, decltype(Function), ClassOf<C>, A...>;
  static R call(NSObject* self, A... arguments) {
    return callHeld<A...>(
        [&]() -> R { return Function(ClassOf<C>(static_cast<ClassObject*>(self)), std::forward<A>(arguments)...); },
        !static_cast<ClassObject*>(self)->isLeaf(), nullptr, arguments...);  // a class outlives every call
  }
};

template <Text S, class Declaration, class Trampoline>
constexpr MethodRow rowOf() {
  static_assert(Trampoline::fits, "row: the function differs from the declared message");
  return {&selector<S>, &implementationOf<S, typename Declaration::Type, Trampoline>,
          &SignatureInfoOf<typename Declaration::Type>::info};
}

}  // namespace detail

/// The row that gives instances of C the method `Function` for the declared message S.
template <class C, Text S, auto Function>
[[nodiscard]] constexpr MethodRow row() {
  using Declaration = detail::MessageOf<C, S>;
  static_assert(!std::is_same_v<Declaration, detail::NotFound>, "row: the class declares no such message");
  return detail::rowOf<S, Declaration, detail::CategoryTrampoline<C, Function, typename Declaration::Type>>();
}
/// The row that gives the class C itself the method `Function` for the declared class message S.
template <class C, Text S, auto Function>
[[nodiscard]] constexpr MethodRow classRow() {
  using Declaration = detail::ClassMessageOf<C, S>;
  static_assert(!std::is_same_v<Declaration, detail::NotFound>, "classRow: the class declares no such message");
  return detail::rowOf<S, Declaration, detail::ClassTrampoline<C, Function, typename Declaration::Type>>();
}

}  // namespace havrin::inline platform
