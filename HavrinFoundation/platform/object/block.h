// Blocks: closures that are shared by reference count. A parameter's type says whether the callee keeps what it is
// given: `BlockView` borrows for the length of the call and never allocates, `Block` is kept.
//
//   Block<int(int)> twice = [](int n) { return 2 * n; };     // one allocation
//   Block<int(int)> same = twice;                            // shared, same == twice
//   twice(21)                                                // 42
//   Block<void()> none;  none ? 1 : 0                        // 0; calling it throws NSException
//   void each(BlockView<void(NSObject*)> body);              // each([](Station& s) { ... }): class checked per call
//
// A block with object parameters takes a callable that names any subclass, by pointer or by reference: the class is
// tested at each call, and NSException (InvalidArgument) says what came instead.
//
// Left out: blocks as objects in collections, __block variables (capture a Strong or a pointer), block signatures at
// run time.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include <HavrinFoundation/platform/export.h>

namespace havrin::inline platform {

class NSObject;
template <class Signature>
class Block;
template <class Signature>
class BlockView;

/// Throws NSException (InvalidArgument): a null block was called.
[[noreturn]] HAVRIN_EXPORT void throwNullBlock();
/// Throws NSException (InvalidArgument): a borrowed callable that cannot be copied was to be kept.
[[noreturn]] HAVRIN_EXPORT void throwUncopiableBlock();

/// `object` as a D, as `cast`, but an object of another class throws NSException (InvalidArgument); null stays null.
/// Defined in class.h, which every header of a class includes.
template <class D>
D* checkedCast(NSObject* object);
/// As above, as a reference: null throws as well.
template <class D>
D& checkedReference(NSObject* object);

namespace detail {

template <class...>
struct ParameterList {};

// The parameter list of a function object with one, non-template call operator.
template <class F>
struct CallableParameters;
template <class F>
requires requires { &F::operator(); }
struct CallableParameters<F> : CallableParameters<decltype(&F::operator())> {};
template <class R, class C, class... A>
struct CallableParameters<R (C::*)(A...)> {
  using Result = R;
  using List = ParameterList<A...>;
};
template <class R, class C, class... A>
struct CallableParameters<R (C::*)(A...) const> : CallableParameters<R (C::*)(A...)> {};
template <class R, class C, class... A>
struct CallableParameters<R (C::*)(A...) noexcept> : CallableParameters<R (C::*)(A...)> {};
template <class R, class C, class... A>
struct CallableParameters<R (C::*)(A...) const noexcept> : CallableParameters<R (C::*)(A...)> {};
template <class R, class... A>
struct CallableParameters<R (*)(A...)> {
  using Result = R;
  using List = ParameterList<A...>;
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

template <class F>
concept PlainCallable = requires {
  typename CallableParameters<std::decay_t<F>>::List;
};

template <class R, class F, class... A>
R callFitted(F& callable, A&&... arguments) {
  if constexpr (std::is_invocable_v<F&, A...>) {
    return static_cast<R>(std::invoke(callable, std::forward<A>(arguments)...));
  } else {
    using Wanted = typename CallableParameters<std::decay_t<F>>::List;
    return [&]<class... W>(ParameterList<W...>) -> R {
      return static_cast<R>(std::invoke(callable, fitArgument<W>(std::forward<A>(arguments))...));
    }(Wanted{});
  }
}

template <class R, class Given>
concept GivesResult = std::is_void_v<R> || requires(Given (*call)()) {
  static_cast<R>(call());
};

template <class R, class F, class... A>
consteval bool fittable() {
  if constexpr (std::is_invocable_v<F&, A...>) {
    return GivesResult<R, std::invoke_result_t<F&, A...>>;
  } else if constexpr (PlainCallable<F>) {
    using Plain = CallableParameters<std::decay_t<F>>;
    return AllFit<ParameterList<A...>, typename Plain::List>::value && GivesResult<R, typename Plain::Result>;
  } else {
    return false;
  }
}

template <class T>
inline constexpr bool isBlock = false;
template <class S>
inline constexpr bool isBlock<Block<S>> = true;
template <class S>
inline constexpr bool isBlock<BlockView<S>> = true;

template <class R, class... A>
struct BlockBody {
  std::atomic<std::uint32_t> references{1};
  R (*call)(BlockBody*, A...);
  void (*destroy)(BlockBody*);
};

template <class F, class R, class... A>
struct BlockBodyOf : BlockBody<R, A...> {
  F callable;

