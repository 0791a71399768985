// The asynchronous map: order, unwinding, independent continuations, threads.
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <queue>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <HavrinFoundation/collections/array_blocks_messages.h>
#include <HavrinFoundation/platform/foundation/array_buffer.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <gtest/gtest.h>

#include "tests/random_seed.h"

using namespace havrin;

namespace {

Strong<NSString> s(std::string_view text) { return makeString(text); }
std::string text(const NSObject* object) { return object ? utf8(*object->description()) : "nil"; }

// The numbers from 0 on; counts the steps that are sent to it.
class Numbers : public Object<Numbers, NSArray> {
 public:
  explicit Numbers(std::uint64_t number) : number_(number) {}
  std::uint64_t count() const override { return number_; }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return makeNumber(index); }

 private:
  std::uint64_t number_;
};

Strong<NSObject> twice(NSObject* number) { return makeNumber(2 * static_cast<NSNumber*>(number)->integerValue()); }

// A chain that completes on worker threads, one after the other.
class Workers {
 public:
  explicit Workers(int threads) {
    for (int i = 0; i < threads; ++i) threads_.emplace_back([this] { work(); });
  }
  ~Workers() {
    {
      const std::lock_guard guard(lock_);
      ending_ = true;
    }
    woken_.notify_all();
    for (auto& thread : threads_) thread.join();
  }
  void post(std::function<void()> job) {
    {
      const std::lock_guard guard(lock_);
      jobs_.push(std::move(job));
    }
    woken_.notify_one();
  }

 private:
  void work() {
    std::unique_lock guard(lock_);
    for (;;) {
      woken_.wait(guard, [this] { return ending_ || !jobs_.empty(); });
      if (jobs_.empty()) return;
      std::function<void()> job = std::move(jobs_.front());
      jobs_.pop();
      guard.unlock();
      job();
      job = nullptr;
      guard.lock();
    }
  }

  std::mutex lock_;
  std::condition_variable woken_;
  std::queue<std::function<void()>> jobs_;
  bool ending_ = false;
  std::vector<std::thread> threads_;
};

// Leaves out every third element, and passes each step on to another array.
class Sieve : public Object<Sieve, NSArray> {
 public:
  explicit Sieve(NSArray* inner) : inner_(inner) {}
  std::uint64_t count() const override { return inner_->count(); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return inner_->objectAtIndex(index); }
  void step(std::uint64_t index, const AsyncTransform& transform, NSArray* partial, const AsyncResult& result) {
    ++steps_;
    if (index >= count()) return result(partial);
    if (index % 3 == 2) {
      return send<"asyncMapAux:block:currentResult:result:">(*this, index + 1, transform, partial, result);
    }
    const Strong<Sieve> hold(this);
    send<"asyncMapAux:block:currentResult:result:">(
        inner_->subarrayWithRange({index, 1}), 0, transform, makeArray({}), [=](NSArray* one) {
          send<"asyncMapAux:block:currentResult:result:">(hold, index + 1, transform,
                                                          partial->arrayByAddingObjectsFromArray(one), result);
        });
  }
  using Members = List<Method<"asyncMapAux:block:currentResult:result:", &Sieve::step>>;
  Strong<NSArray> inner_;
  int steps_ = 0;
};

}  // namespace

