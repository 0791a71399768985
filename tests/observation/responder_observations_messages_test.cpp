#include <HavrinFoundation/observation/responder_observations_messages.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/object/association.h>
#include <HavrinFoundation/testkit/test_clock.h>
#include <gtest/gtest.h>

#include "observed_station.h"

using namespace havrin;
using namespace havrin_test;

namespace {

class Board : public Object<Board, UIResponder> {
 public:
  int redraws = 0;
};

// Hears of every registration, and of every list.
class Nosy : public Object<Nosy, Board> {
 public:
  std::vector<std::string> log;
  void observe(NSObject*, NSArray* keyPaths, std::uint64_t options, const KeyValueObservationAction&) {
    log.push_back(shown(keyPaths) + " " + std::to_string(options));
  }
  using Members = List<Method<"observeModel:forKeyPaths:options:action:", &Nosy::observe>>;
};

class Keeper : public Object<Keeper, Board> {
 public:
  std::vector<std::uint64_t> counts;
  Strong<NSArray> kept;
  Strong<NSArray> list() { return kept; }
  void keep(NSArray* list) {
    counts.push_back(list ? list->count() : 0);
    kept = list;
  }
  using Members =
      List<Method<"keyValueObservations", &Keeper::list>, Method<"setKeyValueObservations:", &Keeper::keep>>;
};

struct Registry : testing::Test {
  TestClock clock;
  Strong<Station> station = make<Station>();
  Strong<Board> board = make<Board>();

  KeyValueObservationAction redraw() {
    return [](Board& drawn, Station&, NSDictionary*) { ++drawn.redraws; };
  }
};

}  // namespace

TEST_F(Registry, KeepsItsTokensInOrder) {
  bool first = true;
  EXPECT_FALSE(send<"keyValueObservations">(board));
  send<"observeModel:forKeyPath:action:">(board, station, text("title"), [&](Board& drawn, Station&, NSDictionary*) {
    ++drawn.redraws;
    if (std::exchange(first, false)) {
      EXPECT_FALSE(send<"keyValueObservations">(drawn)) << "not yet";
    }
  });
  EXPECT_EQ(board->redraws, 1);
  const Strong<NSArray> one = send<"keyValueObservations">(board);
  ASSERT_EQ(one->count(), 1U);
  EXPECT_TRUE(isKind<NSMutableArray>(one));
  send<"observeModel:forKeyPath:action:">(board, station, text("title"), redraw());
  const Strong<NSArray> both = send<"keyValueObservations">(board);
  EXPECT_EQ(one->count(), 1U) << "nothing mutates a list in place";
  ASSERT_EQ(both->count(), 2U);
  EXPECT_EQ(both->objectAtIndex(0).get(), one->objectAtIndex(0).get());
  board->redraws = 0;
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(board->redraws, 2);
  const auto& token = *cast<KeyValueObservation>(both->objectAtIndex(1));
  EXPECT_EQ(token.observer().get(), board.get());
  EXPECT_EQ(token.object().get(), station.get());
  EXPECT_EQ(associatedValue(*board, selector<"keyValueObservations">).get(), both.get());
}

TEST_F(Registry, AllFormsReachTheOneThatMayBeOverridden) {
  const auto nosy = make<Nosy>();
  const auto path = text("title");
  const auto paths = makeArray({path, text("listeners")});
  Board& responder = *nosy;
  send<"observeModel:forKeyPath:action:">(responder, station, path, redraw());
  send<"observeModel:forKeyPaths:action:">(responder, station, paths, redraw());
  send<"observeModel:forKeyPath:options:action:">(responder, station, path, 6, redraw());
  send<"observeModel:forKeyPaths:options:action:">(responder, station, paths, 2, redraw());
  EXPECT_EQ(nosy->log,
            (std::vector<std::string>{"(title) 0", "(title, listeners) 0", "(title) 6", "(title, listeners) 2"}));
  EXPECT_EQ(nosy->redraws, 0);
}

