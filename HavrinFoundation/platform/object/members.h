// How a class says what it is made of, without macros.
//
//   class Station : public Object<Station, NSObject> {
//     Strong<NSString> title_;
//     std::int64_t listeners_ = 0;
//    public:
//     Strong<NSString> title() const { return title_; }
//     void setTitle(NSString* title) { set<"title">(title); }      // a setter is a message: observers hear of it
//     Strong<NSString> announce();
//     using Protocols = List<Playable>;
//     using Members = List<Property<"title", &Station::title_>, Property<"listeners", &Station::listeners_>,
//                          Method<"announce", &Station::announce>>;
//   };
//   send<"announce">(station)          Strong<NSString>: the list is the declaration, too
//
// A subclass overrides a message by listing a method of its selector; the method is held to the declared types.
// Left out: fields found by name (`_key`), attributes of properties (all are nonatomic; Strong or Weak says the rest).
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/message.h>

namespace havrin::inline platform {

template <class... T>
struct List {};

namespace detail {

template <class F>
struct MemberType;
template <class R, class C, class... A>
struct MemberType<R (C::*)(A...)> {
  using Type = R(A...);
};
template <class R, class C, class... A>
struct MemberType<R (C::*)(A...) const> : MemberType<R (C::*)(A...)> {};
template <class R, class C, class... A>
struct MemberType<R (C::*)(A...) noexcept> : MemberType<R (C::*)(A...)> {};
template <class R, class C, class... A>
struct MemberType<R (C::*)(A...) const noexcept> : MemberType<R (C::*)(A...)> {};
template <class T, class C>
requires(!std::is_function_v<T>) struct MemberType<T C::*> {
  using Type = T;
};

// How a property's field travels: references as Strong out and plain pointer in, everything else by value.
template <class T>
struct FieldTypes {
  using Out = T;
  using In = T;
  static Out read(const T& field) { return field; }
};
template <class T>
struct FieldTypes<Strong<T>> {
  using Out = Strong<T>;
  using In = T*;
  static Out read(const Strong<T>& field) { return field; }
};
template <class T>
struct FieldTypes<Weak<T>> {
  using Out = Strong<T>;
  using In = T*;
  static Out read(const Weak<T>& field) { return field.lock(); }
};

template <Text A, Text B>
inline constexpr bool sameText = A.view() == B.view();

template <class C, auto Member, class F>
struct MemberTrampoline;
template <class C, auto Member, class R, class... A>
struct MemberTrampoline<C, Member, R(A...)> {
  static constexpr bool fits = std::is_invocable_r_v<R, decltype(Member), C&, A...>;
  static R call(NSObject* self, A... arguments) {
    return (static_cast<C*>(self)->*Member)(std::forward<A>(arguments)...);
  }
};
// As MemberTrampoline, and receiver and arguments are kept alive for the call.
template <class C, auto Member, class F>
struct HeldMemberTrampoline;
template <class C, auto Member, class R, class... A>
struct HeldMemberTrampoline<C, Member, R(A...)> : MemberTrampoline<C, Member, R(A...)> {
  static R call(NSObject* self, A... arguments) {
    return callHeld<A...>([&]() -> R { return (static_cast<C*>(self)->*Member)(std::forward<A>(arguments)...); },
                          mayRunProgram(self), self, arguments...);
  }
};
template <class C, auto Field, class T>
struct GetterTrampoline {
  static constexpr bool fits = true;
  static typename FieldTypes<T>::Out call(NSObject* self) { return FieldTypes<T>::read(static_cast<C*>(self)->*Field); }
};
template <class C, auto Field, class T>
struct SetterTrampoline {
  static constexpr bool fits = true;
  static void call(NSObject* self, typename FieldTypes<T>::In value) {
    static_cast<C*>(self)->*Field = T(std::move(value));
  }
};

}  // namespace detail

/// A method: the message `S` calls the member function.
template <Text S, auto Member>
struct Method {
  template <Text Other>
  static constexpr bool declares = detail::sameText<S, Other>;
  template <Text>
  using Lookup = detail::MemberType<decltype(Member)>;
  static constexpr std::size_t kRowCount = 1;
  template <class C>
  static constexpr std::array<MethodRow, 1> rows() {
    using Declared = detail::MessageOf<C, S>;
    return {detail::rowOf<S, Declared, detail::MemberTrampoline<C, Member, typename Declared::Type>>()};
  }
};

/// A method that calls blocks or sends messages while it works with its receiver or arguments: as `Method`, and both are
/// kept alive for the call, whatever the code it runs drops. Cost: two atomic counts for each object.
template <Text S, auto Member>
struct HeldMethod : Method<S, Member> {
  template <class C>
  static constexpr std::array<MethodRow, 1> rows() {
    using Declared = detail::MessageOf<C, S>;
    return {detail::rowOf<S, Declared, detail::HeldMemberTrampoline<C, Member, typename Declared::Type>>()};
  }
};

/// A class method: the message `S` to the class calls the static function, which takes the receiving `ClassOf` first.
template <Text S, auto Function>
struct ClassMethod {
  template <class F>
  struct Types;
  template <class R, class C, class... A>
  struct Types<R (*)(ClassOf<C>, A...)> {
    using Type = R(A...);
  };
  template <Text Other>
  static constexpr bool declares = detail::sameText<S, Other>;
  template <Text>
  using Lookup = Types<decltype(Function)>;
  static constexpr std::size_t kRowCount = 1;
  template <class C>
  static constexpr std::array<MethodRow, 1> rows() {
    using Declared = detail::ClassMessageOf<C, S>;
    return {detail::rowOf<S, Declared, detail::ClassTrampoline<C, Function, typename Declared::Type>>()};
  }
};

/// A property over a field: "title" and "setTitle:". A field `Strong<T>` or `Weak<T>` is read as `Strong<T>` and set
/// from `T*`; other fields travel by value.
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
  template <class C>
  static constexpr std::array<MethodRow, 2> rows() {
    constexpr auto kSetter = setterSelector<Key>;
    using Get = detail::MessageOf<C, Key>;
    using Set = detail::MessageOf<C, kSetter>;
    static_assert(std::is_same_v<typename Get::Type, Out()> && std::is_same_v<typename Set::Type, void(In)>,
                  "Property: a superclass declares this key with another type");
    return {detail::rowOf<Key, Get, detail::GetterTrampoline<C, Field, Value>>(),
            detail::rowOf<kSetter, Set, detail::SetterTrampoline<C, Field, Value>>()};
  }
};