  template <class G>
  explicit BlockBodyOf(G&& source) : callable(std::forward<G>(source)) {
    this->call = [](BlockBody<R, A...>* body, A... arguments) -> R {
      return callFitted<R>(static_cast<BlockBodyOf*>(body)->callable, std::forward<A>(arguments)...);
    };
    this->destroy = [](BlockBody<R, A...>* body) { delete static_cast<BlockBodyOf*>(body); };
  }
};

}  // namespace detail

/// A callable that a block of this signature can be made of.
template <class F, class Signature>
inline constexpr bool blockCallable = false;
template <class F, class R, class... A>
inline constexpr bool blockCallable<F, R(A...)> =
    !detail::isBlock<std::remove_cvref_t<F>> && !std::is_same_v<std::remove_cvref_t<F>, std::nullptr_t> &&
    detail::fittable<R, std::decay_t<F>, A...>();

/// A shared, nullable closure.
/// Cost: one allocation when made from a callable; a copy is one count.
/// Threads: copies may be used from any thread; what the closure captures is the caller's affair.
template <class R, class... A>
class Block<R(A...)> {
 public:
  constexpr Block() noexcept = default;
  constexpr Block(std::nullptr_t) noexcept {}
  template <class F>
  requires blockCallable<F, R(A...)> Block(F&& callable)
      : body_(new detail::BlockBodyOf<std::decay_t<F>, R, A...>(std::forward<F>(callable))) {}
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
  R operator()(A... arguments) const {
    if (!body_) throwNullBlock();
    return body_->call(body_, std::forward<A>(arguments)...);
  }
  explicit operator bool() const noexcept { return body_ != nullptr; }
  /// True for two references to one closure, and for two nulls.
  friend bool operator==(const Block& a, const Block& b) noexcept { return a.body_ == b.body_; }

 private:
  friend class BlockView<R(A...)>;
  detail::BlockBody<R, A...>* body_ = nullptr;
};

/// A borrowed block or callable, good for the length of a call.
/// Cost: no allocation, four words.
template <class R, class... A>
class BlockView<R(A...)> {
 public:
  constexpr BlockView() noexcept = default;
  constexpr BlockView(std::nullptr_t) noexcept {}
  BlockView(const Block<R(A...)>& block) noexcept
      : object_(block.body_),
        call_([](void* object, A... arguments) -> R {
          auto* body = static_cast<detail::BlockBody<R, A...>*>(object);
          return body->call(body, std::forward<A>(arguments)...);
        }),
        copy_([](void* object) {
          auto* body = static_cast<detail::BlockBody<R, A...>*>(object);
          body->references.fetch_add(1, std::memory_order_relaxed);
          Block<R(A...)> shared;
          shared.body_ = body;
          return shared;
        }),
        shared_(true) {}
  template <class F>
  requires blockCallable<F, R(A...)> BlockView(F&& callable)
  noexcept
      : object_(addressOf(callable)),
        call_([](void* object, A... arguments) -> R {
          return detail::callFitted<R>(borrowed<std::remove_reference_t<F>>(object), std::forward<A>(arguments)...);
        }),
        copy_([](void* object) { return copyOf<std::remove_reference_t<F>>(object); }) {}

  /// Throws: what the callable throws; NSException (InvalidArgument) when there is none.
  R operator()(A... arguments) const {
    if (!object_) throwNullBlock();
    return call_(object_, std::forward<A>(arguments)...);
  }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  /// A share of the block that was passed; null for a plain callable, which the caller keeps alive. No allocation.
  [[nodiscard]] Block<R(A...)> share() const { return object_ && shared_ ? copy_(object_) : Block<R(A...)>(); }
  /// A block that outlives the call: shares the block that was passed, or copies the callable. Null for none.
  [[nodiscard]] Block<R(A...)> copy() const { return object_ ? copy_(object_) : Block<R(A...)>(); }

 private:
  // A callable by its address, functions included.
  template <class F>
  static void* addressOf(F& callable) noexcept {
    if constexpr (std::is_function_v<F>) {
      return reinterpret_cast<void*>(&callable);
    } else {
      return const_cast<void*>(static_cast<const volatile void*>(std::addressof(callable)));
    }
  }
  template <class F>
  static F& borrowed(void* object) noexcept {
    if constexpr (std::is_function_v<F>) {
      return *reinterpret_cast<F*>(object);
    } else {
      return *static_cast<F*>(object);
    }
  }
  template <class F>
  static Block<R(A...)> copyOf(void* object) {
    if constexpr (std::is_copy_constructible_v<std::decay_t<F>>) {
      return Block<R(A...)>(std::as_const(borrowed<F>(object)));
    } else {
      throwUncopiableBlock();
    }
  }

  void* object_ = nullptr;
  R (*call_)(void*, A...) = nullptr;
  Block<R(A...)> (*copy_)(void*) = nullptr;
  bool shared_ = false;
};

}  // namespace havrin::inline platform
