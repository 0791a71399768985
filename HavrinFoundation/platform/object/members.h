// SPDX-License-Identifier: Apache-2.0
// How a class says what it is made of, without macros.
//
//   class Station : public Object<Station, NSObject> {
//     Strong<NSString> title_;
//     std::int64_t listeners_ = 0;
//    public:
//     Strong<NSString> title() const { return title_; }
//     void setTitle(NSString* title) { set<"title">(title); }      // a setter is a message: observers are notified
//     Strong<NSString> announce() { return title_; }
//     using Protocols = List<Playable>;
//     using Members = List<Property<"title", &Station::title_>, Property<"listeners", &Station::listeners_>,
//                          Method<"announce", &Station::announce>>;
//   };
//   const auto station = make<Station>();
//   station->setTitle(makeString("Nord"));
//   utf8(*send<"announce">(station))          "Nord": the list is the declaration, too
//
// A subclass overrides a message by listing a method of its selector; the method is held to the declared types.
// Left out: fields found by name (`_key`), attributes of properties (all are nonatomic; Strong or Weak says the rest).
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/message.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

template <class... ValueType>
struct List {};

}  // namespace platform

namespace detail {

template <class FunctionType>
struct MemberType;
template <class Result, class ClassType, class... Arguments>
struct MemberType<Result (ClassType::*)(Arguments...)> {
  using Type = Result(Arguments...);
};
template <class Result, class ClassType, class... Arguments>
struct MemberType<Result (ClassType::*)(Arguments...) const> : MemberType<Result (ClassType::*)(Arguments...)> {};
template <class Result, class ClassType, class... Arguments>
struct MemberType<Result (ClassType::*)(Arguments...) noexcept> : MemberType<Result (ClassType::*)(Arguments...)> {};
template <class Result, class ClassType, class... Arguments>
struct MemberType<Result (ClassType::*)(Arguments...) const noexcept>
    : MemberType<Result (ClassType::*)(Arguments...)> {};
template <class ValueType, class ClassType>
requires(!std::is_function_v<ValueType>) struct MemberType<ValueType ClassType::*> {
  using Type = ValueType;
};

// How a property's field travels: references as Strong out and plain pointer in, everything else by value.
template <class ValueType>
struct FieldTypes {
  using Out = ValueType;
  using In = ValueType;
  static Out read(const ValueType& field) { return field; }
};
template <class ValueType>
struct FieldTypes<Strong<ValueType>> {
  using Out = Strong<ValueType>;
  using In = ValueType*;
  static Out read(const Strong<ValueType>& field) { return field; }
};
template <class ValueType>
struct FieldTypes<Weak<ValueType>> {
  using Out = Strong<ValueType>;
  using In = ValueType*;
  static Out read(const Weak<ValueType>& field) { return field.lock(); }
};

template <Text Arguments, Text Second>
inline constexpr bool sameText = Arguments.view() == Second.view();

template <class ClassType, auto Member, class FunctionType>
struct MemberTrampoline;
template <class ClassType, auto Member, class Result, class... Arguments>
struct MemberTrampoline<ClassType, Member, Result(Arguments...)> {
  static constexpr bool fits = std::is_invocable_r_v<Result, decltype(Member), ClassType&, Arguments...>;
  static Result call(NSObject* self, Arguments... arguments) {
    return (static_cast<ClassType*>(self)->*Member)(std::forward<Arguments>(arguments)...);
  }
};
// As MemberTrampoline, and receiver and arguments are kept alive for the call.
template <class ClassType, auto Member, class FunctionType>
struct HeldMemberTrampoline;
template <class ClassType, auto Member, class Result, class... Arguments>
struct HeldMemberTrampoline<ClassType, Member, Result(Arguments...)>
    : MemberTrampoline<ClassType, Member, Result(Arguments...)> {
  static Result call(NSObject* self, Arguments... arguments) {
    return callHeld<Arguments...>(
        [&](auto&&... held) -> Result {
          return (static_cast<ClassType*>(self)->*Member)(std::forward<decltype(held)>(held)...);
        },
        mayRunProgram(self), self, arguments...);
  }
};
template <class ClassType, auto Field, class ValueType>
struct GetterTrampoline {
  static constexpr bool fits = true;
  static typename FieldTypes<ValueType>::Out call(NSObject* self) {
    return FieldTypes<ValueType>::read(static_cast<ClassType*>(self)->*Field);
  }
};
template <class ClassType, auto Field, class ValueType>
struct SetterTrampoline {
  static constexpr bool fits = true;
  static void call(NSObject* self, typename FieldTypes<ValueType>::In value) {
    static_cast<ClassType*>(self)->*Field = ValueType(std::move(value));
  }
};

}  // namespace detail

