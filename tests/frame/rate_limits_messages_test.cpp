// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/frame/rate_limits_messages.h>
#include <HavrinFoundation/platform/dispatch/perform_selector.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/association.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <cmath>

using namespace havrin;

namespace {

// Notes the messages it receives, with the milliseconds since the test began.
class Field : public Object<Field, NSObject> {
 public:
  void search() { note("search"); }
  void show(NSObject* what) { note(what == nullptr ? "show nothing" : "show something"); }
  void move(NSObject*, NSObject*) { note("move"); }
  void work() {
    static_cast<TestClock*>(installedClockSource())->spend(3);
    note("work");
  }
  void fail() { throw std::runtime_error("out"); }
  bool respondsToSelector(Selector selector) const override {
    return !(deaf && selector == Selector(::selector<"search">)) && NSObject::respondsToSelector(selector);
  }
  using Members = List<Method<"search", &Field::search>, Method<"show:", &Field::show>,
                       Method<"move:to:", &Field::move>, Method<"work", &Field::work>, Method<"fail", &Field::fail>>;

  std::string take() { return std::exchange(events_, ""); }
  bool deaf = false;

 private:
  void note(const char* event) {
    events_ += event + (" " + std::to_string(std::llround((monotonicSeconds() - start_) * 1000))) + ", ";
  }
  const double start_ = monotonicSeconds();
  std::string events_;
};

// Keeps its dictionary in a field of its own.
struct OwnTimestamps : Object<OwnTimestamps, Field> {
  Strong<NSMutableDictionary> timestamps() { return kept; }
  void setTimestamps(NSMutableDictionary* timestamps) { kept = timestamps; }
  using Members = List<Method<"h_throttleTimestamps", &OwnTimestamps::timestamps>,
                       Method<"setH_throttleTimestamps:", &OwnTimestamps::setTimestamps>>;
  Strong<NSMutableDictionary> kept;
};

struct RateLimits : testing::Test {
  TestClock clock;
  Strong<Field> field = make<Field>();

  void debounce(Selector message, double delay) { send<"h_debounce:delay:">(field, message, delay); }
  void throttle(Selector message, double interval) { send<"h_throttle:delay:">(field, message, interval); }
};
using Debounce = RateLimits;
using Throttle = RateLimits;

}  // namespace

TEST_F(Debounce, SendsOnceAtTheDeadlineOfTheLastCall) {
  for (const auto& [first, second, events, why] : Rows<double, double, const char*, const char*>{
           {10, 0.125, "search 125, ", "an earlier deadline counts at once"},
           {0.125, 10, "search 10000, ", "a later one as well"},
           {5, -1, "search 0, ", "a negative delay: the next pass"},
           {5, kNotANumber, "search 0, ", "NaN: the next pass"},
       }) {
    SCOPED_TRACE(why);
    field = make<Field>();
    debounce(selector<"search">, first);
    debounce(selector<"search">, second);
    EXPECT_EQ(field->take(), "") << "never within the call";
    clock.advance(20);
    EXPECT_EQ(field->take(), events);
  }
}

TEST_F(Debounce, RunsInTheDefaultModeOfTheCallingThreadAlone) {
  debounce(selector<"search">, 0);
  clock.runDue("tracking");
  EXPECT_EQ(field->take(), "");
  std::thread([&] {
    debounce(selector<"search">, 0);
    RunLoop::current().runDue();
  }).join();
  EXPECT_EQ(field->take(), "search 0, ") << "that thread's, which has not cancelled this one's";
  clock.runDue();
  EXPECT_EQ(field->take(), "search 0, ");
}

TEST_F(Debounce, ReplacesWhatWaitsInAnyModeWithoutAnArgument) {
  for (const std::string_view mode : {NSRunLoopCommonModes, std::string_view("tracking")}) {
    SCOPED_TRACE(mode);
    field = make<Field>();
    debounce(selector<"show:">, 2);
    performSelectorAfterDelay(*field, selector<"show:">, nullptr, 1, mode);
    performSelectorAfterDelay(*field, selector<"show:">, s("argument"), 1, mode);
    debounce(selector<"show:">, 3);
    clock.advance(2, mode);
    EXPECT_EQ(field->take(), "show something 1000, ");
    clock.advance(1);
    EXPECT_EQ(field->take(), "show nothing 3000, ");
  }
}

