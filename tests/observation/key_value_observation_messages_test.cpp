// SPDX-License-Identifier: Apache-2.0
#include "../platform/observing/observed_objects.h"
#include <HavrinFoundation/observation/key_value_observation_messages.h>
#include <HavrinFoundation/platform/dispatch/queue.h>
#include <HavrinFoundation/platform/foundation/index_set.h>
#include <HavrinFoundation/testkit/test_clock.h>

using namespace havrin;
using namespace havrin_test;

namespace {

constexpr std::uint64_t kSkipInitial = KeyValueObservationOptionSkipInitial;
constexpr std::uint64_t kSkipUnchanged = KeyValueObservationOptionSkipUnchanged;

// Destroyed after everything else: constant strings, the library's and a program's own, are there until the end.
constexpr ConstantString kOwn("own");
const ConstantString* const kStrings[] = {&kOwn};
const Loader kLoader{Image{"test", nullptr, kStrings, {}, {}}};
struct LastLook {
  ~LastLook() {
    const Strong<NSString> kept[] = {makeString("keyPath"), makeString("own")};
    if (kKeyValueObservationKeyPath->isEqual(kept[0]) && kOwn->isEqual(kept[1])) return;
    std::fputs("a constant string is gone at exit\n", stderr);
    std::_Exit(1);
  }
};
[[gnu::init_priority(101)]] const LastLook kLastLook;

// Expects to be asked to remove no null key path.
struct Strict : Object<Strict, Station> {
  void remove(NSObject* observer, NSString* keyPath, void* context) {
    EXPECT_TRUE(keyPath);
    sendSuper<"removeObserver:forKeyPath:context:">(*this, observer, keyPath, context);
  }
  using Members = List<Method<"removeObserver:forKeyPath:context:", &Strict::remove>>;
};

struct Observation : testing::Test {
  TestClock clock;
  Strong<Station> station = make<Station>();
  Strong<NSObject> observer = make<NSObject>();
  Strong<KeyValueObservation> token;
  std::string told;
  std::function<void()> during;

  KeyValueObservation::Action action() {
    return [this](NSObject* who, Station* what, NSDictionary* change) {
      EXPECT_TRUE(isMainThread());
      EXPECT_TRUE(!who || who == observer.get());
      EXPECT_EQ(what, station.get());
      EXPECT_FALSE(isKind<NSMutableDictionary>(change));
      told += (told.empty() ? "" : ", ") + shown(cast<NSString>(change->objectForKey(s("keyPath"))), change);
      if (during) during();
    };
  }
  Strong<KeyValueObservation> observe(NSArray* keyPaths, std::uint64_t options,
                                      const KeyValueObservation::Action& action,
                                      const Strong<KeyValueObservation>& made = alloc<KeyValueObservation>()) {
    return send<"initWithObserver:object:keyPaths:options:action:">(made, observer, station, keyPaths, options, action);
  }
  Strong<KeyValueObservation> observe(NSArray* keyPaths, std::uint64_t options) {
    return observe(keyPaths, options, action());
  }
  Strong<KeyValueObservation> observe(const char* keyPath, std::uint64_t options) {
    return observe(makeArray({s(keyPath)}), options);
  }
  std::string take() { return std::exchange(told, ""); }
  // A change made by another thread, which is over when this returns.
  void elsewhere(const std::function<void()>& change) { std::thread(change).join(); }
};

// Hears of every setter, and has an action of its own.
class Named : public Object<Named, KeyValueObservation> {
 public:
  std::string log;
  void noteObserver(NSObject* value) {
    note("observer", value);
    sendSuper<"setObserver:">(*this, value);
  }
  void noteObject(NSObject* value) { note("object", value); }
  void noteKeyPaths(NSArray* value) { note("keyPaths", value); }
  void noteOptions(std::uint64_t value) { note("options", makeNumber(value)); }
  void noteAction(const Action&) { note("action", nullptr); }
  Action ownAction() {
    return [this](NSObject*, NSObject*, NSDictionary*) { log += "called"; };
  }

  using Members = List<Method<"setObserver:", &Named::noteObserver>, Method<"setObject:", &Named::noteObject>,
                       Method<"setKeyPaths:", &Named::noteKeyPaths>, Method<"setOptions:", &Named::noteOptions>,
                       Method<"setAction:", &Named::noteAction>, Method<"action", &Named::ownAction>>;

 private:
  void note(const char* what, NSObject* value) { log += std::string(what) + "=" + shown(value) + " "; }
};

}  // namespace