inline namespace platform {

/// A method: the message `Name` calls the member function.
template <Text Name, auto Member>
struct Method {
  template <Text Other>
  static constexpr bool declares = detail::sameText<Name, Other>;
  template <Text>
  using Lookup = detail::MemberType<decltype(Member)>;
  static constexpr std::size_t kRowCount = 1;
  template <class ClassType>
  static constexpr std::array<MethodRow, 1> rows() {
    using Declared = detail::MessageOf<ClassType, Name>;
    return {detail::rowOf<Name, Declared, detail::MemberTrampoline<ClassType, Member, typename Declared::Type>>()};
  }
};

/// A method that calls blocks or sends messages while it works with its receiver or arguments: as `Method`, and both
/// are kept alive for the call, whatever the code it runs drops. Cost: two atomic counts for each object.
template <Text Name, auto Member>
struct HeldMethod : Method<Name, Member> {
  template <class ClassType>
  static constexpr std::array<MethodRow, 1> rows() {
    using Declared = detail::MessageOf<ClassType, Name>;
    return {detail::rowOf<Name, Declared, detail::HeldMemberTrampoline<ClassType, Member, typename Declared::Type>>()};
  }
};

/// A class method: the message `Name` to the class calls the static function, which takes the receiving `ClassOf`
/// first.
template <Text Name, auto Function>
struct ClassMethod {
  template <class FunctionType>
  struct Types;
  template <class Result, class ClassType, class... Arguments>
  struct Types<Result (*)(ClassOf<ClassType>, Arguments...)> {
    using Type = Result(Arguments...);
  };
  template <Text Other>
  static constexpr bool declares = detail::sameText<Name, Other>;
  template <Text>
  using Lookup = Types<decltype(Function)>;
  static constexpr std::size_t kRowCount = 1;
  template <class ClassType>
  static constexpr std::array<MethodRow, 1> rows() {
    using Declared = detail::ClassMessageOf<ClassType, Name>;
    return {detail::rowOf<Name, Declared, detail::ClassTrampoline<ClassType, Function, typename Declared::Type>>()};
  }
};

/// A property over a field: "title" and "setTitle:". A field `Strong<ValueType>` or `Weak<ValueType>` is read as
/// `Strong<ValueType>` and set from `ValueType*`; other fields travel by value.
template <Text Key, auto Field>
struct Property {
  using Value = typename detail::MemberType<decltype(Field)>::Type;
  using Out = typename detail::FieldTypes<Value>::Out;
  using In = typename detail::FieldTypes<Value>::In;
  struct Getter {
    using Type = Out();
  };
  struct Setter {
    using Type = void(In);
  };
  template <Text Other>
  static constexpr bool declares = detail::sameText<Key, Other> || detail::sameText<setterSelector<Key>, Other>;
  template <Text Other>
  using Lookup = std::conditional_t<detail::sameText<Key, Other>, Getter, Setter>;
  static constexpr std::size_t kRowCount = 2;
  template <class ClassType>
  static constexpr std::array<MethodRow, 2> rows() {
    constexpr auto kSetter = setterSelector<Key>;
    using Get = detail::MessageOf<ClassType, Key>;
    using Set = detail::MessageOf<ClassType, kSetter>;
    static_assert(std::is_same_v<typename Get::Type, Out()> && std::is_same_v<typename Set::Type, void(In)>,
                  "Property: a superclass declares this key with another type");
    return {detail::rowOf<Key, Get, detail::GetterTrampoline<ClassType, Field, Value>>(),
            detail::rowOf<kSetter, Set, detail::SetterTrampoline<ClassType, Field, Value>>()};
  }
};

}  // namespace platform