TEST(AsyncMap, GivesTheSameArrayWheneverAndWhereverItCompletes) {
  Workers workers(3);
  std::vector<std::pair<std::string, AsyncTransform>> transforms;
  std::vector<std::function<void()>> later;
  transforms.emplace_back("at once", [](NSObject* element, const AsyncCompletion& done) { done(twice(element)); });
  transforms.emplace_back("later, on this thread", [&](NSObject* element, const AsyncCompletion& done) {
    later.push_back([done, value = twice(element)] { done(value); });
  });
  transforms.emplace_back("on other threads", [&](NSObject* element, const AsyncCompletion& done) {
    workers.post([done, value = twice(element)] { done(value); });
  });
  transforms.emplace_back("now and then at once", [&](NSObject* element, const AsyncCompletion& done) {
    if (static_cast<NSNumber*>(element)->integerValue() % 3 != 0) return done(twice(element));
    workers.post([done, value = twice(element)] { done(value); });
  });
  for (const auto& [why, transform] : transforms) {
    for (const std::uint64_t n : {0U, 1U, 2U, 50U}) {
      SCOPED_TRACE(why + ", " + std::to_string(n) + " elements");
      const auto numbers = make<Numbers>(n);
      std::mutex lock;
      std::condition_variable woken;
      std::vector<Strong<NSArray>> results;
      send<"asyncMap:result:">(numbers, transform, [&](NSArray* values) {
        const std::lock_guard guard(lock);
        results.push_back(values);
        woken.notify_one();
      });
      for (std::size_t i = 0; i < later.size(); ++i) {
        EXPECT_EQ(later.size(), i + 1) << "one transform is outstanding";
        const auto job = later[i];
        job();
      }
      later.clear();
      std::unique_lock guard(lock);
      woken.wait(guard, [&] { return !results.empty(); });
      EXPECT_TRUE(results[0]->isEqual(send<"map:">(numbers, twice)));
      EXPECT_EQ(classOf(*results[0]).name(), "NSArray");
    }
  }
}

TEST(AsyncMap, OfAnEmptyReceiverAnswersBeforeItReturns) {
  std::string got;
  const auto never = [](NSObject*, const AsyncCompletion&) { FAIL(); };
  const auto result = [&](NSArray* values) { got += text(values); };
  send<"asyncMap:result:">(makeArray({}), never, result);
  EXPECT_EQ(got, "()");
  const auto ab = makeArray({s("a"), s("b")});
  send<"asyncMapAux:block:currentResult:result:">(ab, 2, never, makeArray({s("x")}), result);
  send<"asyncMapAux:block:currentResult:result:">(ab, ~std::uint64_t{0}, never, makeArray({s("y")}), result);
  EXPECT_EQ(got, "()(x)(y)") << "nor is there an element at or beyond the count";
  send<"asyncMapAux:block:currentResult:result:">(
      ab, 1, [](NSObject* element, const AsyncCompletion& done) { done(element); }, makeArray({s("x")}), result);
  EXPECT_EQ(got, "()(x)(y)(x, b)") << "a chain resumed at an index";
}

TEST(AsyncMap, UsesConstantStackAndCopiesALinearNumberOfSlots) {
  constexpr std::uint64_t kMany = 1'000'000;
  const auto numbers = make<Numbers>(kMany);
  const char* lowest = nullptr;
  const char* highest = nullptr;
  const std::uint64_t copied = arraySlotsCopied();
  Strong<NSArray> values;
  send<"asyncMap:result:">(
      numbers,
      [&](NSObject* element, const AsyncCompletion& done) {
        const char here = 0;
        if (!lowest || &here < lowest) lowest = &here;
        if (!highest || &here > highest) highest = &here;
        done(element);
      },
      [&](NSArray* result) { values = result; });
  ASSERT_EQ(values->count(), kMany);
  EXPECT_TRUE(values->lastObject()->isEqual(makeNumber(kMany - 1)));
  EXPECT_LT(highest - lowest, 4096);
  EXPECT_LE(arraySlotsCopied() - copied, 2 * kMany);
}