TEST_F(Throttle, RunsAtOnceAndThenDropsUntilMoreThanTheIntervalHasPassed) {
  for (const auto& [interval, elapsed, runs, why] : Rows<double, double, bool, const char*>{
           {1, 1, false, "elapsed exactly equal"},
           {1, 1.0001, true, "more"},
           {0, 0, false, "no interval, and the clock has not moved"},
           {-1, 0, true, "a negative interval"},
           {kNotANumber, 1e6, false, "NaN"},
       }) {
    SCOPED_TRACE(why);
    field = make<Field>();
    throttle(selector<"search">, interval);
    EXPECT_EQ(field->take(), "search 0, ") << "sent before the first call returns";
    clock.advance(elapsed);
    throttle(selector<"search">, interval);
    EXPECT_EQ(!field->take().empty(), runs);
    clock.advance(1e7);
    EXPECT_EQ(field->take(), "") << "what was dropped never runs";
  }
}

TEST_F(Throttle, CountsFromTheEndOfTheLastRun) {
  throttle(selector<"work">, 1);  // takes 3 s
  EXPECT_TRUE(send<"h_throttleTimestamps">(field)->objectForKey(s("work"))->isEqual(makeNumber(monotonicSeconds())));
  clock.advance(0.5);
  throttle(selector<"work">, 1);
  EXPECT_EQ(field->take(), "work 3000, ");
  clock.advance(0.6);
  throttle(selector<"work">, 1);
  EXPECT_EQ(field->take(), "work 7100, ");
}

TEST_F(Throttle, KeepsItsTimesInADictionaryThatTheApplicationMayChange) {
  const auto callBoth = [&] {
    throttle(selector<"search">, 100);
    throttle(selector<"show:">, 100);
    return field->take();
  };
  EXPECT_EQ(callBoth(), "search 0, show nothing 0, ") << "one time for each selector";
  send<"h_throttleTimestamps">(field)->removeObjectForKey(s("search"));
  EXPECT_EQ(callBoth(), "search 0, ");
  const auto mine = make<NSMutableDictionary>();
  send<"setH_throttleTimestamps:">(field, mine);
  EXPECT_EQ(callBoth(), "search 0, show nothing 0, ");
  EXPECT_EQ(mine->count(), 2u) << "stored without a copy";
  field = make<Field>();
  EXPECT_EQ(callBoth(), "search 0, show nothing 0, ") << "one dictionary for each receiver";
}

TEST_F(Throttle, ReadsAndStoresItsDictionaryByMessages) {
  const auto own = make<OwnTimestamps>();
  field = own;
  throttle(selector<"search">, 1);
  throttle(selector<"search">, 1);
  EXPECT_EQ(field->take(), "search 0, ");
  EXPECT_EQ(own->kept->count(), 1u);
  EXPECT_FALSE(associatedValue(*field, selector<"h_throttleTimestamps">));
}

TEST_F(Throttle, DoesNotCountACallThatThrew) {
  EXPECT_THROW(throttle(selector<"fail">, 100), std::runtime_error);
  EXPECT_THROW(throttle(selector<"fail">, 100), std::runtime_error) << "not dropped";
}

TEST_F(RateLimits, ReachTheLayersOwnMethods) {
  const auto array = letters("abc");
  const auto dictionary = make<NSMutableDictionary>();
  dictionary->setObject(s("value"), s("key"));
  const auto set = make<NSMutableSet>();
  set->addObject(s("value"));
  send<"h_throttle:delay:">(array, selector<"removeLastObject">, 1);
  EXPECT_EQ(array->count(), 2u);
  for (const Strong<NSObject>& each : {Strong<NSObject>(array), Strong<NSObject>(dictionary), Strong<NSObject>(set)}) {
    send<"h_debounce:delay:">(each, selector<"removeAllObjects">, 1);
  }
  clock.advance(1);
  EXPECT_EQ(array->count() + dictionary->count() + set->count(), 0u);
}

TEST_F(RateLimits, IgnoreAReceiverThatDoesNotRespondAndRefuseTwoArguments) {
  field->deaf = true;
  for (const Selector message : {Selector(selector<"search">), Selector(selector<"noSuchMessage">), Selector()}) {
    debounce(message, 0);
    throttle(message, 0);
  }
  EXPECT_FALSE(send<"h_throttleTimestamps">(field)) << "not even a dictionary";
  EXPECT_EQ(nameOf([&] { debounce(selector<"move:to:">, 0); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([&] { throttle(selector<"move:to:">, 0); }), NSInvalidArgumentException);
  clock.advance(1);
  EXPECT_EQ(field->take(), "");
}