TEST_F(Registry, OptionsReachTheToken) {
  send<"observeModel:forKeyPath:options:action:">(
      board, station, text("title"), KeyValueObservationOptionSkipInitial | KeyValueObservationOptionSkipUnchanged,
      redraw());
  EXPECT_EQ(board->redraws, 0);
  send<"setTitle:">(station, nullptr);
  EXPECT_EQ(board->redraws, 0);
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(board->redraws, 1);
  send<"observeModel:forKeyPaths:action:">(board, station, makeArray({text("host.name"), text("listeners")}), redraw());
  EXPECT_EQ(board->redraws, 2);
  send<"setListeners:">(station, 0);
  EXPECT_EQ(board->redraws, 3);
}

TEST_F(Registry, TheListIsReadAndStoredByMessage) {
  const auto keeper = make<Keeper>();
  send<"observeModel:forKeyPath:action:">(keeper, station, text("title"), redraw());
  send<"observeModel:forKeyPath:action:">(keeper, station, text("title"), redraw());
  EXPECT_EQ(keeper->counts, (std::vector<std::uint64_t>{1, 2}));
  EXPECT_FALSE(associatedValue(*keeper, selector<"keyValueObservations">));
}

TEST_F(Registry, ObservationsEndWithTheListThatHeldThem) {
  send<"observeModel:forKeyPath:action:">(board, station, text("title"), redraw());
  send<"observeModel:forKeyPath:action:">(board, station, text("listeners"), redraw());
  const Strong<NSArray> list = send<"keyValueObservations">(board);
  const Strong<NSArray> second = makeArray({list->objectAtIndex(1)});
  send<"setKeyValueObservations:">(board, second);
  EXPECT_EQ(send<"keyValueObservations">(board).get(), second.get()) << "the very array";
  board->redraws = 0;
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(board->redraws, 1) << "held by the old list, which the test still has";
}

TEST_F(Registry, ADifferentListDropsOnlyWhatItNoLongerHolds) {
  send<"observeModel:forKeyPath:action:">(board, station, text("title"), redraw());
  send<"observeModel:forKeyPath:action:">(board, station, text("listeners"), redraw());
  send<"setKeyValueObservations:">(board, makeArray({send<"keyValueObservations">(board)->objectAtIndex(1)}));
  board->redraws = 0;
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(board->redraws, 0);
  send<"setListeners:">(station, 1);
  EXPECT_EQ(board->redraws, 1);
  send<"setKeyValueObservations:">(board, nullptr);
  EXPECT_FALSE(send<"keyValueObservations">(board));
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Registry, ObservationsEndWithTheResponderWhereverItGoes) {
  Weak<Station> weak = station;
  send<"observeModel:forKeyPath:action:">(board, station, text("title"), redraw());
  Strong<Station> held = std::move(station);
  held = nullptr;
  EXPECT_TRUE(weak.lock()) << "observed, so alive";
  station = weak.lock();
  std::thread([&] { board = nullptr; }).join();
  EXPECT_TRUE(station->isUnobserved());
  send<"setTitle:">(station, text("a"));
}

