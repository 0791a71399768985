// SPDX-License-Identifier: Apache-2.0
// Blocks: closures that are shared by reference count. A parameter's type says whether the callee keeps what it is
// given: `BlockView` borrows for the length of the call and never allocates, `Block` is kept.
//
//   Block<int(int)> twice = [](int n) { return 2 * n; };     one allocation
//   Block<int(int)> same = twice;                            shared: same == twice
//   twice(21)                                                42
//   Block<void()>()()                                        throws NSException: the block is null
//   forEach([](Station& s) { ... });                         for a BlockView<void(NSObject*)>: class checked per call
//
// A block with object parameters takes a callable that names any subclass, by pointer or by reference: the class is
// tested at each call, and NSException (InvalidArgument) says what came instead.
//
// Left out: blocks as objects in collections, __block variables (capture a Strong or a pointer), block signatures at
// run time.
#pragma once

#include <HavrinFoundation/platform/base/invoke.h>
#include <HavrinFoundation/platform/export.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace havrin {
inline namespace platform {

class NSObject;
template <class Signature>
class Block;
template <class Signature>
class BlockView;

/// Throws NSException (InvalidArgument): a null block was called.
[[noreturn]] HAVRIN_EXPORT void throwNullBlock();
/// Throws NSException (InvalidArgument): a borrowed callable that cannot be copied was to be kept.
[[noreturn]] HAVRIN_EXPORT void throwUncopiableBlock();

/// `object` as a Derived, as `cast`, but an object of another class throws NSException (InvalidArgument); null stays
/// null.
/// Defined in class.h, which every header of a class includes.
template <class Derived>
Derived* checkedCast(NSObject* object);
/// As above, as a reference: null throws as well.
template <class Derived>
Derived& checkedReference(NSObject* object);

}  // namespace platform

namespace detail {

template <class...>
struct ParameterList {};

// The parameter list of a function object with one, non-template call operator.
template <class Function>
struct CallableParameters;
template <class Function>
requires requires { &Function::operator(); }
struct CallableParameters<Function> : CallableParameters<decltype(&Function::operator())> {};
template <class ResultType, class ClassType, class... Arguments>
struct CallableParameters<ResultType (ClassType::*)(Arguments...)> {
  using Result = ResultType;
  using List = ParameterList<Arguments...>;
};
template <class ResultType, class ClassType, class... Arguments>
struct CallableParameters<ResultType (ClassType::*)(Arguments...) const>
    : CallableParameters<ResultType (ClassType::*)(Arguments...)> {};
template <class ResultType, class ClassType, class... Arguments>
struct CallableParameters<ResultType (ClassType::*)(Arguments...) noexcept>
    : CallableParameters<ResultType (ClassType::*)(Arguments...)> {};
template <class ResultType, class ClassType, class... Arguments>
struct CallableParameters<ResultType (ClassType::*)(Arguments...) const noexcept>
    : CallableParameters<ResultType (ClassType::*)(Arguments...)> {};
template <class ResultType, class... Arguments>
struct CallableParameters<ResultType (*)(Arguments...)> {
  using Result = ResultType;
  using List = ParameterList<Arguments...>;
};

// Hands `argument` to a parameter of type Wanted: as it is where it converts, through the class test where the block
// has an object pointer and the callable names a subclass.
template <class Wanted, class Given>
decltype(auto) fitArgument(Given&& argument) {
  if constexpr (std::is_convertible_v<Given&&, Wanted>) {
    return std::forward<Given>(argument);
  } else if constexpr (std::is_pointer_v<Wanted>) {
    return checkedCast<std::remove_cv_t<std::remove_pointer_t<Wanted>>>(argument);
  } else {
    return checkedReference<std::remove_cvref_t<Wanted>>(argument);
  }
}

template <class Wanted, class Given>
inline constexpr bool fits = std::is_convertible_v<Given, Wanted> ||
                             (std::is_pointer_v<Given> &&
                              (std::is_pointer_v<Wanted> ||
                               std::is_lvalue_reference_v<Wanted>)&&std::is_class_v<std::remove_pointer_t<Given>> &&
                              std::is_class_v<std::remove_pointer_t<std::remove_reference_t<Wanted>>>);

template <class Given, class Wanted>
struct AllFit : std::false_type {};
template <class... Given, class... Wanted>
requires(sizeof...(Given) == sizeof...(Wanted)) struct AllFit<ParameterList<Given...>, ParameterList<Wanted...>>
    : std::bool_constant<(fits<Wanted, Given> && ...)> {
};

template <class Function>
concept PlainCallable = requires {
  typename CallableParameters<std::decay_t<Function>>::List;
};

template <class ResultType, class Function, class... Arguments>
ResultType callFitted(Function& callable, Arguments&&... arguments) {
  if constexpr (std::is_invocable_v<Function&, Arguments...>) {
    return static_cast<ResultType>(detail::invoke(callable, std::forward<Arguments>(arguments)...));
  } else {
    using Wanted = typename CallableParameters<std::decay_t<Function>>::List;
    return [&]<class... WantedTypes>(ParameterList<WantedTypes...>) -> ResultType {
      return static_cast<ResultType>(
          detail::invoke(callable, fitArgument<WantedTypes>(std::forward<Arguments>(arguments))...));
    }(Wanted{});
  }
}

template <class ResultType, class Given>
concept GivesResult = std::is_void_v<ResultType> || requires(Given (*call)()) {
  static_cast<ResultType>(call());
};

template <class ResultType, class Function, class... Arguments>
consteval bool fittable() {
  if constexpr (std::is_invocable_v<Function&, Arguments...>) {
    return GivesResult<ResultType, std::invoke_result_t<Function&, Arguments...>>;
  } else if constexpr (PlainCallable<Function>) {
    using Plain = CallableParameters<std::decay_t<Function>>;
    return AllFit<ParameterList<Arguments...>, typename Plain::List>::value &&
           GivesResult<ResultType, typename Plain::Result>;
  } else {
    return false;
  }
}

template <class Type>
inline constexpr bool isBlock = false;
template <class Name>
inline constexpr bool isBlock<Block<Name>> = true;
template <class Name>
inline constexpr bool isBlock<BlockView<Name>> = true;

template <class ResultType, class... Arguments>
struct BlockBody {
  std::atomic<std::uint32_t> references{1};
  ResultType (*call)(BlockBody*, Arguments...);
  void (*destroy)(BlockBody*);
};

template <class Function, class ResultType, class... Arguments>
struct BlockBodyOf : BlockBody<ResultType, Arguments...> {
  Function callable;

