// SPDX-License-Identifier: Apache-2.0
// Classes at run time. Class objects are objects with classes of their own (metaclasses): they can be in
// collections, receive messages and carry associated values. One per type in the whole process, built at first use.
//
//   classOf<NSArray>()                ClassOf<NSArray>, which receives class messages: send<"zero">(classOf<NSUUID>())
//   classOf(*list)                    the class of an object, as what the object is known to be
//   classOf(*list).name()             "NSMutableArray"
//   cast<NSArray>(list.get())         the object as an array, or null
//   cast<NSString>(list.get())        null
//
// Left out: classes made at run time by applications, replacing a method's implementation, class names to classes
// (archives register the names that they read).
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/object.h>
#include <HavrinFoundation/platform/object/protocol.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <span>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

/// A method's code, cast to the function type of its signature before it is called.
using Implementation = void (*)();

struct Notifications;
struct SignatureInfo;

/// One method of a class or category: constant data. The implementation comes from a call rather than a field, since a
/// function pointer of another type is not a constant; called with `observed`, it returns the notifying twin of a
/// setter.
struct MethodRow {
  const SelectorConstant* selector;
  Implementation (*implementation)(bool observed);
  const SignatureInfo* signature;
};

/// The description of a class from which the runtime builds it at first use.
struct ClassDescription {
  const std::type_info* type;
  std::string_view name;
  ClassObject* superclass;
  bool isLeaf;                   // its methods run no code of the program
  bool answersByRows;            // neither it nor a superclass overrides `respondsToSelector`
  Strong<NSObject> (*create)();  // null for classes that cannot be allocated without arguments
  std::span<const MethodRow> rows;
  std::span<const MethodRow> classRows;
  std::span<const AnyProtocol* const> protocols;
};

/// The class object itself. Programs use the handles `Class` and `ClassOf`.
class HAVRIN_EXPORT ClassObject final : public NSObject {
 public:
  // The tables by selector number: pages that are made when a slot of theirs is first filled. Selectors numbered beyond
  // them go the slow way.
  static constexpr std::uint32_t kPages = 64;
  static constexpr std::uint32_t kPageSlots = 64;
  static constexpr std::uint32_t kSlots = kPages * kPageSlots;
  static constexpr std::size_t kAncestors = 8;  // classes deeper than that are walked

  [[nodiscard]] std::string_view name() const { return name_; }
  [[nodiscard]] ClassObject* superclass() const { return superclass_; }
  /// The class that the program sees: the original of a notifying class, else the class itself.
  [[nodiscard]] ClassObject* shown() const { return shown_; }
  /// What the setters of a notifying class call; null for every other class.
  [[nodiscard]] const Notifications* notifications() const { return notifications_; }
  [[nodiscard]] bool isNotifying() const { return notifications_ != nullptr; }
  [[nodiscard]] bool isMetaclass() const { return instance_ != nullptr; }
  /// Whether methods of instances run no code of the program: no override, no block, no observer. False once a category
  /// of the program has been attached.
  [[nodiscard]] bool isLeaf() const { return isLeaf_.load(std::memory_order_relaxed); }
  /// Whether `respondsToSelector` looks for a row, and runs no override of the program.
  [[nodiscard]] bool answersByRows() const { return answersByRows_; }
  [[nodiscard]] bool inheritsFrom(const ClassObject* other) const {
    if (other->depth_ < kAncestors) [[likely]]
      return ancestors_[other->depth_] == other;
    return inheritsDeep(other);
  }
  [[nodiscard]] bool adopts(const AnyProtocol& protocol) const;
  [[nodiscard]] Strong<NSObject> create() const;

