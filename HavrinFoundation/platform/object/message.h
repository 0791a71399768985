// SPDX-License-Identifier: Apache-2.0
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
// be null; objects come out as `Strong`. `Self` in a signature is the receiver's static class.
//
// Cost: the receiver's class, a table slot, an indirect call. The first send of a selector to a class looks the method
// up and checks its signature. Throws: what the method throws; NSException (InvalidArgument) when no method answers.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/class.h>

#include <concepts>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace havrin {
inline namespace platform {

/// In a signature: the static class of the receiver, as `Strong<Self>`.
struct Self;

/// The types of a message, without its receiver.
template <class FunctionType>
struct Signature {
  using Type = FunctionType;
};

/// Declares a message that instances of ClassType and its subclasses answer. Specialise it with a Signature as its
/// base.
template <class ClassType, Text Name>
struct Message;
/// Declares a message that the class ClassType and its subclasses answer.
template <class ClassType, Text Name>
struct ClassMessage;

}  // namespace platform

namespace detail {

template <class ResultType, class ClassType>
struct ReplaceSelf {
  using Type = ResultType;
};
template <class ClassType>
struct ReplaceSelf<Strong<Self>, ClassType> {
  using Type = Strong<ClassType>;
};

struct NotFound {};

// A number goes in as the parameter's own type, so that a literal needs no suffix; a floating-point number is not an
// integer.
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

template <class Owner, class FunctionType>
struct FoundMessage;
// A message as found in a superclass chain: declared for Owner, so that every implementation has Owner's types.
template <class Owner, class ResultType, class... Arguments>
struct FoundMessage<Owner, ResultType(Arguments...)> {
  using Result = typename ReplaceSelf<ResultType, Owner>::Type;
  using Type = Result(Arguments...);
  using Function = Result (*)(NSObject*, Arguments...);
  template <class Receiver>
  using ResultFor = typename ReplaceSelf<ResultType, Receiver>::Type;
  template <class... Given>
  static Result call(Implementation implementation, NSObject* receiver, Given&&... given) {
    return reinterpret_cast<Function>(implementation)(receiver, asParameter<Arguments>(std::forward<Given>(given))...);
  }
  template <class... Given>
  static constexpr bool accepts() {
    if constexpr (sizeof...(Given) == sizeof...(Arguments)) {
      return (fitsParameter<Arguments, Given> && ...);
    } else {
      return false;
    }
  }
};

// A message whose `Self` is not narrowed below the class that declares it: one of instances that a class object
// receives, and one that an override sends to its superclass.
template <class Found>
struct NotNarrowed : Found {
  template <class>
  using ResultFor = typename Found::Result;
};

template <class List, Text Name>
struct MemberSignature {
  using Type = void;
};
template <class First, class... Rest, Text Name>
struct MemberSignature<List<First, Rest...>, Name> {
  using Type = typename std::conditional_t<First::template declares<Name>, typename First::template Lookup<Name>,
                                           MemberSignature<List<Rest...>, Name>>::Type;
};

// The declaration that holds for ClassType: its own where there is one, else a superclass's, else what its list of
// members says.
// A list comes last, so that an override in a list is held to what it overrides.
template <class ClassType, Text Name>
constexpr auto findMessage() {
  if constexpr (std::is_void_v<ClassType>) {
    return NotFound{};
  } else if constexpr (requires { sizeof(Message<ClassType, Name>); }) {
    return FoundMessage<ClassType, typename Message<ClassType, Name>::Type>{};
  } else {
    constexpr auto above = findMessage<typename ClassType::Superclass, Name>();
    using Own = typename MemberSignature<typename ClassType::Members, Name>::Type;
    if constexpr (std::is_same_v<decltype(above), const NotFound> && !std::is_void_v<Own>) {
      return FoundMessage<ClassType, Own>{};
    } else {
      return above;
    }
  }
}
template <class ClassType, Text Name>
constexpr auto findClassMessage() {
  if constexpr (std::is_void_v<ClassType>) {
    using OfObjects = decltype(findMessage<NSObject, Name>());  // a class object is an object
    if constexpr (std::is_same_v<OfObjects, NotFound>) {
      return NotFound{};
    } else {
      return NotNarrowed<OfObjects>{};
    }
  } else if constexpr (requires { sizeof(ClassMessage<ClassType, Name>); }) {
    return FoundMessage<ClassType, typename ClassMessage<ClassType, Name>::Type>{};
  } else {
    constexpr auto above = findClassMessage<typename ClassType::Superclass, Name>();
    using Own = typename MemberSignature<typename ClassType::ClassMembers, Name>::Type;
    if constexpr (std::is_same_v<decltype(above), const NotFound> && !std::is_void_v<Own>) {
      return FoundMessage<ClassType, Own>{};
    } else {
      return above;
    }
  }
}

template <class ClassType, Text Name>
using MessageOf = decltype(findMessage<ClassType, Name>());
template <class ClassType, Text Name>
using ClassMessageOf = decltype(findClassMessage<ClassType, Name>());

// The possible receivers: `Static` is the class that the declaration is looked up in.
template <class ValueType>
struct Receiver {
  static constexpr bool isObject = false;
};
template <class ValueType>
requires std::derived_from<ValueType, NSObject>
struct Receiver<ValueType> {
  static constexpr bool isObject = true;
  static constexpr bool canBeNull = false;
  using Static = ValueType;
  template <Text Name>
  using Declaration = MessageOf<ValueType, Name>;
  static NSObject* pointer(const ValueType& object) { return const_cast<ValueType*>(&object); }
};
template <class ValueType>
requires std::derived_from<std::remove_cv_t<ValueType>, NSObject>
struct Receiver<ValueType*> : Receiver<std::remove_cv_t<ValueType>> {
  static constexpr bool canBeNull = true;
  static NSObject* pointer(const ValueType* object) { return const_cast<std::remove_cv_t<ValueType>*>(object); }
};
template <class ValueType>
struct Receiver<Strong<ValueType>> : Receiver<ValueType*> {};
template <class ClassType>
struct Receiver<ClassOf<ClassType>> {
  static constexpr bool isObject = true;
  static constexpr bool canBeNull = true;
  using Static = ClassType;
  template <Text Name>
  using Declaration = ClassMessageOf<ClassType, Name>;
  static NSObject* pointer(const Class& cls) { return cls; }
};
template <>
struct Receiver<Class> : Receiver<ClassOf<NSObject>> {};

template <class>
inline constexpr bool never = false;
// What compilers print of it says what was declared and what was given.
template <class Declared, class... Given>
inline constexpr bool takes = false;

// Calls the method that `cls` has for Name.
template <Text Name, class Declaration, class Static, class... Arguments>
inline typename Declaration::template ResultFor<Static> dispatchIn(ClassObject* cls, NSObject* receiver,
                                                                   Arguments&&... arguments) {
  using Result = typename Declaration::template ResultFor<Static>;
  Implementation implementation = cls->cached(selector<Name>.number.load(std::memory_order_relaxed));
  if (!implementation) [[unlikely]] {
    implementation = cls->resolve(selector<Name>, typeid(typename Declaration::Type), receiver);
  }
  if constexpr (std::is_same_v<Result, typename Declaration::Result>) {
    return Declaration::call(implementation, receiver, std::forward<Arguments>(arguments)...);
  } else {
    // `Self` is narrowed to the receiver's static class. The object's own word decides, as everywhere: one that claims
    // a class without being of it is handed out as that class all the same.
    using Narrow = typename Result::Object;
    typename Declaration::Result wide =
        Declaration::call(implementation, receiver, std::forward<Arguments>(arguments)...);
    if (wide && !isKind<Narrow>(wide) && !wide->isKindOfClass(classOf<Narrow>())) {
      throwWrongClass(wide, typeName<Narrow>());
    }
    return Result::adopt(reinterpret_cast<Narrow*>(wide.detach()));
  }
}

template <Text Name, class Declaration, class Static, bool CanBeNull, class... Arguments>
inline typename Declaration::template ResultFor<Static> dispatch(NSObject* receiver, Arguments&&... arguments) {
  if constexpr (CanBeNull) {
    if (!receiver) return typename Declaration::template ResultFor<Static>();
  }
  return dispatchIn<Name, Declaration, Static>(dispatchClass(receiver), receiver,
                                               std::forward<Arguments>(arguments)...);
}

// Where a message to the superclass of the receiver's static class begins: the superclass, or its metaclass.
template <class ValueType>
struct SuperReceiver : Receiver<ValueType> {
  using Superclass = typename ValueType::Superclass;
  template <Text Name>
  using DeclarationAbove = MessageOf<Superclass, Name>;
  static ClassObject* start() { return classObject<Superclass>(); }
};
template <class ClassType>
struct SuperReceiver<ClassOf<ClassType>> : Receiver<ClassOf<ClassType>> {
  using Superclass = typename ClassType::Superclass;
  template <Text Name>
  using DeclarationAbove = ClassMessageOf<Superclass, Name>;
  static ClassObject* start() { return dispatchClass(classObject<Superclass>()); }
};

}  // namespace detail

