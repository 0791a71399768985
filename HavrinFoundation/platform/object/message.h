// Messages: declared once, sent by selector, found at run time in the receiver's class.
//
//   template <> struct Message<NSArray, "select:"> : Signature<Strong<NSArray>(Predicate)> {};
//   template <> struct ClassMessage<NSUUID, "zero"> : Signature<Strong<NSUUID>()> {};
//
//   send<"select:">(stations, isOnAir)         Strong<NSArray>; a subclass's override takes part
//   send<"zero">(classOf<NSUUID>())            Strong<NSUUID>
//   send<"slect:">(stations, isOnAir)          does not compile: "... declares no such message ..."
//   send<"select:">(nullArray, isOnAir)        null: a message to null gives the zero value of its result
//   sendSuper<"select:">(*this, isOnAir)       in an override: the method that it overrides
//
// A receiver is an object by reference, pointer or `Strong`, or a class. Objects go in as pointers, borrowed, and may
// be null; objects come out as `Strong`. `Self` in a signature stands for the receiver's static class.
//
// Cost: the receiver's class, a table slot, an indirect call. The first send of a selector to a class looks the method
// up and checks its signature. Throws: what the method throws; NSException (InvalidArgument) when no method answers.
#pragma once

#include <concepts>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/class.h>

namespace havrin::inline platform {

/// In a signature: the static class of the receiver, as `Strong<Self>`.
struct Self;

/// The types of a message, without its receiver.
template <class F>
struct Signature {
  using Type = F;
};

/// Declares a message that instances of C and its subclasses answer. Specialise it with a Signature as its base.
template <class C, Text S>
struct Message;
/// Declares a message that the class C and its subclasses answer.
template <class C, Text S>
struct ClassMessage;

namespace detail {

template <class R, class C>
struct ReplaceSelf {
  using Type = R;
};
template <class C>
struct ReplaceSelf<Strong<Self>, C> {
  using Type = Strong<C>;
};

struct NotFound {};

// A number goes in as the parameter's own type, so that a literal need not be spelt with it; a real is no integer.
template <class Parameter, class Given>
inline constexpr bool fitsParameter =
    std::is_convertible_v<Given, Parameter> &&
    !(std::is_integral_v<Parameter> && std::is_floating_point_v<std::remove_cvref_t<Given>>);
template <class Parameter, class Given>
decltype(auto) asParameter(Given&& given) {
  if constexpr (std::is_arithmetic_v<Parameter> && std::is_arithmetic_v<std::remove_cvref_t<Given>>) {
    return static_cast<Parameter>(given);
  } else {
    return std::forward<Given>(given);
  }
}

template <class Owner, class F>
struct FoundMessage;
// A message as found in a superclass chain: declared for Owner, so that every implementation has Owner's types.
template <class Owner, class R, class... A>
struct FoundMessage<Owner, R(A...)> {
  using Result = typename ReplaceSelf<R, Owner>::Type;
  using Type = Result(A...);
  using Function = Result (*)(NSObject*, A...);
  template <class Receiver>
  using ResultFor = typename ReplaceSelf<R, Receiver>::Type;
  template <class... Given>
  static Result call(Implementation implementation, NSObject* receiver, Given&&... given) {
    return reinterpret_cast<Function>(implementation)(receiver, asParameter<A>(std::forward<Given>(given))...);
  }
  template <class... Given>
  static constexpr bool accepts() {
    if constexpr (sizeof...(Given) == sizeof...(A)) {
      return (fitsParameter<A, Given> && ...);
    } else {
      return false;
    }
  }
};

// A message whose `Self` is not narrowed below the class that declares it: one of instances that a class object receives,
// and one that an override sends to its superclass.
template <class Found>
struct NotNarrowed : Found {
  template <class>
  using ResultFor = typename Found::Result;
};

template <class List, Text S>
struct MemberSignature {
  using Type = void;
};
template <class First, class... Rest, Text S>
struct MemberSignature<List<First, Rest...>, S> {
  using Type = typename std::conditional_t<First::template declares<S>, typename First::template Lookup<S>,
                                           MemberSignature<List<Rest...>, S>>::Type;
};

// The declaration that holds for C: its own where there is one, else a superclass's, else what its list of members says.
// A list comes last, so that an override in a list is held to what it overrides.
template <class C, Text S>
constexpr auto findMessage() {
  if constexpr (std::is_void_v<C>) {
    return NotFound{};
  } else if constexpr (requires { sizeof(Message<C, S>); }) {
    return FoundMessage<C, typename Message<C, S>::Type>{};
  } else {
    constexpr auto above = findMessage<typename C::Superclass, S>();
    using Own = typename MemberSignature<typename C::Members, S>::Type;
    if constexpr (std::is_same_v<decltype(above), const NotFound> && !std::is_void_v<Own>) {
      return FoundMessage<C, Own>{};
    } else {
      return above;
    }
  }
}
template <class C, Text S>
constexpr auto findClassMessage() {
  if constexpr (std::is_void_v<C>) {
    using OfObjects = decltype(findMessage<NSObject, S>());  // a class object is an object
    if constexpr (std::is_same_v<OfObjects, NotFound>) {
      return NotFound{};
    } else {
      return NotNarrowed<OfObjects>{};
    }
  } else if constexpr (requires { sizeof(ClassMessage<C, S>); }) {
    return FoundMessage<C, typename ClassMessage<C, S>::Type>{};
  } else {
    constexpr auto above = findClassMessage<typename C::Superclass, S>();
    using Own = typename MemberSignature<typename C::ClassMembers, S>::Type;
    if constexpr (std::is_same_v<decltype(above), const NotFound> && !std::is_void_v<Own>) {
      return FoundMessage<C, Own>{};
    } else {
      return above;
    }
  }
}

template <class C, Text S>
using MessageOf = decltype(findMessage<C, S>());
template <class C, Text S>
using ClassMessageOf = decltype(findClassMessage<C, S>());

// What may stand as a receiver: `Static` is the class that the declaration is looked up in.
template <class T>
struct Receiver {
  static constexpr bool isObject = false;
};
template <class T>
requires std::derived_from<T, NSObject>
struct Receiver<T> {
  static constexpr bool isObject = true;
  static constexpr bool canBeNull = false;
  using Static = T;
  template <Text S>
  using Declaration = MessageOf<T, S>;
  static NSObject* pointer(const T& object) { return const_cast<T*>(&object); }
};
template <class T>
requires std::derived_from<std::remove_cv_t<T>, NSObject>
struct Receiver<T*> : Receiver<std::remove_cv_t<T>> {
  static constexpr bool canBeNull = true;
  static NSObject* pointer(const T* object) { return const_cast<std::remove_cv_t<T>*>(object); }
};
template <class T>
struct Receiver<Strong<T>> : Receiver<T*> {};
template <class C>
struct Receiver<ClassOf<C>> {
  static constexpr bool isObject = true;
  static constexpr bool canBeNull = true;
  using Static = C;
  template <Text S>
  using Declaration = ClassMessageOf<C, S>;
  static NSObject* pointer(const Class& cls) { return cls; }
};
template <>
struct Receiver<Class> : Receiver<ClassOf<NSObject>> {};

template <class>
inline constexpr bool never = false;
// What compilers print of it says what was declared and what was given.
template <class Declared, class... Given>
inline constexpr bool takes = false;

// Calls the method that `cls` has for S.
template <Text S, class Declaration, class Static, class... A>
inline typename Declaration::template ResultFor<Static> dispatchIn(ClassObject* cls, NSObject* receiver,
                                                                   A&&... arguments) {
  using Result = typename Declaration::template ResultFor<Static>;
  Implementation implementation = cls->cached(selector<S>.number.load(std::memory_order_relaxed));
  if (!implementation) [[unlikely]] {
    implementation = cls->resolve(selector<S>, typeid(typename Declaration::Type), receiver);
  }
  if constexpr (std::is_same_v<Result, typename Declaration::Result>) {
    return Declaration::call(implementation, receiver, std::forward<A>(arguments)...);
  } else {
    // `Self` is narrowed to the receiver's static class. The object's own word decides, as everywhere: one that claims a
    // class without being of it is handed out as that class all the same.
    using Narrow = typename Result::Object;
    typename Declaration::Result wide = Declaration::call(implementation, receiver, std::forward<A>(arguments)...);
    if (wide && !isKind<Narrow>(wide) && !wide->isKindOfClass(classOf<Narrow>())) {
      throwWrongClass(wide, typeName<Narrow>());
    }
    return Result::adopt(reinterpret_cast<Narrow*>(wide.detach()));
  }
}

template <Text S, class Declaration, class Static, bool CanBeNull, class... A>
inline typename Declaration::template ResultFor<Static> dispatch(NSObject* receiver, A&&... arguments) {
  if constexpr (CanBeNull) {
    if (!receiver) return typename Declaration::template ResultFor<Static>();
  }
  return dispatchIn<S, Declaration, Static>(dispatchClass(receiver), receiver, std::forward<A>(arguments)...);
}

// Where a message to the superclass of the receiver's static class begins: the superclass, or its metaclass.
template <class T>
struct SuperReceiver : Receiver<T> {
  using Superclass = typename T::Superclass;
  template <Text S>
  using DeclarationAbove = MessageOf<Superclass, S>;
  static ClassObject* start() { return classObject<Superclass>(); }
};
template <class C>
struct SuperReceiver<ClassOf<C>> : Receiver<ClassOf<C>> {
  using Superclass = typename C::Superclass;
  template <Text S>
  using DeclarationAbove = ClassMessageOf<Superclass, S>;
  static ClassObject* start() { return dispatchClass(classObject<Superclass>()); }
};

}  // namespace detail

/// True when a receiver of class C has a declared message S.
template <class C, Text S>
concept Answers = !std::is_same_v<detail::MessageOf<C, S>, detail::NotFound>;
/// True when the class C itself has a declared message S.
template <class C, Text S>
concept ClassAnswers = !std::is_same_v<detail::ClassMessageOf<C, S>, detail::NotFound>;

/// Sends the message S to `receiver`. See the top of this file.
template <Text S, class R, class... A>
inline decltype(auto) send(R&& receiver, A&&... arguments) {
  using Receiver = detail::Receiver<std::remove_cvref_t<R>>;
  if constexpr (!Receiver::isObject) {
    static_assert(detail::never<R>, "send: the receiver is neither an object nor a class");
  } else {
    using Declaration = typename Receiver::template Declaration<S>;
    if constexpr (std::is_same_v<Declaration, detail::NotFound>) {
      static_assert(detail::never<R>,
                    "send: the receiver's class declares no such message: is the selector spelt right, and the header "
                    "that declares it included?");
    } else if constexpr (!Declaration::template accepts<A...>()) {
      static_assert(detail::takes<typename Declaration::Type, A...>,
                    "send: these arguments do not fit the message's declaration");
    } else {
      return detail::dispatch<S, Declaration, typename Receiver::Static, Receiver::canBeNull>(
          Receiver::pointer(receiver), std::forward<A>(arguments)...);
    }
  }
}

/// Sends the message S as the superclass of the receiver's static class answers it: how an override goes on to the method
/// that it overrides. The receiver is `*this`, or the ClassOf that a class method takes.
///
///   Strong<NSArray> select(ElementPredicate p) { return sendSuper<"select:">(*this, p); }
template <Text S, class R, class... A>
inline decltype(auto) sendSuper(R& receiver, A&&... arguments) {
  using Receiver = detail::SuperReceiver<std::remove_cv_t<R>>;
  using Declaration = typename Receiver::template DeclarationAbove<S>;
  if constexpr (std::is_same_v<Declaration, detail::NotFound>) {
    static_assert(detail::never<R>, "sendSuper: the superclass declares no such message: is the selector spelt right?");
  } else if constexpr (!Declaration::template accepts<A...>()) {
    static_assert(detail::takes<typename Declaration::Type, A...>,
                  "sendSuper: these arguments do not fit the message's declaration");
  } else {
    return detail::dispatchIn<S, detail::NotNarrowed<Declaration>, void>(Receiver::start(), Receiver::pointer(receiver),
                                                                         std::forward<A>(arguments)...);
  }
}

}  // namespace havrin::inline platform
