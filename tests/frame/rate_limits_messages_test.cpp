#include <HavrinFoundation/frame/rate_limits_messages.h>

#include <HavrinFoundation/platform/dispatch/clock.h>
#include <HavrinFoundation/platform/dispatch/run_loop.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <HavrinFoundation/platform/object/association.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace havrin;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

// Notes what it was asked to do, and when.
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

  std::vector<std::string> events;
  std::vector<double> times;
  bool deaf = false;

 private:
  void note(const char* event) {
    events.push_back(event);
    times.push_back(monotonicSeconds());
  }
};

// Keeps its dictionary in a field of its own.
class OwnTimestamps : public Object<OwnTimestamps, Field> {
 public:
  Strong<NSMutableDictionary> timestamps() { return kept; }
  void setTimestamps(NSMutableDictionary* timestamps) { kept = timestamps; }
  using Members = List<Method<"h_throttleTimestamps", &OwnTimestamps::timestamps>,
                       Method<"setH_throttleTimestamps:", &OwnTimestamps::setTimestamps>>;
  Strong<NSMutableDictionary> kept;
};

using Events = std::vector<std::string>;

void debounce(Field& field, Selector message, double delay) { send<"h_debounce:delay:">(field, message, delay); }
void throttle(Field& field, Selector message, double interval) { send<"h_throttle:delay:">(field, message, interval); }

TEST(Debounce, SendsOnceAfterTheLastOfABurst) {
  TestClock clock;
  const auto field = make<Field>();
  for (int call = 0; call < 5; ++call) {
    clock.advance(0.1);
    debounce(*field, selector<"search">, 0.3);
  }
  const double lastCall = monotonicSeconds();
  clock.advance(0.25);
  EXPECT_TRUE(field->events.empty()) << "the first call of a burst is not special";
  clock.advance(10);
  EXPECT_EQ(field->times, std::vector<double>{lastCall + 0.3});
}

