// SPDX-License-Identifier: Apache-2.0
// The asynchronous map: order, unwinding, independent continuations, threads.
#include "../objects.h"
#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/foundation/array_buffer.h>

#include <future>

using namespace havrin;

namespace {

// The numbers from 0 on.
class Numbers : public Object<Numbers, NSArray> {
 public:
  explicit Numbers(std::uint64_t number) : number_(number) {}
  std::uint64_t count() const override { return number_; }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return makeNumber(index); }

 private:
  std::uint64_t number_;
};

Strong<NSObject> twice(NSObject* number) { return makeNumber(2 * static_cast<NSNumber*>(number)->integerValue()); }
void atOnce(NSObject* element, const AsyncCompletion& done) { done(element); }
void never(NSObject*, const AsyncCompletion&) { ADD_FAILURE() << "nothing is to be transformed"; }

// How far apart the places on the stack are from which `note` was called.
struct StackUse {
  void note() {
    const char here = 0;
    const auto address = reinterpret_cast<std::uintptr_t>(&here);
    lowest = std::min(lowest, address);
    highest = std::max(highest, address);
  }
  std::uintptr_t lowest = UINTPTR_MAX;
  std::uintptr_t highest = 0;
};

// Leaves out every third element, and passes the other steps on to the inherited method.
struct Sieve : Object<Sieve, Numbers> {
  explicit Sieve(std::uint64_t number) : Object(number) {}
  void step(std::uint64_t index, const AsyncTransform& transform, NSArray* partial, const AsyncResult& result) {
    if (index < count() && index % 3 == 2) {
      send<"asyncMapAux:block:currentResult:result:">(*this, index + 1, transform, partial, result);
    } else {
      sendSuper<"asyncMapAux:block:currentResult:result:">(*this, index, transform, partial, result);
    }
  }
  using Members = List<Method<"asyncMapAux:block:currentResult:result:", &Sieve::step>>;
};

}  // namespace

TEST(AsyncMap, GivesTheSameArrayWhenAndWhereverItCompletes) {
  const DispatchQueue others = dispatch_queue_create("others", DISPATCH_QUEUE_CONCURRENT);
  std::vector<std::function<void()>> later;
  const auto elsewhere = [&](NSObject* element, const AsyncCompletion& done) {
    dispatch_async(others, [done, value = twice(element)] { done(value); });
  };
  for (const auto& [why, transform] : Rows<const char*, AsyncTransform>{
           {"at once", [](NSObject*element, const AsyncCompletion&done) { done(twice(element)); }},
           {"later, on this thread",
            [&](NSObject*element, const AsyncCompletion&done) {
              later.push_back([done, value = twice(element)] { done(value); });
            }},
           {"on other threads", elsewhere},
           {"now and then at once",
            [&](NSNumber&number, const AsyncCompletion&done) {
              number.integerValue() % 3 == 0 ? elsewhere(&number, done) : done(twice(&number));
            }},
       }) {
    for (const std::uint64_t size : {0U, 1U, 2U, 50U}) {
      SCOPED_TRACE(why + (", " + std::to_string(size)) + " elements");
      const auto numbers = make<Numbers>(size);
      std::promise<Strong<NSArray>> result;
      send<"asyncMap:result:">(numbers, transform, [&](NSArray* values) { result.set_value(values); });
      for (std::size_t i = 0; i < later.size(); ++i) {
        EXPECT_EQ(later.size(), i + 1) << "one transform is outstanding";
        const auto job = later[i];
        job();
      }
      later.clear();
      const Strong<NSArray> values = result.get_future().get();
      EXPECT_TRUE(values->isEqual(send<"map:">(numbers, twice)));
      EXPECT_EQ(classOf(*values).name(), "NSArray");
    }
  }
}

TEST(AsyncMap, StartsAtAnyIndexAndCallsTheResultAtOnceWhereNoElementIsLeft) {
  const auto ab = letters("ab");
  std::string got;
  const auto result = [&](NSArray* values) { got += text(values); };
  send<"asyncMap:result:">(makeArray({}), never, result);
  send<"asyncMapAux:block:currentResult:result:">(ab, 2, never, letters("x"), result);
  send<"asyncMapAux:block:currentResult:result:">(ab, ~std::uint64_t{0}, never, letters("y"), result);
  send<"asyncMapAux:block:currentResult:result:">(ab, 1, atOnce, letters("z"), result);
  EXPECT_EQ(got, "()(x)(y)(z, b)");
}