TEST(AsyncMap, ContinuesOnceForEachCallOfACompletionInTheOrderOfNestedCalls) {
  // What a chain without unwinding would do, written as plain recursion: element i completes `calls[i]` times.
  std::mt19937_64 random = seededGenerator();
  for (int round = 0; round < 100; ++round) {
    std::vector<int> calls(random() % 6);
    for (int& number : calls) number = static_cast<int>(random() % 3);
    std::vector<std::string> expected;
    const std::function<void(std::size_t, std::string)> chain = [&](std::size_t index, const std::string& partial) {
      if (index == calls.size()) return expected.push_back("(" + partial + ")");
      for (int call = 0; call < calls[index]; ++call) {
        chain(index + 1, partial + (index == 0 ? "" : ", ") + std::to_string(index) + "." + std::to_string(call));
      }
    };
    chain(0, "");
    std::vector<std::string> got;
    send<"asyncMap:result:">(
        make<Numbers>(calls.size()),
        [&](NSNumber& element, const AsyncCompletion& done) {
          const auto index = static_cast<std::size_t>(element.integerValue());
          for (int call = 0; call < calls[index]; ++call) {
            done(s(std::to_string(index) + "." + std::to_string(call)));
          }
        },
        [&](NSArray* values) { got.push_back(text(values)); });
    EXPECT_EQ(got, expected);
  }
}

TEST(AsyncMap, KeepsASnapshotForEachCompletion) {
  std::vector<AsyncCompletion> completions;
  std::vector<std::string> got;
  send<"asyncMap:result:">(
      makeArray({s("a"), s("b")}), [&](NSObject*, const AsyncCompletion& done) { completions.push_back(done); },
      [&](NSArray* values) { got.push_back(text(values)); });
  ASSERT_EQ(completions.size(), 1U);
  completions[0](s("1"));
  completions[0](s("2"));
  ASSERT_EQ(completions.size(), 3U) << "each call transforms the second element anew";
  completions[2](s("3"));
  completions[1](s("4"));
  completions[1](s("5"));
  EXPECT_EQ(got, (std::vector<std::string>{"(2, 3)", "(1, 4)", "(1, 5)"}));
}

TEST(AsyncMap, ReadsAChangingReceiverAnewAtEachStep) {
  const auto list = makeMutableArray({s("a"), s("b"), s("c"), s("d")});
  std::string got;
  send<"asyncMap:result:">(
      list,
      [&](NSString& letter, const AsyncCompletion& done) {
        if (text(&letter) == "a") list->replaceObjectAtIndex(1, s("B"));
        if (text(&letter) == "B") list->removeObjectsInRange({2, 2});
        if (text(&letter) == "B") list->addObject(s("e"));
        done(&letter);
      },
      [&](NSArray* values) { got = text(values); });
  EXPECT_EQ(got, "(a, B, e)");
}

TEST(AsyncMap, SendsEveryStepSoThatAnOverrideSeesThemAll) {
  const auto sieve = make<Sieve>(make<Numbers>(7U));
  std::string got;
  send<"asyncMap:result:">(
      sieve, [](NSObject* element, const AsyncCompletion& done) { done(element); },
      [&](NSArray* values) { got = text(values); });
  EXPECT_EQ(got, "(0, 1, 3, 4, 6)");
  EXPECT_EQ(sieve->steps_, 8);
}

TEST(AsyncMap, RunsWithinATransformOfAnother) {
  // The inner chain ends before its message returns, although the outer transform still runs, and it completes the outer
  // one from its result block. Stack stays constant here, too.
  constexpr std::uint64_t kMany = 10'000;
  const char* lowest = nullptr;
  const char* highest = nullptr;
  std::uint64_t inner = 0;
  Strong<NSArray> values;
  send<"asyncMap:result:">(
      make<Numbers>(kMany),
      [&](NSObject* element, const AsyncCompletion& done) {
        const char here = 0;
        if (!lowest || &here < lowest) lowest = &here;
        if (!highest || &here > highest) highest = &here;
        bool ended = false;
        const Strong<NSObject> outer(element);
        send<"asyncMap:result:">(
            make<Numbers>(2U),
            [&](NSObject*, const AsyncCompletion& innerDone) {
              ++inner;
              innerDone(outer);
            },
            [&](NSArray* pair) {
              done(pair->lastObject());
              ended = true;
            });
        EXPECT_TRUE(ended);
      },
      [&](NSArray* result) { values = result; });
  ASSERT_EQ(values->count(), kMany);
  EXPECT_EQ(inner, 2 * kMany);
  EXPECT_LT(highest - lowest, 4096);
}