TEST_F(Observation, OptionsAreTwoBits) {
  for (const auto& [paths, options, expected, why] :
       Rows<std::vector<const char*>, std::uint64_t, const char*, const char*>{
           {{"title"}, 0, "- 1 ->-, title 1 a>b, title 1 b>b, title 1 b>null", "none"},
           {{"title"}, 1 | 8, "- 1 ->-, title 1 a>b, title 1 b>b, title 1 b>null", "others have no effect"},
           {{"title"}, kSkipInitial, "title 1 a>b, title 1 b>b, title 1 b>null", "no first call"},
           {{"title"},
            kSkipUnchanged,
            "- 1 ->-, title 1 a>b, title 1 b>null",
            "an equal, distinct string is no change"},
           {{"title"}, kSkipInitial | kSkipUnchanged, "title 1 a>b, title 1 b>null", "both"},
           {{"title", "host.name"},
            kSkipUnchanged,
            "- 1 ->-, title 1 a>b, title 1 b>null",
            "one first call for two paths"},
           {{}, 0, "- 1 ->-", "no path, but the first call"},
           {{}, kSkipInitial, "", "no path and no first call"},
       }) {
    SCOPED_TRACE(why);
    send<"setTitle:">(station, s("a"));
    auto keyPaths = makeMutableArray({});
    for (const char* path : paths) keyPaths->addObject(s(path));
    token = observe(keyPaths, options);
    send<"setTitle:">(station, s("b"));
    send<"setTitle:">(station, s("b"));
    send<"setValue:forKey:">(station, nullptr, s("title"));
    EXPECT_EQ(take(), expected);
    token = nullptr;
    EXPECT_TRUE(station->isUnobserved());
  }
}

TEST_F(Observation, UnchangedMeansEqualInTheEyesOfTheOldValue) {
  token = observe(makeArray({s("title"), s("songs")}), kSkipInitial | kSkipUnchanged);
  send<"setTitle:">(station, nullptr);  // null stays null
  send<"setTitle:">(station, s("a"));
  send<"setTitle:">(station, nullptr);
  EXPECT_EQ(take(), "title 1 null>a, title 1 a>null");
  const auto songs = send<"mutableArrayValueForKey:">(station, s("songs"));
  songs->addObject(s("x"));
  songs->replaceObjectAtIndex(0, s("x"));
  songs->removeLastObject();
  EXPECT_EQ(take(), "songs 2 ->(x) at 0, songs 3 (x)>- at 0")
      << "what came or went is a change, an equal replacement is none";
}

TEST_F(Observation, TheFirstCallIsMadeOnWhateverThreadCreatesIt) {
  std::string first;
  observer = nullptr;
  elsewhere([&] {
    token = observe(makeArray({s("title")}), 0, [&](NSObject* who, NSObject* what, NSDictionary* change) {
      EXPECT_TRUE(!isMainThread() && !who && what == station.get());
      first += shown(change);
    });
  });
  send<"setTitle:">(station, s("a"));  // for an observer that never was
  EXPECT_EQ(first, "{kind = 1}");
}

TEST_F(Observation, DropsChangesOnceItsObserverIsGone) {
  token = observe("title", 0);
  take();
  elsewhere([&] { observer = nullptr; });
  EXPECT_FALSE(token->observer());
  send<"setTitle:">(station, s("a"));
  elsewhere([&] { send<"setTitle:">(station, s("b")); });
  clock.advance(1);
  EXPECT_EQ(take(), "");
  token->setKeyPaths(makeArray({s("listeners")}));
  token = nullptr;
  EXPECT_FALSE(station->isUnobserved()) << "it looked for other paths than those it was made with";
  send<"setTitle:">(station, s("c"));
  EXPECT_TRUE(station->isUnobserved()) << "what the dead observer left is dropped at the change";
  EXPECT_EQ(take(), "");
}

TEST_F(Observation, FromAnotherThreadIsQueuedInOrderAndKeptAlive) {
  token = observe("listeners", kSkipInitial);
  elsewhere([&] {
    for (int i = 1; i < 4; ++i) send<"setListeners:">(station, i);
  });
  EXPECT_EQ(take(), "");
  const Weak<KeyValueObservation> weakToken = token;
  const Weak<NSObject> weakObserver = observer;
  token = nullptr;
  observer = nullptr;
  EXPECT_FALSE(station->isUnobserved()) << "still registered";
  observer = weakObserver.lock();
  EXPECT_TRUE(observer);
  EXPECT_TRUE(clock.runUntil([&] { return !weakToken.lock(); }));
  EXPECT_EQ(take(), "listeners 1 0>1, listeners 1 1>2, listeners 1 2>3");
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Observation, ObserverOptionsAndActionMayBeSetLater) {
  token = observe("title", kSkipInitial);
  token->setOptions(kSkipUnchanged);
  send<"setTitle:">(station, nullptr);
  EXPECT_EQ(take(), "");
  EXPECT_EQ(token->options(), kSkipUnchanged);
  token->setObserver(observer = make<NSObject>());
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(take(), "title 1 null>a");
  elsewhere([&] { send<"setTitle:">(station, s("b")); });
  int calls = 0;
  token->setAction([&](NSObject*, NSObject*, NSDictionary*) { ++calls; });
  EXPECT_TRUE(clock.runUntil([&] { return calls != 0; })) << "what is queued calls the action of the moment";
  EXPECT_EQ(take(), "");
  token->setAction(action());
  during = [&] { token = nullptr; };
  send<"setTitle:">(station, s("c"));
  EXPECT_TRUE(station->isUnobserved()) << "it may end inside its action";
  EXPECT_EQ(take(), "title 1 b>c");
}

