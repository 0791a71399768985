// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/collections/array_blocks_messages.h>

#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace havrin {

namespace {

template <class AnyBlock>
void requireBlock(const NSArray& self, std::string_view selector, const AnyBlock& block) {
  if (!block) throwNullArgument(self, selector, "block");
}

// Calls `body(element)` in order: in place for an array of the layer's own class, through the receiver's
// enumeration in a subclass, which may have its own. The caller holds the array.
template <class Body>
void forEach(const NSArray& array, Body body) {
  if (array.isPlain()) {
    array.visit([&](NSObject* element, std::uint64_t) {
      body(element);
      return true;
    });
  } else {
    array.enumerateObjectsUsingBlock([&](NSObject* element, std::uint64_t, bool&) { body(element); });
  }
}

Strong<NSArray> select(NSArray& self, ElementPredicate predicate) {
  requireBlock(self, "select:", predicate);
  if (self.isPlain()) {
    ArrayBuilder passing(self.count());
    forEach(self, [&](NSObject* element) { passing.addWhere(predicate(element), element); });
    return passing.finish();
  }
  return self.objectsAtIndexes(
      self.indexesOfObjectsPassingTest([&](NSObject* element, std::uint64_t, bool&) { return predicate(element); }));
}

Strong<NSArray> reject(NSArray& self, ElementPredicate predicate) {
  requireBlock(self, "reject:", predicate);
  return send<"select:">(self, [&](NSObject* element) { return !predicate(element); });
}

Strong<NSArray> map(NSArray& self, ElementTransform transform) {
  requireBlock(self, "map:", transform);
  ArrayBuilder mapped(self.count());
  forEach(self, [&](NSObject* element) {
    Strong<NSObject> value = transform(element);
    mapped.add(value ? std::move(value) : NSNull::null());
  });
  return mapped.finish();
}

// The asynchronous map. Going on inside the completion or the `result` that asks for it would nest the rest of the
// chain in it. So a completion that is called inside its own transform leaves the next step with a loop below, which
// sends it when the transform has returned, and a chain that begins inside a `result` uses the loop that runs the
// `result`.

struct Step {
  Strong<NSArray> array;
  std::uint64_t index = 0;
  AsyncTransform transform;
  Strong<NSArray> partial;
  AsyncResult result;
};

class Loop;

// A transform that runs on this thread, and the loop that takes the steps its completion asks for.
struct Running {
  std::uint64_t number;  // of the step, unique in the process
  Loop& loop;
  Running* outer;
};

// The loop that a step joins instead of starting its own, so that an override between the two costs no stack.
struct Joinable {
  Loop* loop = nullptr;
  const NSArray* array = nullptr;  // to which the loop has sent a step; null while the loop runs a `result`

  [[nodiscard]] Loop* loopFor(const NSArray& receiver) const { return !array || array == &receiver ? loop : nullptr; }
};

struct Chains {
  Running* running = nullptr;  // innermost first
  Joinable joinable;
};
constinit thread_local Chains chains;
constinit std::atomic<std::uint64_t> steps{0};

// Gives a variable another value for a scope.
template <class T>
class Scoped {
 public:
  Scoped(T& variable, T value) : variable_(variable), before_(std::exchange(variable, value)) {}
  Scoped(const Scoped&) = delete;
  Scoped& operator=(const Scoped&) = delete;
  ~Scoped() { variable_ = before_; }

 private:
  T& variable_;
  T before_;
};

// Sends steps, one after the other, until none is left. What one step leaves goes before what waited behind it, in the
// order in which it was asked for, as if each completion had gone on at once.
class Loop {
 public:
  void add(Step step) { steps_.push_back(std::move(step)); }
  // Takes a step: runs its transform, whose completion may leave further steps here, or its result.
  void take(const Step& step);
  // Takes a step, then sends what it left.
  void start(const Step& step) {
    attempt([&] { take(step); });
    run();
  }
  // Sends until no step is left. Throws: the first exception of all that came out of the steps.
  void run();

 private:
  template <class Body>
  void attempt(Body body) {
    try {
      body();
    } catch (...) {
      if (!failure_) failure_ = std::current_exception();
    }
  }