namespace detail {

template <class ClassType, class Lists>
struct RowsOf;
template <class ClassType, class... Entries>
struct RowsOf<ClassType, List<Entries...>> {
  static constexpr std::size_t kCount = (Entries::kRowCount + ... + 0);
  static constexpr std::array<MethodRow, kCount> make() {
    std::array<MethodRow, kCount> all{};
    [[maybe_unused]] std::size_t next = 0;
    (
        [&] {
          for (const MethodRow& one : Entries::template rows<ClassType>()) all[next++] = one;
        }(),
        ...);
    return all;
  }
  static constexpr std::array<MethodRow, kCount> rows = make();
};

template <class... Parent>
std::span<const AnyProtocol* const> protocolList(List<Parent...>) {
  return ParentProtocols<Parent...>::list();
}

// A class says of itself, and of none of its subclasses, that its methods run no code of the program: `using Leaf =
// Me;`.
template <class ValueType>
constexpr bool isLeaf() {
  if constexpr (requires { typename ValueType::Leaf; }) {
    return std::is_same_v<typename ValueType::Leaf, ValueType>;
  } else {
    return false;
  }
}

// An override gives the member's address another type.
template <class ValueType>
constexpr bool answersByRows() {
  return requires {
    requires std::is_same_v<decltype(&ValueType::respondsToSelector), bool (NSObject::*)(Selector) const>;
  };
}

template <class ValueType>
constexpr auto creator() -> Strong<NSObject> (*)() {
  if constexpr (std::is_default_constructible_v<ValueType> && !std::is_abstract_v<ValueType>) {
    return [] { return Strong<NSObject>(make<ValueType>()); };
  } else {
    return nullptr;
  }
}

}  // namespace detail

inline namespace platform {

/// The description of the class ValueType for the runtime.
template <class ValueType>
ClassDescription describeClass(ClassObject* superclass) {
  return {.type = &typeid(ValueType),
          .name = typeName<ValueType>(),
          .superclass = superclass,
          .isLeaf = detail::isLeaf<ValueType>(),
          .answersByRows = detail::answersByRows<ValueType>(),
          .create = detail::creator<ValueType>(),
          .rows = detail::RowsOf<ValueType, typename ValueType::Members>::rows,
          .classRows = detail::RowsOf<ValueType, typename ValueType::ClassMembers>::rows,
          .protocols = detail::protocolList(typename ValueType::Protocols{})};
}

template <class ValueType>
ClassObject* buildClass() {
  ClassObject* superclass = nullptr;
  if constexpr (!std::is_void_v<typename ValueType::Superclass>)
    superclass = classObject<typename ValueType::Superclass>();
  return ClassObject::build(describeClass<ValueType>(superclass));
}

}  // namespace platform

namespace detail {
// Read while compiling: the constructor of every object passes it on.
template <class Me>
inline constexpr std::string_view nameOf = typeName<Me>();
}  // namespace detail

inline namespace platform {

/// The base of every class: sets the class of an object while it is constructed and destroyed, level
/// by level, as its virtual functions do.
template <class Me, class Super>
class HAVRIN_EXPORT Object : public Super {
 public:
  using Superclass = Super;
  using Members = List<>;
  using ClassMembers = List<>;
  using Protocols = List<>;

  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  constexpr ~Object() override {
    // Nothing is sent to an object from ~NSObject: the last level does not set the class.
    if constexpr (!std::is_same_v<Super, NSObject>) {
      if (!std::is_constant_evaluated()) become<Super>();
    }
  }

 protected:
  Object() requires(std::is_same_v<Super, NSObject>) : Super(NSObject::Named{detail::nameOf<Me>}) { become<Me>(); }
  template <class... Arguments>
  requires(!std::is_same_v<Super, NSObject>) explicit Object(Arguments&&... arguments)
      : Super(std::forward<Arguments>(arguments)...) {
    // An object that a base class's constructor has made observed stays so.
    const Notifications* const notifications = dispatchClass(this)->notifications();
    become<Me>();
    if (notifications) [[unlikely]]
      headerOf(this).cls.store(classObject<Me>()->notifyingClass(*notifications), std::memory_order_relaxed);
  }
  constexpr explicit Object(NSObject::Placed placed) noexcept : Super(placed) {}

  /// Sets the property `Key` by its message, so that overrides and observers take part.
  template <Text Key, class Given>
  void set(Given&& value) {
    send<setterSelector<Key>>(static_cast<Me&>(*this), std::forward<Given>(value));
  }

 private:
  template <class ValueType>
  void become() {
    headerOf(this).cls.store(classObject<ValueType>(), std::memory_order_relaxed);
  }
};

}  // namespace platform
}  // namespace havrin