  /// The cached method for a selector's number; null when it must be resolved.
  [[nodiscard]] Implementation cached(std::uint32_t number) const {
    return methods_[number / kPageSlots]
        .load(std::memory_order_acquire)
        ->entries[number % kPageSlots]
        .load(std::memory_order_acquire);
  }
  /// The method that answers `selector` with exactly this signature. Throws: NSException (InvalidArgument) when there
  /// is none, or one of another signature. `receiver` is for the text.
  [[nodiscard]] Implementation resolve(const SelectorConstant& selector, const std::type_info& signature,
                                       const NSObject* receiver);
  /// The row that answers a selector, in this class or the nearest superclass; null when none does.
  /// Cost: one load once it has been found, before that a look-up under a lock.
  [[nodiscard]] const MethodRow* row(Selector selector) const;
  /// The implementation a row has for receivers of this class.
  [[nodiscard]] Implementation implementation(const MethodRow& row) const { return row.implementation(isNotifying()); }

  /// Adds or replaces methods; sends that have been resolved before see them at their next call. `ofProgram`: they may
  /// run code of the program, so the class is a leaf no longer.
  void addRows(std::span<const MethodRow> rows, bool ofProgram);
  /// The subclass of this class whose setters notify; made at first use.
  [[nodiscard]] ClassObject* notifyingClass(const Notifications& notifications);

  [[nodiscard]] bool isEqual(const NSObject* other) const override { return this == other; }
  [[nodiscard]] Strong<NSString> description() const override;

  static ClassObject* build(const ClassDescription& description);

 private:
  friend struct Runtime;
  ClassObject(std::string_view name, ClassObject* superclass, ClassObject* metaclass);
  static ClassObject* place(std::string_view name, ClassObject* superclass, ClassObject* metaclass);
  template <class Type>
  struct Page {
    std::array<std::atomic<Type>, kPageSlots> entries{};
  };
  template <class Type>
  using Pages = std::array<std::atomic<Page<Type>*>, kPages>;
  /// What every entry of a new table refers to, so that a read needs no test for a missing page. Stays empty.
  static Page<Implementation> noMethods;
  template <class Type>
  static std::atomic<Type>& ownSlot(Pages<Type>& pages, std::uint32_t number, Page<Type>* missing);
  [[nodiscard]] bool inheritsDeep(const ClassObject* other) const;
  [[nodiscard]] const MethodRow* findRow(const SelectorRecord* record) const;

  std::string_view name_;
  ClassObject* superclass_;
  ClassObject* shown_;
  const Notifications* notifications_ = nullptr;
  ClassObject* instance_ = nullptr;  // of a metaclass: its one instance
  std::atomic<bool> isLeaf_{false};
  bool answersByRows_ = false;
  bool hasRowsOfProgram_ = false;  // its own or a superclass's; guarded by the runtime's lock
  std::uint32_t depth_;
  std::array<const ClassObject*, kAncestors> ancestors_{};
  Strong<NSObject> (*create_)() = nullptr;
  std::span<const AnyProtocol* const> protocols_;
  std::atomic<ClassObject*> notifying_{nullptr};
  // Two tables: the methods that sends have resolved, whose signatures are those of the declared messages, and the rows
  // that were asked for, whose signatures may be any. The second is made when a row is first asked for.
  mutable Pages<Implementation> methods_;
  mutable std::atomic<Pages<const MethodRow*>*> askedRows_{nullptr};
  std::vector<std::pair<const SelectorRecord*, const MethodRow*>> rows_;  // sorted; guarded by the runtime's lock
};

/// Counts the changes of any class's methods: a cache of rows is valid while the number is unchanged.
[[nodiscard]] HAVRIN_EXPORT std::uint64_t methodChanges();

/// A class, as a value. Null by default.
class HAVRIN_EXPORT Class {
 public:
  constexpr Class() = default;
  constexpr Class(std::nullptr_t) {}
  explicit Class(const ClassObject* object) : object_(const_cast<ClassObject*>(object)) {}
  /// `object` as a class, or null when it is none.
  [[nodiscard]] static Class from(const NSObject* object);