TEST(AsyncMap, UsesConstantStackAndCopiesALinearNumberOfSlots) {
  constexpr std::uint64_t kSize = 100'000;
  StackUse stack;
  const AsyncTransform noted = [&stack](NSObject* element, const AsyncCompletion& done) {
    stack.note();
    done(element);
  };
  // A chain within the transform of another ends before its message returns, and completes the outer one.
  const AsyncTransform nested = [&stack](NSObject* element, const AsyncCompletion& done) {
    stack.note();
    bool ended = false;
    send<"asyncMap:result:">(makeArray({element, element}), atOnce, [&](NSArray* pair) {
      done(pair->lastObject());
      ended = true;
    });
    EXPECT_TRUE(ended);
  };
  std::uint64_t results = 0;
  const AsyncResult count = [&](NSArray* values) { results = values->count(); };
  const AsyncResult next = [&](NSArray* values) {
    stack.note();
    if (++results < kSize) send<"asyncMap:result:">(values, noted, next);
  };
  for (const auto& [why, array, transform, result, expected, slotsCopied] :
       Rows<const char*, Strong<NSArray>, AsyncTransform, AsyncResult, std::uint64_t, std::uint64_t>{
           {"a million steps", make<Numbers>(10 * kSize), noted, count, 10 * kSize, 20 * kSize},
           {"a chain within each transform", make<Numbers>(kSize), nested, count, kSize, 6 * kSize},
           {"an override of each step", make<Sieve>(kSize), noted, count, 66'667, 2 * kSize},
           {"each result begins the next chain", letters("ab"), noted, next, kSize, 4 * kSize},
       }) {
    SCOPED_TRACE(why);
    results = 0;
    const std::uint64_t copied = arraySlotsCopied();
    send<"asyncMap:result:">(array, transform, result);
    EXPECT_EQ(results, expected);
    EXPECT_LE(arraySlotsCopied() - copied, slotsCopied);
    // What the frames of one step take, sanitizers included: far less than one frame for each element would.
    EXPECT_LT(stack.highest - stack.lowest, 16U * 1024);
    stack = {};
  }
}

TEST(AsyncMap, ContinuesForEachCallOfACompletionAsNestedCallsWould) {
  const auto twice = [](NSString& letter, const AsyncCompletion& done) {
    for (const char* call : {"1", "2"}) done(s(text(&letter) + call));
  };
  std::string got;
  send<"asyncMap:result:">(letters("ab"), twice, [&](NSArray* values) { got += text(values); });
  EXPECT_EQ(got, "(a1, b1)(a1, b2)(a2, b1)(a2, b2)");
}

TEST(AsyncMap, KeepsASnapshotForEachCompletion) {
  std::vector<AsyncCompletion> completions;
  std::string got;
  const auto keep = [&](NSObject*, const AsyncCompletion& done) { completions.push_back(done); };
  send<"asyncMap:result:">(letters("ab"), keep, [&](NSArray* values) { got += text(values); });
  ASSERT_EQ(completions.size(), 1U);
  completions[0](s("1"));
  completions[0](s("2"));
  ASSERT_EQ(completions.size(), 3U) << "each call transforms the second element anew";
  completions[2](s("3"));
  completions[1](s("4"));
  completions[1](s("5"));
  EXPECT_EQ(got, "(2, 3)(1, 4)(1, 5)");
}

TEST(AsyncMap, ReadsAMutableReceiverAtEachStep) {
  const auto list = letters("abcd");
  std::string got;
  const auto change = [&](NSString& letter, const AsyncCompletion& done) {
    if (text(&letter) == "a") list->replaceObjectAtIndex(1, s("B"));
    if (text(&letter) == "B") list->removeObjectsInRange({2, 2});
    if (text(&letter) == "B") list->addObject(s("e"));
    done(&letter);
  };
  send<"asyncMap:result:">(list, change, [&](NSArray* values) { got = text(values); });
  EXPECT_EQ(got, "(a, B, e)");
}

TEST(AsyncMap, HoldsReceiverAndBlocksAsLongAsTheCompletionLives) {
  Weak<NSArray> receiver;
  Weak<NSNumber> captured;
  AsyncCompletion completion;
  {
    const auto capture = makeNumber(1);
    const auto numbers = make<Numbers>(2U);
    receiver = Strong<NSArray>(numbers);
    captured = capture;
    send<"asyncMap:result:">(
        numbers, [&completion, capture](NSObject*, const AsyncCompletion& done) { completion = done; },
        [capture](NSArray*) {});
  }
  EXPECT_TRUE(receiver.lock() && captured.lock());
  completion = nullptr;
  EXPECT_FALSE(receiver.lock() || captured.lock());
}

TEST(AsyncMap, RefusesNullBeforeAnythingRuns) {
  const AsyncTransform transform = never;
  const AsyncResult result = [](NSArray*) { FAIL(); };
  const Strong<NSArray> array = letters("a");
  const std::function<void()> calls[] = {
      [&] { send<"asyncMap:result:">(array, nullptr, result); },
      [&] { send<"asyncMap:result:">(array, transform, nullptr); },
      [&] { send<"asyncMapAux:block:currentResult:result:">(array, 1, nullptr, array, result); },
      [&] { send<"asyncMapAux:block:currentResult:result:">(array, 0, transform, array, nullptr); },
      [&] { send<"asyncMapAux:block:currentResult:result:">(array, 1, transform, nullptr, result); },
  };
  for (const auto& call : calls) EXPECT_EQ(nameOf(call), NSInvalidArgumentException);
  std::string got;
  const auto refused = [](NSObject* element, const AsyncCompletion& done) {
    EXPECT_EQ(nameOf([&] { done(nullptr); }), NSInvalidArgumentException);
    done(element);  // it may then be given a value
  };
  send<"asyncMap:result:">(array, refused, [&](NSArray* values) { got += text(values); });
  EXPECT_EQ(got, "(a)");
}

TEST(AsyncMap, FinishesTheStepsAskedForBeforeTheFirstExceptionComesOut) {
  const auto numbers = make<Numbers>(5U);
  for (const bool later : {false, true}) {
    std::string got;
    AsyncCompletion first;
    const auto failing = [&](NSNumber& number, const AsyncCompletion& done) {
      if (later && !first) {
        first = done;
        return;
      }
      done(&number);
      if (number.integerValue() % 2 == 0) throw std::runtime_error(text(&number));
    };
    const auto result = [&](NSArray* values) {
      got += text(values);
      throw std::logic_error("after the others");
    };
    try {
      send<"asyncMap:result:">(numbers, failing, result);
      ASSERT_TRUE(first);
      first(numbers->objectAtIndex(0));
      FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), later ? "2" : "0");
    }
    EXPECT_EQ(got, "(0, 1, 2, 3, 4)");
  }
}
