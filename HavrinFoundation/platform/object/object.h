// SPDX-License-Identifier: Apache-2.0
// NSObject: the root of every class.
//
//   Strong<NSObject> a = make<NSObject>();
//   a->isEqual(a)                                   true: identity, until a subclass says otherwise
//   a->respondsToSelector(selector<"select:">)      false
//   a->description()                                "<NSObject: 0x55d0c0ffee00>"
//
// Objects live on the heap and are made by `make<Type>(...)` (or `alloc<Type>()` before an init message). `new Type`
// does not compile; an object on the stack, or one whose NSObject is not its first base, ends the process with one line
// that names the class. Values by key and observing are messages to every object: observing/key_value_coding.h and
// key_value_observing.h declare them.
// Left out: manual retain and release, zones, forwarding of unknown messages, method swizzling.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/reference.h>
#include <HavrinFoundation/platform/object/selector.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

class AnyProtocol;
class Class;
class NSString;
template <class... Type>
struct List;

class HAVRIN_EXPORT NSObject {
 public:
  using Superclass = void;
  using Members = List<>;
  using ClassMembers = List<>;
  using Protocols = List<>;

  NSObject() : NSObject(Named{"NSObject"}) {}
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;
  constexpr virtual ~NSObject() {
    // Constant objects are never destroyed; for them the compiler needs to see that nothing would happen.
    if (!std::is_constant_evaluated()) releaseAttached();
  }

  // Public for the destructors of subclasses; release ends an object.
  // NOLINTNEXTLINE(misc-new-delete-overloads): the operator new is private, for make() alone
  static constexpr void operator delete(void* memory) {
    if (!std::is_constant_evaluated()) freeUnborn(memory);
  }
  static void* operator new[](std::size_t) = delete;

  /// True when `other` counts as the same value. Here: the same object.
  [[nodiscard]] virtual bool isEqual(const NSObject* other) const;
  /// Equal for equal objects. Here: from the address.
  [[nodiscard]] virtual std::uint64_t hash() const;
  /// A text for people. Here: "<Class: 0x...>".
  [[nodiscard]] virtual Strong<NSString> description() const;
  /// A text for developers. Here: the description.
  [[nodiscard]] virtual Strong<NSString> debugDescription() const;
  /// An immutable copy, which may be the object itself. Throws: NSException (InvalidArgument) in classes without
  /// copies.
  [[nodiscard]] virtual Strong<NSObject> copy() const;
  /// A new, mutable copy. Throws: NSException (InvalidArgument) in classes without one.
  [[nodiscard]] virtual Strong<NSObject> mutableCopy() const;

  /// True when the object's class is `cls` or inherits from it. Of a class object it asks about its metaclass.
  [[nodiscard]] virtual bool isKindOfClass(Class cls) const;
  [[nodiscard]] virtual bool isMemberOfClass(Class cls) const;
  /// True when the class, or a superclass, adopts the protocol or one that inherits from it.
  [[nodiscard]] virtual bool conformsToProtocol(const AnyProtocol& protocol) const;
  /// True when a message of this selector would find a method, inherited and category methods included.
  [[nodiscard]] virtual bool respondsToSelector(Selector selector) const;

  /// Sends the message that `selector` names, with no argument or with `argument` where it takes one; scalars are boxed
  /// as NSNumber both ways. Result: null for messages without one.
  /// Throws: NSException (InvalidArgument) for a null selector, when the receiver does not answer, when the message takes two arguments or
  /// more, or when `argument` is of another kind than it takes.
  virtual Strong<NSObject> performSelector(Selector selector, NSObject* argument = nullptr);

 protected:
  // For class objects and constant objects, whose header is written where they are placed.
  struct Placed {};
  constexpr explicit NSObject(Placed) noexcept {}

  // The first class below NSObject, for the text when an object is constructed elsewhere than in memory for objects.
  struct Named {
    std::string_view name;
  };
  explicit NSObject(Named made);

  // Memory for one object, in which none has been constructed yet: for classes that keep more in the same allocation.
  [[nodiscard]] static void* allocateUnborn(std::size_t size);
  /// The bytes move along.
  [[nodiscard]] static void* resizeUnborn(void* memory, std::size_t size);
  static void freeUnborn(void* memory) noexcept;

 private:
  template <class Type, class... Arguments>
  friend Strong<Type> make(Arguments&&... arguments);
  // For `make` alone: the count of a new object is 1, which a `Strong` constructed from a pointer would not release.
  static void* operator new(std::size_t size) { return allocateUnborn(size); }
  void releaseAttached() noexcept;
};

/// A new object, held.
template <class Type, class... Arguments>
[[nodiscard]] Strong<Type> make(Arguments&&... arguments) {
  static_assert(alignof(Type) <= alignof(std::max_align_t), "objects are not over-aligned");
  return Strong<Type>::adopt(new Type(std::forward<Arguments>(arguments)...));
}

/// A new object in its empty state, for an init message: send<"initWithOptionalString:">(alloc<NSAttributedString>(),
/// t).
template <class Type>
[[nodiscard]] Strong<Type> alloc() {
  return make<Type>();
}

}  // namespace platform
}  // namespace havrin