  [[nodiscard]] std::string_view name() const;
  [[nodiscard]] Class superclass() const { return Class(object_->superclass()); }
  [[nodiscard]] bool isSubclassOf(Class other) const { return object_->inheritsFrom(other.object_); }
  [[nodiscard]] ClassObject* object() const { return object_; }
  /// A class object is an object.
  operator NSObject*() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  friend bool operator==(Class a, Class b) { return a.object_ == b.object_; }

 private:
  ClassObject* object_ = nullptr;
};

/// A class whose instances are known to be of ClassType or a subclass.
template <class ClassType>
class ClassOf : public Class {
 public:
  using Instance = ClassType;
  using Class::Class;
  template <class Derived>
  requires std::derived_from<Derived, ClassType> ClassOf(ClassOf<Derived> other) : Class(other.object()) {}
};

/// A new object of a class known at run time, in its empty state. Throws: NSException (InvalidArgument) when the class
/// cannot be made without arguments.
[[nodiscard]] HAVRIN_EXPORT Strong<NSObject> alloc(Class cls);
template <class ClassType>
[[nodiscard]] Strong<ClassType> alloc(ClassOf<ClassType> cls) {
  return Strong<ClassType>::adopt(static_cast<ClassType*>(alloc(static_cast<Class>(cls)).detach()));
}

template <class Type>
inline constinit std::atomic<ClassObject*> classCache{nullptr};

/// In members.h. The library's own classes are built by the library: their headers declare this as `extern template`,
/// which saves every file that uses them a tenth of its time.
template <class Type>
ClassObject* buildClass();
extern template HAVRIN_EXPORT ClassObject* buildClass<NSObject>();

/// The class object of Type, built at first use.
template <class Type>
[[nodiscard]] ClassObject* classObject() {
  if (ClassObject* cls = classCache<Type>.load(std::memory_order_acquire)) [[likely]]
    return cls;
  // Stored here and not by buildClass(), which may be the library's: each image has a cache of its own.
  ClassObject* cls = buildClass<Type>();
  classCache<Type>.store(cls, std::memory_order_release);
  return cls;
}

template <class Type>
[[nodiscard]] ClassOf<Type> classOf() {
  return ClassOf<Type>(classObject<Type>());
}
/// The class of an object as the program sees it, observed or not.
template <std::derived_from<NSObject> Type>
[[nodiscard]] ClassOf<Type> classOf(const Type& object) {
  return ClassOf<Type>(dispatchClass(&object)->shown());
}

/// True when `object` is a Type; false for null. Not asked as a message: casts that overrides may answer are messages.
template <class Type>
[[nodiscard]] bool isKind(const NSObject* object) {
  return object && dispatchClass(object)->inheritsFrom(classObject<Type>());
}
/// `object` as a Type, or null when it is null or none. Cost: two loads and a compare.
template <class Type>
[[nodiscard]] Type* cast(NSObject* object) {
  return isKind<Type>(object) ? static_cast<Type*>(object) : nullptr;
}
template <class Type>
[[nodiscard]] const Type* cast(const NSObject* object) {
  return isKind<Type>(object) ? static_cast<const Type*>(object) : nullptr;
}
/// Of a temporary: the result owns the object, which otherwise might end with the expression.
template <class Type, class Other>
[[nodiscard]] Strong<Type> cast(Strong<Other>&& object) {
  if (!isKind<Type>(object)) return nullptr;
  return Strong<Type>::adopt(static_cast<Type*>(static_cast<NSObject*>(object.detach())));
}

/// Throws NSException (InvalidArgument): the object is of another class.
[[noreturn]] HAVRIN_EXPORT void throwWrongClass(const NSObject* object, std::string_view wanted);

template <class Derived>
Derived* checkedCast(NSObject* object) {
  if (object && !isKind<Derived>(object)) throwWrongClass(object, typeName<Derived>());
  return static_cast<Derived*>(object);
}
template <class Derived>
Derived& checkedReference(NSObject* object) {
  if (!isKind<Derived>(object)) throwWrongClass(object, typeName<Derived>());
  return *static_cast<Derived*>(object);
}

}  // namespace platform
}  // namespace havrin