TEST_F(Observation, IsCalledAsKeyValueObservingCalls) {
  token = observe("title", kSkipInitial);
  Strong<NSDictionary> seen;
  token->setAction([&](NSObject*, NSObject*, NSDictionary* given) { seen = given; });
  const auto change = make<NSMutableDictionary>();
  change->setObject(s("mine"), s("other"));
  change->setObject(s("mine"), kKeyValueObservationKeyPath);
  const auto call = [&](NSObject* object, void* context) {
    seen = nullptr;
    send<"observeValueForKeyPath:ofObject:change:context:">(token, s("p"), object, change, context);
    return shown(seen);
  };
  int foreign = 0;
  EXPECT_EQ(call(station, &foreign), "-") << "a foreign context";
  EXPECT_EQ(call(station, nullptr), "-");
  EXPECT_EQ(call(nullptr, kKeyValueObservationContext), "-") << "no object";
  EXPECT_EQ(call(station, kKeyValueObservationContext), "{other = mine; keyPath = p}");
  EXPECT_EQ(shown(change->objectForKey(kKeyValueObservationKeyPath)), "mine") << "a copy was changed";
  change->removeAllObjects();
  EXPECT_EQ(seen->count(), 2U);
  token->setOptions(kSkipUnchanged);
  EXPECT_EQ(call(station, kKeyValueObservationContext), "-") << "neither old nor new: the same";
  change->setObject(s("new"), NSKeyValueChangeNewKey);
  EXPECT_NE(call(station, kKeyValueObservationContext), "-") << "a new value where there was none is a change";
}

TEST_F(Observation, IsMadeThroughItsSettersAndReadsItsActionByMessage) {
  observer = s("who");
  const auto named = make<Named>();
  EXPECT_EQ(observe(makeArray({s("title")}), kSkipInitial | 64, action(), named).get(), named.get());
  send<"observeValueForKeyPath:ofObject:change:context:">(named, nullptr, station, nullptr,
                                                          kKeyValueObservationContext);
  EXPECT_EQ(named->log, "observer=who object=" + shown(station) + " keyPaths=(title) options=66 action=- called");
}

TEST_F(Observation, BadInputRaisesAndLeavesNothingRegistered) {
  station = make<Strict>();
  const auto title = s("title");
  const struct {
    Strong<NSArray> keyPaths;
    KeyValueObservation::Action action;
    std::string_view name;
    const char* why;
  } rows[] = {
      {makeArray({title}), nullptr, NSInvalidArgumentException, "no action"},
      {makeArray({title, s("nothing.name")}), action(), NSUndefinedKeyException, "an unknown key on the way"},
      {makeArray({title, makeNumber(1)}), action(), NSInvalidArgumentException, "a number for a path"},
      {makeArray({title}), [](NSObject*, NSObject*, NSDictionary*) { throw NSException("Mine", "x"); }, "Mine",
       "an action that throws"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nameOf([&] { observe(row.keyPaths, 0, row.action); }), row.name);
    EXPECT_TRUE(station->isUnobserved());
    EXPECT_EQ(take(), "");
  }
  token = observe(static_cast<NSArray*>(nullptr), 0);
  EXPECT_EQ(take(), "- 1 ->-") << "no paths are none";
  EXPECT_EQ(nameOf([&] { token->setAction(nullptr); }), NSInvalidArgumentException);
}

TEST_F(Observation, DescribesItselfToTheByte) {
  observer = s("the board");
  const auto keyPaths = makeMutableArray({s("title"), s("host.name")});
  token = observe(keyPaths, kSkipInitial);
  keyPaths->removeAllObjects();  // the token has a copy
  const std::string head = shown(token) + "\n  observer: ";
  const std::string object = "\n  object: " + shown(station) + "\n  keypaths: ";
  EXPECT_EQ(text(token->debugDescription()), head + "the board" + object + "[title, host.name]");
  observer = nullptr;
  token->setKeyPaths(makeArray({}));
  EXPECT_EQ(text(send<"debugDescription">(token)), head + "(null)" + object + "[]");
}