inline namespace platform {

/// True when a receiver of class ClassType has a declared message Name.
template <class ClassType, Text Name>
concept Answers = !std::is_same_v<detail::MessageOf<ClassType, Name>, detail::NotFound>;
/// True when the class ClassType itself has a declared message Name.
template <class ClassType, Text Name>
concept ClassAnswers = !std::is_same_v<detail::ClassMessageOf<ClassType, Name>, detail::NotFound>;

/// Sends the message Name to `receiver`. See the top of this file.
template <Text Name, class ResultType, class... Arguments>
inline decltype(auto) send(ResultType&& receiver, Arguments&&... arguments) {
  using Receiver = detail::Receiver<std::remove_cvref_t<ResultType>>;
  if constexpr (!Receiver::isObject) {
    static_assert(detail::never<ResultType>, "send: the receiver is neither an object nor a class");
  } else {
    using Declaration = typename Receiver::template Declaration<Name>;
    if constexpr (std::is_same_v<Declaration, detail::NotFound>) {
      static_assert(detail::never<ResultType>,
                    "send: the receiver's class declares no such message: is the selector spelt right, and the header "
                    "that declares it included?");
    } else if constexpr (!Declaration::template accepts<Arguments...>()) {
      static_assert(detail::takes<typename Declaration::Type, Arguments...>,
                    "send: these arguments do not fit the message's declaration");
    } else {
      return detail::dispatch<Name, Declaration, typename Receiver::Static, Receiver::canBeNull>(
          Receiver::pointer(receiver), std::forward<Arguments>(arguments)...);
    }
  }
}

/// Sends the message Name as the superclass of the receiver's static class answers it: how an override goes on to the
/// method that it overrides. The receiver is `*this`, or the ClassOf that a class method takes.
///
///   Strong<NSArray> select(ElementPredicate p) { return sendSuper<"select:">(*this, p); }
template <Text Name, class ResultType, class... Arguments>
inline decltype(auto) sendSuper(ResultType& receiver, Arguments&&... arguments) {
  using Receiver = detail::SuperReceiver<std::remove_cv_t<ResultType>>;
  using Declaration = typename Receiver::template DeclarationAbove<Name>;
  if constexpr (std::is_same_v<Declaration, detail::NotFound>) {
    static_assert(detail::never<ResultType>,
                  "sendSuper: the superclass declares no such message: is the selector spelt right?");
  } else if constexpr (!Declaration::template accepts<Arguments...>()) {
    static_assert(detail::takes<typename Declaration::Type, Arguments...>,
                  "sendSuper: these arguments do not fit the message's declaration");
  } else {
    return detail::dispatchIn<Name, detail::NotNarrowed<Declaration>, void>(
        Receiver::start(), Receiver::pointer(receiver), std::forward<Arguments>(arguments)...);
  }
}

}  // namespace platform
}  // namespace havrin