TEST_F(Registry, AQueuedDeliveryOutlivesTheList) {
  send<"observeModel:forKeyPath:options:action:">(board, station, text("title"), 2, redraw());
  std::thread([&] { send<"setTitle:">(station, text("a")); }).join();
  send<"setKeyValueObservations:">(board, nullptr);
  EXPECT_FALSE(station->isUnobserved());
  EXPECT_TRUE(clock.runUntil([&] { return board->redraws == 1; }));
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Registry, BadInputRaisesAndAddsNoToken) {
  const auto path = text("title");
  const struct {
    std::string name;
    std::string_view expected;
    const char* why;
  } rows[] = {
      {nameOf([&] { send<"observeModel:forKeyPath:action:">(board, station, nullptr, redraw()); }),
       NSInvalidArgumentException, "no key path"},
      {nameOf([&] { send<"observeModel:forKeyPath:options:action:">(board, station, nullptr, 2, redraw()); }),
       NSInvalidArgumentException, "the same, with options"},
      {nameOf([&] { send<"observeModel:forKeyPath:action:">(board, station, path, nullptr); }),
       NSInvalidArgumentException, "no action"},
      {nameOf([&] { send<"observeModel:forKeyPath:action:">(board, station, text("nobody.name"), redraw()); }),
       NSUndefinedKeyException, "an unknown key on the way"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(row.name, row.expected);
  }
  EXPECT_FALSE(send<"keyValueObservations">(board));
  EXPECT_TRUE(station->isUnobserved());
  EXPECT_EQ(board->redraws, 0);
}

// One event from end to end, step by step, on two threads.
TEST(OneEvent, FromARegistrationToTheMainQueueAndTheEnd) {
  TestClock clock;
  const auto station = make<Station>();
  struct Step {
    Strong<NSObject> observer;
    Strong<NSObject> object;
    Strong<NSDictionary> change;
    bool onMain;
  };
  std::vector<Step> steps;
  auto board = make<Board>();

  // 1, 2: the responder makes a token, which registers and calls the action at once with the kind alone.
  send<"observeModel:forKeyPath:action:">(board, station, text("title"),
                                          [&](NSObject* observer, NSObject* object, NSDictionary* change) {
                                            steps.push_back({observer, object, change, isMainThread()});
                                          });
  ASSERT_EQ(steps.size(), 1U);
  EXPECT_EQ(steps[0].observer.get(), board.get());
  EXPECT_EQ(steps[0].object.get(), station.get());
  EXPECT_TRUE(steps[0].change->isEqual(makeDictionary({{text("kind"), makeNumber(1)}})));
  EXPECT_TRUE(steps[0].onMain);
  EXPECT_FALSE(station->isUnobserved());

  // 3: the token stands in a list that is attached to the responder.
  {
    const Strong<NSArray> list = send<"keyValueObservations">(board);
    ASSERT_EQ(list->count(), 1U);
    const auto& token = *cast<KeyValueObservation>(list->objectAtIndex(0));
    EXPECT_EQ(token.options(), 0U);
    EXPECT_EQ(token.observer().get(), board.get());
  }

  // 4, 5: another thread sets the property; the change is queued for the main thread.
  std::thread([&] { send<"setTitle:">(station, makeString("Nord")); }).join();
  EXPECT_EQ(steps.size(), 1U);
  EXPECT_TRUE(clock.runUntil([&] { return steps.size() == 2; }));
  EXPECT_EQ(steps[1].observer.get(), board.get());
  EXPECT_EQ(steps[1].object.get(), station.get());
  EXPECT_TRUE(steps[1].onMain);
  EXPECT_TRUE(steps[1].change->isEqual(makeDictionary({{text("kind"), makeNumber(1)},
                                                       {text("old"), NSNull::null()},
                                                       {text("new"), text("Nord")},
                                                       {text("keyPath"), text("title")}})));

  // 6: with the responder its list goes, with the list the token, and with the token its registration.
  steps.clear();
  const Weak<Board> weak = board;
  std::thread([last = std::move(board)]() mutable { last = nullptr; }).join();
  EXPECT_FALSE(weak.lock());
  EXPECT_TRUE(station->isUnobserved());
}

TEST(ObservationDeathTest, ExitWithDeliveriesQueuedIsClean) {
  EXPECT_EXIT(
      {
        const auto station = make<Station>();
        const auto board = make<Board>();
        send<"observeModel:forKeyPath:options:action:">(board, station, text("title"), 2,
                                                        [](NSObject*, NSObject*, NSDictionary*) { std::abort(); });
        std::thread([&] {
          for (int i = 0; i < 100; ++i) send<"setTitle:">(station, text("a"));
        }).join();
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}