  template <class OtherSignature>
  explicit BlockBodyOf(OtherSignature&& source) : callable(std::forward<OtherSignature>(source)) {
    this->call = [](BlockBody<ResultType, Arguments...>* body, Arguments... arguments) -> ResultType {
      return callFitted<ResultType>(static_cast<BlockBodyOf*>(body)->callable, std::forward<Arguments>(arguments)...);
    };
    this->destroy = [](BlockBody<ResultType, Arguments...>* body) { delete static_cast<BlockBodyOf*>(body); };
  }
};

}  // namespace detail

inline namespace platform {

/// A callable that a block of this signature can be made of.
template <class Function, class Signature>
inline constexpr bool blockCallable = false;
template <class Function, class ResultType, class... Arguments>
inline constexpr bool blockCallable<Function, ResultType(Arguments...)> =
    !detail::isBlock<std::remove_cvref_t<Function>> && !std::is_same_v<std::remove_cvref_t<Function>, std::nullptr_t> &&
    detail::fittable<ResultType, std::decay_t<Function>, Arguments...>();

/// A shared, nullable closure.
/// Cost: one allocation when made from a callable; a copy is one count.
/// Threads: copies may be used from any thread; what the closure captures is the caller's affair.
template <class ResultType, class... Arguments>
class Block<ResultType(Arguments...)> {
 public:
  constexpr Block() noexcept = default;
  constexpr Block(std::nullptr_t) noexcept {}
  template <class Function>
  requires blockCallable<Function, ResultType(Arguments...)> Block(Function&& callable)
      : body_(new detail::BlockBodyOf<std::decay_t<Function>, ResultType, Arguments...>(
            std::forward<Function>(callable))) {}
  Block(const Block& other) noexcept : body_(other.body_) {
    if (body_) body_->references.fetch_add(1, std::memory_order_relaxed);
  }
  Block(Block&& other) noexcept : body_(std::exchange(other.body_, nullptr)) {}
  Block& operator=(Block other) noexcept {
    std::swap(body_, other.body_);
    return *this;
  }
  ~Block() {
    if (body_ && body_->references.fetch_sub(1, std::memory_order_acq_rel) == 1) body_->destroy(body_);
  }

  /// Throws: what the closure throws; NSException (InvalidArgument) when the block is null.
  ResultType operator()(Arguments... arguments) const {
    if (!body_) throwNullBlock();
    return body_->call(body_, std::forward<Arguments>(arguments)...);
  }
  explicit operator bool() const noexcept { return body_ != nullptr; }
  /// True for two references to one closure, and for two nulls.
  friend bool operator==(const Block& a, const Block& b) noexcept { return a.body_ == b.body_; }

 private:
  friend class BlockView<ResultType(Arguments...)>;
  detail::BlockBody<ResultType, Arguments...>* body_ = nullptr;
};

/// A borrowed block or callable, good for the length of a call.
/// Cost: no allocation, four words.
template <class ResultType, class... Arguments>
class BlockView<ResultType(Arguments...)> {
 public:
  constexpr BlockView() noexcept = default;
  constexpr BlockView(std::nullptr_t) noexcept {}
  BlockView(const Block<ResultType(Arguments...)>& block) noexcept
      : object_(block.body_),
        call_([](void* object, Arguments... arguments) -> ResultType {
          auto* body = static_cast<detail::BlockBody<ResultType, Arguments...>*>(object);
          return body->call(body, std::forward<Arguments>(arguments)...);
        }),
        copy_([](void* object) {
          auto* body = static_cast<detail::BlockBody<ResultType, Arguments...>*>(object);
          body->references.fetch_add(1, std::memory_order_relaxed);
          Block<ResultType(Arguments...)> shared;
          shared.body_ = body;
          return shared;
        }),
        shared_(true) {}
  template <class Function>
  requires blockCallable<Function, ResultType(Arguments...)> BlockView(Function&& callable)
  noexcept
      : object_(addressOf(callable)),
        call_([](void* object, Arguments... arguments) -> ResultType {
          return detail::callFitted<ResultType>(borrowed<std::remove_reference_t<Function>>(object),
                                                std::forward<Arguments>(arguments)...);
        }),
        copy_([](void* object) { return copyOf<std::remove_reference_t<Function>>(object); }) {}

  /// Throws: what the callable throws; NSException (InvalidArgument) when there is none.
  ResultType operator()(Arguments... arguments) const {
    if (!object_) throwNullBlock();
    return call_(object_, std::forward<Arguments>(arguments)...);
  }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  /// A share of the block that was passed; null for a plain callable, which the caller keeps alive. No allocation.
  [[nodiscard]] Block<ResultType(Arguments...)> share() const {
    return object_ && shared_ ? copy_(object_) : Block<ResultType(Arguments...)>();
  }
  /// A block that outlives the call: shares the block that was passed, or copies the callable. Null for none.
  [[nodiscard]] Block<ResultType(Arguments...)> copy() const {
    return object_ ? copy_(object_) : Block<ResultType(Arguments...)>();
  }

 private:
  // A callable by its address, functions included.
  template <class Function>
  static void* addressOf(Function& callable) noexcept {
    if constexpr (std::is_function_v<Function>) {
      return reinterpret_cast<void*>(&callable);
    } else {
      return const_cast<char*>(&reinterpret_cast<const volatile char&>(callable));
    }
  }
  template <class Function>
  static Function& borrowed(void* object) noexcept {
    if constexpr (std::is_function_v<Function>) {
      return *reinterpret_cast<Function*>(object);
    } else {
      return *static_cast<Function*>(object);
    }
  }
  template <class Function>
  static Block<ResultType(Arguments...)> copyOf(void* object) {
    if constexpr (std::is_copy_constructible_v<std::decay_t<Function>>) {
      return Block<ResultType(Arguments...)>(std::as_const(borrowed<Function>(object)));
    } else {
      throwUncopiableBlock();
    }
  }

  void* object_ = nullptr;
  ResultType (*call_)(void*, Arguments...) = nullptr;
  Block<ResultType(Arguments...)> (*copy_)(void*) = nullptr;
  bool shared_ = false;
};

}  // namespace platform
}  // namespace havrin