TEST(Debounce, DelaysAsItIsTold) {
  const struct {
    double first;
    double second;
    double after;
    const char* why;
  } rows[] = {
      {10, 0.125, 0.125, "an earlier deadline counts at once"},
      {0.125, 10, 10, "a later one as well"},
      {5, 0, 0, "no delay: the next pass"},
      {5, -1, 0, "nor a negative one"},
      {5, kNotANumber, 0, "nor one that is no number"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    TestClock clock;
    const auto field = make<Field>();
    const double start = monotonicSeconds();
    debounce(*field, selector<"search">, row.first);
    debounce(*field, selector<"search">, row.second);
    EXPECT_TRUE(field->events.empty()) << "never within the call";
    clock.advance(20);
    EXPECT_EQ(field->times, std::vector<double>{start + row.after});
  }
}

TEST(Debounce, RunsInTheDefaultModeOfTheCallingThreadAlone) {
  TestClock clock;
  const auto field = make<Field>();
  debounce(*field, selector<"search">, 0);
  RunLoop::current().performAfter(
      0, [] {}, "tracking");
  clock.advance(1, "tracking");
  EXPECT_TRUE(field->events.empty());
  std::thread([&] {
    debounce(*field, selector<"search">, 0);
    RunLoop::current().runDue();
  }).join();
  EXPECT_EQ(field->events.size(), 1u) << "that thread's, which has not cancelled this one's";
  clock.runDue();
  EXPECT_EQ(field->events.size(), 2u);
}

TEST(Debounce, KeepsItsReceiverUntilItHasSent) {
  TestClock clock;
  Weak<Field> field;
  {
    const auto strong = make<Field>();
    field = strong;
    debounce(*strong, selector<"show:">, 1);
    debounce(*strong, selector<"show:">, 2);
  }
  EXPECT_TRUE(field.lock());
  clock.advance(1.5);
  EXPECT_EQ(field.lock()->events, Events());
  clock.advance(0.5);
  EXPECT_FALSE(field.lock());
}

TEST(Throttle, RunsAtOnceAndThenDropsUntilMoreThanTheIntervalHasPassed) {
  const struct {
    double interval;
    double elapsed;
    bool runs;
    const char* why;
  } rows[] = {
      {1, 0, false, "at once again"},
      {1, 1, false, "elapsed exactly equal"},
      {1, 1.0001, true, "more"},
      {0, 0, false, "no interval, and the clock has not moved"},
      {0, 1e-6, true, "no interval, and it has"},
      {-1, 0, true, "a negative interval"},
      {kNotANumber, 1e6, false, "no number"},
      {std::numeric_limits<double>::infinity(), 1e6, false, "for ever"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    TestClock clock;
    const auto field = make<Field>();
    throttle(*field, selector<"search">, row.interval);
    EXPECT_EQ(field->events.size(), 1u) << "the first call always runs, before it returns";
    clock.advance(row.elapsed);
    throttle(*field, selector<"search">, row.interval);
    EXPECT_EQ(field->events.size(), row.runs ? 2u : 1u);
    clock.advance(1e7);
    EXPECT_EQ(field->events.size(), row.runs ? 2u : 1u) << "what was dropped never runs";
  }
}

TEST(Throttle, CountsFromTheEndOfTheLastRun) {
  TestClock clock;
  const auto field = make<Field>();
  throttle(*field, selector<"work">, 1);  // takes 3 s
  const auto entry = send<"h_throttleTimestamps">(*field)->objectForKey(makeString("work"));
  ASSERT_TRUE(isKind<NSNumber>(entry));
  EXPECT_EQ(static_cast<NSNumber*>(entry.get())->doubleValue(), monotonicSeconds());
  clock.advance(0.5);
  throttle(*field, selector<"work">, 1);
  EXPECT_EQ(field->events.size(), 1u);
  clock.advance(0.6);
  throttle(*field, selector<"work">, 1);
  EXPECT_EQ(field->events.size(), 2u);
}

TEST(Throttle, KeepsItsStateInADictionaryThatTheApplicationMayChange) {
  TestClock clock;
  const auto a = make<Field>();
  const auto b = make<Field>();
  const auto callBoth = [&] {
    throttle(*a, selector<"search">, 100);
    throttle(*a, selector<"show:">, 100);
    return std::exchange(a->events, {});
  };
  EXPECT_FALSE(send<"h_throttleTimestamps">(*a));
  EXPECT_EQ(callBoth(), (Events{"search", "show nothing"})) << "two selectors do not know one another";
  throttle(*b, selector<"search">, 100);
  EXPECT_EQ(b->events, Events{"search"}) << "nor do two receivers";
  const auto timestamps = send<"h_throttleTimestamps">(*a);
  EXPECT_EQ(timestamps->count(), 2u);
  EXPECT_EQ(associatedValue(*a, selector<"h_throttleTimestamps">).get(), timestamps.get());

  timestamps->removeObjectForKey(makeString("search"));
  EXPECT_EQ(callBoth(), Events{"search"});
  send<"setH_throttleTimestamps:">(*a, nullptr);
  EXPECT_FALSE(send<"h_throttleTimestamps">(*a));
  EXPECT_EQ(callBoth(), (Events{"search", "show nothing"})) << "every selector's next call runs";
  const auto mine = make<NSMutableDictionary>();
  send<"setH_throttleTimestamps:">(*a, mine);
  callBoth();
  EXPECT_EQ(mine->count(), 2u) << "stored without a copy";
}

TEST(Throttle, ReachesItsDictionaryByMessages) {
  TestClock clock;
  const auto field = make<OwnTimestamps>();
  throttle(*field, selector<"search">, 1);
  throttle(*field, selector<"search">, 1);
  EXPECT_EQ(field->events.size(), 1u);
  ASSERT_TRUE(field->kept);
  EXPECT_EQ(field->kept->count(), 1u);
  EXPECT_FALSE(associatedValue(*field, selector<"h_throttleTimestamps">));
}

TEST(Throttle, AMessageThatThrowsLeavesNoTime) {
  TestClock clock;
  const auto field = make<Field>();
  EXPECT_THROW(throttle(*field, selector<"fail">, 100), std::runtime_error);
  EXPECT_THROW(throttle(*field, selector<"fail">, 100), std::runtime_error) << "not dropped";
}

TEST(RateLimits, LeaveAReceiverAloneThatDoesNotRespond) {
  TestClock clock;
  const auto field = make<Field>();
  field->deaf = true;
  for (const Selector message : {Selector(selector<"search">), Selector(selector<"noSuchMessage">), Selector()}) {
    debounce(*field, message, 0);
    throttle(*field, message, 0);
  }
  clock.advance(1);
  EXPECT_TRUE(field->events.empty());
  EXPECT_FALSE(send<"h_throttleTimestamps">(*field)) << "not even a dictionary";
}

TEST(RateLimits, RefuseAMessageWithTwoArguments) {
  TestClock clock;
  const auto field = make<Field>();
  EXPECT_THROW(debounce(*field, selector<"move:to:">, 0), NSException);
  EXPECT_THROW(throttle(*field, selector<"move:to:">, 0), NSException);
  clock.advance(1);
  EXPECT_TRUE(field->events.empty());
}

}  // namespace