  std::vector<Step> steps_;  // the last is next
  std::exception_ptr failure_;
};

void complete(const Step& step, std::uint64_t number, NSObject* value) {
  if (!value) {
    throw NSException(NSInvalidArgumentException,
                      "the completion of an asynchronous map was given null for index " + std::to_string(step.index));
  }
  Step next{step.array, step.index + 1, step.transform, step.partial->arrayByAddingObject(value), step.result};
  for (const Running* running = chains.running; running; running = running->outer) {
    if (running->number == number) {
      running->loop.add(std::move(next));
      return;
    }
  }
  Loop loop;
  loop.add(std::move(next));
  loop.run();
}

void Loop::take(const Step& step) {
  const Scoped<Joinable> closed(chains.joinable, {});  // a chain inside a transform ends before its message returns
  if (step.index >= step.array->count()) {
    chains.joinable = {this, nullptr};
    step.result(step.partial);
    return;
  }
  const Strong<NSObject> element = step.array->objectAtIndexedSubscript(step.index);
  Running running{steps.fetch_add(1, std::memory_order_relaxed), *this, chains.running};
  const Scoped entered(chains.running, &running);
  const AsyncCompletion completion = [step, number = running.number](NSObject* value) {
    complete(step, number, value);
  };
  step.transform(element, completion);
}

void Loop::run() {
  std::size_t waiting = 0;
  while (!steps_.empty()) {
    std::reverse(steps_.begin() + static_cast<std::ptrdiff_t>(waiting), steps_.end());
    const Step step = std::move(steps_.back());
    steps_.pop_back();
    waiting = steps_.size();
    const Scoped<Joinable> open(chains.joinable, {this, step.array});
    attempt([&] {
      send<"asyncMapAux:block:currentResult:result:">(step.array, step.index, step.transform, step.partial,
                                                      step.result);
    });
  }
  if (failure_) std::rethrow_exception(failure_);
}

void asyncMap(NSArray& self, const AsyncTransform& transform, const AsyncResult& result) {
  requireBlock(self, "asyncMap:result:", transform);
  requireBlock(self, "asyncMap:result:", result);
  send<"asyncMapAux:block:currentResult:result:">(self, 0, transform, makeArray({}), result);
}

void asyncMapAux(NSArray& self, std::uint64_t index, const AsyncTransform& transform, NSArray* partial,
                 const AsyncResult& result) {
  constexpr std::string_view kSelector = "asyncMapAux:block:currentResult:result:";
  requireBlock(self, kSelector, transform);
  requireBlock(self, kSelector, result);
  if (!partial) throwNullArgument(self, kSelector, "partial result");
  const Step step{&self, index, transform, partial, result};
  if (Loop* const sender = chains.joinable.loopFor(self)) {
    sender->take(step);
  } else {
    Loop().start(step);
  }
}

Strong<NSArray> compactMap(NSArray& self, ElementTransform transform) {
  requireBlock(self, "compactMap:", transform);
  ArrayBuilder mapped(self.count());
  forEach(self, [&](NSObject* element) {
    if (Strong<NSObject> value = transform(element)) mapped.add(std::move(value));
  });
  return mapped.finish();
}

Strong<NSObject> reduce(NSArray& self, NSObject* initial, ElementReducer reducer) {
  requireBlock(self, "reduce:withBlock:", reducer);
  Strong<NSObject> accumulator(initial);
  forEach(self, [&](NSObject* element) { accumulator = reducer(accumulator, element); });
  return accumulator;
}

Strong<NSObject> firstWhere(NSArray& self, ElementPredicate predicate) {
  requireBlock(self, "firstWhere:", predicate);
  const std::uint64_t index =
      self.indexOfObjectPassingTest([&](NSObject* element, std::uint64_t, bool&) { return predicate(element); });
  return index == kNotFound ? nullptr : self.objectAtIndex(index);
}

constexpr MethodRow kRows[] = {row<NSArray, "select:", select>(),
                               row<NSArray, "reject:", reject>(),
                               row<NSArray, "map:", map>(),
                               row<NSArray, "asyncMap:result:", asyncMap>(),
                               row<NSArray, "asyncMapAux:block:currentResult:result:", asyncMapAux>(),
                               row<NSArray, "compactMap:", compactMap>(),
                               row<NSArray, "reduce:withBlock:", reduce>(),
                               row<NSArray, "firstWhere:", firstWhere>()};

}  // namespace

extern constinit const Category kArrayBlocks{classObject<NSArray>, "Blocks", kRows, {}};

}  // namespace havrin
