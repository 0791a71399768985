// SPDX-License-Identifier: Apache-2.0
#include "../platform/observing/observed_objects.h"
#include <HavrinFoundation/observation/responder_observations_messages.h>
#include <HavrinFoundation/platform/object/association.h>

using namespace havrin;
using namespace havrin_test;

namespace {

struct Board : Object<Board, UIResponder> {
  int redraws = 0;
};

// Hears of every registration, and of every list.
struct Nosy : Object<Nosy, Board> {
  std::vector<std::string> log;
  void observe(NSObject*, NSArray* keyPaths, std::uint64_t options, const KeyValueObservation::Action&) {
    log.push_back(shown(keyPaths) + " " + std::to_string(options));
  }
  using Members = List<Method<"observeModel:forKeyPaths:options:action:", &Nosy::observe>>;
};

struct Keeper : Object<Keeper, Board> {
  Strong<NSArray> kept;
  Strong<NSArray> list() { return kept; }
  void keep(NSArray* list) { kept = list; }
  using Members =
      List<Method<"keyValueObservations", &Keeper::list>, Method<"setKeyValueObservations:", &Keeper::keep>>;
};

struct Registry : testing::Test {
  Strong<Station> station = make<Station>();
  Strong<Board> board = make<Board>();

  KeyValueObservation::Action redraw() {
    return [](Board& drawn, Station&, NSDictionary*) { ++drawn.redraws; };
  }
  void observe(NSString* keyPath) { send<"observeModel:forKeyPath:action:">(board, station, keyPath, redraw()); }
};

}  // namespace

TEST_F(Registry, KeepsItsTokensInOrder) {
  EXPECT_EQ(nameOf([&] { observe(nullptr); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([&] { observe(s("nobody.name")); }), NSUndefinedKeyException);
  EXPECT_FALSE(send<"keyValueObservations">(board)) << "a token that is not made is not kept";
  send<"observeModel:forKeyPath:action:">(board, station, s("title"), [&](Board& drawn, Station&, NSDictionary*) {
    EXPECT_EQ(!send<"keyValueObservations">(drawn), ++drawn.redraws == 1) << "not yet in its first call";
  });
  const Strong<NSArray> one = send<"keyValueObservations">(board);
  EXPECT_TRUE(isKind<NSMutableArray>(one));
  observe(s("title"));
  const Strong<NSArray> both = send<"keyValueObservations">(board);
  ASSERT_TRUE(one->count() == 1 && both->count() == 2) << "nothing mutates a list in place";
  EXPECT_EQ(both->objectAtIndex(0).get(), one->objectAtIndex(0).get());
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(board->redraws, 4) << "two first calls, and one for each token";
  const auto& token = *cast<KeyValueObservation>(both->objectAtIndex(1));
  EXPECT_EQ(token.observer().get(), board.get());
  EXPECT_EQ(token.object().get(), station.get());
  EXPECT_EQ(associatedValue(*board, selector<"keyValueObservations">).get(), both.get());
}

TEST_F(Registry, AllFormsReachTheOneThatMayBeOverridden) {
  const auto nosy = make<Nosy>();
  const auto path = s("title");
  const auto paths = makeArray({path, s("listeners")});
  Board& responder = *nosy;
  send<"observeModel:forKeyPath:action:">(responder, station, path, redraw());
  send<"observeModel:forKeyPaths:action:">(responder, station, paths, redraw());
  send<"observeModel:forKeyPath:options:action:">(responder, station, path, 6, redraw());
  send<"observeModel:forKeyPaths:options:action:">(responder, station, paths, 2, redraw());
  EXPECT_EQ(nosy->log,
            (std::vector<std::string>{"(title) 0", "(title, listeners) 0", "(title) 6", "(title, listeners) 2"}));
  EXPECT_EQ(nosy->redraws, 0);
}

TEST_F(Registry, TheListIsReadAndStoredByMessage) {
  const auto keeper = make<Keeper>();
  board = keeper;
  for (const std::uint64_t count : {1U, 2U}) {
    observe(s("title"));
    EXPECT_EQ(keeper->kept->count(), count);
  }
  EXPECT_FALSE(associatedValue(*keeper, selector<"keyValueObservations">));
}

TEST_F(Registry, ObservationsEndWithTheListThatHeldThem) {
  observe(s("title"));
  send<"observeModel:forKeyPath:options:action:">(board, station, s("listeners"), KeyValueObservationOptionSkipInitial,
                                                  redraw());
  EXPECT_EQ(board->redraws, 1) << "the options reach the token";
  Strong<NSArray> list = send<"keyValueObservations">(board);
  const Strong<NSArray> second = makeArray({list->objectAtIndex(1)});
  const auto redraws = [&] {
    board->redraws = 0;
    send<"setTitle:">(station, s("a"));
    return board->redraws;
  };
  send<"setKeyValueObservations:">(board, second);
  EXPECT_EQ(send<"keyValueObservations">(board).get(), second.get()) << "the very array";
  EXPECT_EQ(redraws(), 1) << "held by the old list, which the test still has";
  list = nullptr;
  EXPECT_EQ(redraws(), 0);
  send<"setListeners:">(station, 1);
  EXPECT_EQ(board->redraws, 1) << "the new list holds this one";
}

TEST_F(Registry, ObservationsEndWithTheResponderWhereverItGoes) {
  const Weak<Station> weak = station;
  observe(s("title"));
  station = nullptr;
  station = weak.lock();
  ASSERT_TRUE(station) << "observed, so alive";
  std::thread([&] { board = nullptr; }).join();
  EXPECT_TRUE(station->isUnobserved());
  send<"setTitle:">(station, s("a"));
}