TEST(AsyncMap, HoldsReceiverAndBlocksUntilTheCompletionGoes) {
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

  AsyncTransform transform;
  Strong<NSArray> only = makeArray({s("a"), s("b"), s("c")});
  std::string got;
  transform = [&](NSObject* element, const AsyncCompletion& done) {
    only = nullptr;
    transform = nullptr;
    done(element);
  };
  send<"asyncMap:result:">(only, transform, [&](NSArray* values) { got = text(values); });
  EXPECT_EQ(got, "(a, b, c)");
}

TEST(AsyncMap, RefusesNullBeforeAnythingRuns) {
  const AsyncTransform transform = [](NSObject*, const AsyncCompletion&) { FAIL(); };
  const AsyncResult result = [](NSArray*) { FAIL(); };
  const auto array = makeArray({s("a")});
  const std::function<void()> calls[] = {
      [&] { send<"asyncMap:result:">(array, nullptr, result); },
      [&] { send<"asyncMap:result:">(array, transform, nullptr); },
      [&] { send<"asyncMapAux:block:currentResult:result:">(array, 0, nullptr, array, result); },
      [&] { send<"asyncMapAux:block:currentResult:result:">(array, 1, transform, array, nullptr); },
      [&] { send<"asyncMapAux:block:currentResult:result:">(array, 1, transform, nullptr, result); },
  };
  for (const auto& call : calls) EXPECT_THROW(call(), NSException);
  // A completion that is given null throws to its caller, and may then be given a value.
  std::string got;
  send<"asyncMap:result:">(
      array,
      [&](NSObject* element, const AsyncCompletion& done) {
        try {
          done(nullptr);
          ADD_FAILURE();
        } catch (const NSException& exception) {
          EXPECT_EQ(exception.name(), NSInvalidArgumentException);
        }
        done(element);
      },
      [&](NSArray* values) { got += text(values); });
  EXPECT_EQ(got, "(a)");
}

TEST(AsyncMap, LetsExceptionsOutAndStartsAfresh) {
  const auto numbers = make<Numbers>(5U);
  int results = 0;
  int transforms = 0;
  const auto failing = [&](NSNumber& number, const AsyncCompletion& done) {
    ++transforms;
    done(&number);
    if (number.integerValue() == 2) throw std::runtime_error("no cover");
  };
  EXPECT_THROW(send<"asyncMap:result:">(numbers, failing, [&](NSArray*) { ++results; }), std::runtime_error);
  EXPECT_EQ(transforms, 3);
  EXPECT_EQ(results, 0);
  send<"asyncMap:result:">(
      numbers, [](NSObject* element, const AsyncCompletion& done) { done(element); },
      [&](NSArray* values) { results += static_cast<int>(values->count()); });
  EXPECT_EQ(results, 5);
}

TEST(AsyncMap, ContinuesOnTheThreadThatCompletesEvenWhileTheTransformRuns) {
  // A completion called from another thread goes on there, whatever its transform is doing.
  std::string got;
  std::vector<std::thread::id> threads;
  send<"asyncMap:result:">(
      makeArray({s("a"), s("b"), s("c")}),
      [&](NSObject* element, const AsyncCompletion& done) {
        threads.push_back(std::this_thread::get_id());
        std::thread([&] { done(element); }).join();
      },
      [&](NSArray* values) { got = text(values); });
  EXPECT_EQ(got, "(a, b, c)") << "before the first transform has returned";
  ASSERT_EQ(threads.size(), 3U);
  EXPECT_NE(threads[0], threads[1]);
  EXPECT_NE(threads[1], threads[2]);
}