namespace detail {

template <class C, class L>
struct RowsOf;
template <class C, class... M>
struct RowsOf<C, List<M...>> {
  static constexpr std::size_t kCount = (M::kRowCount + ... + 0);
  static constexpr std::array<MethodRow, kCount> make() {
    std::array<MethodRow, kCount> all{};
    [[maybe_unused]] std::size_t next = 0;
    (
        [&] {
          for (const MethodRow& one : M::template rows<C>()) all[next++] = one;
        }(),
        ...);
    return all;
  }
  static constexpr std::array<MethodRow, kCount> rows = make();
};

template <class... P>
std::span<const AnyProtocol* const> protocolList(List<P...>) {
  return ParentProtocols<P...>::list();
}

// A class says of itself, and of none of its subclasses, that its methods run no code of the program: `using Leaf = Me;`.
template <class T>
constexpr bool isLeaf() {
  if constexpr (requires { typename T::Leaf; }) {
    return std::is_same_v<typename T::Leaf, T>;
  } else {
    return false;
  }
}

template <class T>
constexpr auto creator() -> Strong<NSObject> (*)() {
  if constexpr (std::is_default_constructible_v<T> && !std::is_abstract_v<T>) {
    return [] { return Strong<NSObject>(make<T>()); };
  } else {
    return nullptr;
  }
}

}  // namespace detail

/// What the runtime is told of the class T.
template <class T>
ClassDescription describeClass(ClassObject* superclass) {
  return {.type = &typeid(T),
          .name = typeName<T>(),
          .superclass = superclass,
          .isLeaf = detail::isLeaf<T>(),
          .create = detail::creator<T>(),
          .rows = detail::RowsOf<T, typename T::Members>::rows,
          .classRows = detail::RowsOf<T, typename T::ClassMembers>::rows,
          .protocols = detail::protocolList(typename T::Protocols{})};
}

template <class T>
ClassObject* buildClass() {
  ClassObject* superclass = nullptr;
  if constexpr (!std::is_void_v<typename T::Superclass>) superclass = classObject<typename T::Superclass>();
  ClassObject* cls = ClassObject::build(describeClass<T>(superclass));
  classCache<T>.store(cls, std::memory_order_release);
  return cls;
}

/// The base of every class: tells the runtime which class an object is of while it is constructed and destroyed, level
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
    // Nothing is sent to an object from ~NSObject: the last level need not be told.
    if constexpr (!std::is_same_v<Super, NSObject>) {
      if (!std::is_constant_evaluated()) become<Super>();
    }
  }

 protected:
  Object() requires(std::is_same_v<Super, NSObject>) : Super(NSObject::Named{typeName<Me>()}) { become<Me>(); }
  template <class... A>
  requires(!std::is_same_v<Super, NSObject>) explicit Object(A&&... arguments) : Super(std::forward<A>(arguments)...) {
    // An object that a base class's constructor has made observed stays so.
    const bool observed = dispatchClass(this)->isNotifying();
    become<Me>();
    if (observed) [[unlikely]]
      headerOf(this).cls.store(classObject<Me>()->notifyingClass(), std::memory_order_relaxed);
  }
  constexpr explicit Object(NSObject::Placed placed) noexcept : Super(placed) {}

  /// Sets the property `Key` by its message, so that overrides and observers take part.
  template <Text Key, class V>
  void set(V&& value) {
    send<setterSelector<Key>>(static_cast<Me&>(*this), std::forward<V>(value));
  }

 private:
  template <class T>
  void become() {
    headerOf(this).cls.store(classObject<T>(), std::memory_order_relaxed);
  }
};

}  // namespace havrin::inline platform
