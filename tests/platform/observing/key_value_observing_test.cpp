// SPDX-License-Identifier: Apache-2.0
// Registrations, what they are told, and how they end.
#include "../../objects.h"
#include "observed_objects.h"
#include <HavrinFoundation/platform/observing/change_dictionary.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

using namespace havrin;
using namespace havrin_test;

TEST_F(Observed, SettersTellWhatWasAndWhatIs) {
  watch("title");
  watch("listeners");
  watch("hand");
  send<"setTitle:">(station, s("a"));
  send<"setTitle:">(station, s("a"));
  send<"setTitle:">(station, nullptr);
  EXPECT_EQ(watcher->take(), "title 1 null>a, title 1 a>a, title 1 a>null");
  send<"setListeners:">(station, 3);
  send<"setValue:forKey:">(station, makeNumber(4), s("listeners"));
  send<"setValue:forKeyPath:">(station, makeNumber(4), s("listeners"));
  EXPECT_EQ(watcher->take(), "listeners 1 0>3, listeners 1 3>4, listeners 1 4>4");
  send<"setHand:">(station, 5);
  station->performSelector(selector<"setHand:">, makeNumber(6));
  EXPECT_EQ(watcher->take(), "hand 1 0>5, hand 1 5>6");
  send<"setSlogan:">(station, s("unwatched"));
  station->hand = 9;
  EXPECT_EQ(watcher->take(), "");
}

TEST_F(Observed, OptionsSayWhatTheChangeHolds) {
  const struct {
    std::uint64_t options;
    const char* told;
  } rows[] = {
      {0, "title 1 ->-"},
      {kNew, "title 1 ->b"},
      {kOld, "title 1 a>-"},
      {kBoth, "title 1 a>b"},
      {kInitial, "title 1 ->-, title 1 ->-"},
      {kInitial | kBoth, "title 1 ->a, title 1 a>b"},
      {kPrior, "title 1 ->- prior, title 1 ->-"},
      {kPrior | kBoth, "title 1 a>- prior, title 1 a>b"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.options);
    send<"setTitle:">(station, s("a"));
    watch("title", row.options);
    send<"setTitle:">(station, s("b"));
    EXPECT_EQ(watcher->take(), row.told);
    unwatch("title");
  }
  send<"setTitle:">(station, nullptr);
  watch("title", kInitial | kNew);
  EXPECT_EQ(watcher->take(), "title 1 ->null");
}

TEST_F(Observed, ChangesAreImmutableDictionaries) {
  watch("title");
  send<"setTitle:">(station, s("a"));
  const Strong<NSDictionary> change = watcher->last;
  const auto expected = makeDictionary({{s("kind"), makeNumber(1)}, {s("old"), NSNull::null()}, {s("new"), s("a")}});
  EXPECT_TRUE(change->isEqual(expected));
  EXPECT_FALSE(isKind<NSMutableDictionary>(change));
  EXPECT_EQ(change->copy().get(), change.get());
  const Strong<NSObject> copy = change->mutableCopy();
  EXPECT_TRUE(isKind<NSMutableDictionary>(copy) && copy->isEqual(change));
  EXPECT_FALSE(change->objectForKey(s("indexes")) || change->objectForKey(makeNumber(1)));
}

TEST_F(Observed, ObjectsStillLookLikeWhatTheyAre) {
  const std::string before = utf8(*station->description());
  ClassObject* const cls = classOf(*station).object();
  watch("title");
  EXPECT_FALSE(station->isUnobserved());
  EXPECT_EQ(classOf(*station).object(), cls);
  EXPECT_TRUE(station->isMemberOfClass(classOf<Station>()) && isKind<Station>(station));
  EXPECT_EQ(utf8(*station->description()), before);
  watch("listeners");
  unwatch("title");
  EXPECT_FALSE(station->isUnobserved());
  unwatch("listeners");
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Observed, AnOverriddenSetterTakesPart) {
  const auto relay = make<Relay>();
  send<"addObserver:forKeyPath:options:context:">(relay, watcher, s("hand"), kBoth, nullptr);
  send<"setHand:">(static_cast<Station&>(*relay), 3);
  EXPECT_EQ(watcher->take(), "hand 1 0>6");
  send<"removeObserver:forKeyPath:">(relay, watcher, s("hand"));
}

TEST_F(Observed, RegistrationsAreCountedAndMatchedByContext) {
  int mine = 0;
  int yours = 0;
  watch("title", 0, &mine);
  watch("title", 0, &mine);
  watch("title", 0, &yours);
  const auto told = [&] {
    send<"setTitle:">(station, s("a"));
    return std::exchange(watcher->log, {}).size();
  };
  EXPECT_EQ(told(), 3U);
  const auto remove = [&](NSObject* observer, const char* path, void* context) {
    return nameOf([&] { send<"removeObserver:forKeyPath:context:">(station, observer, s(path), context); });
  };
  EXPECT_EQ(remove(watcher, "title", nullptr), NSRangeException) << "wrong context";
  EXPECT_EQ(remove(watcher, "slogan", &mine), NSRangeException) << "wrong path";
  EXPECT_EQ(remove(station, "title", &mine), NSRangeException) << "wrong observer";
  EXPECT_EQ(remove(watcher, "title", &yours), "none");
  EXPECT_EQ(remove(watcher, "title", &yours), NSRangeException) << "removed before";
  EXPECT_EQ(told(), 2U);
  unwatch("title");
  unwatch("title");
  EXPECT_EQ(nameOf([&] { unwatch("title"); }), NSRangeException);
  try {
    send<"removeObserver:forKeyPath:context:">(station, watcher, nullptr, &mine);
    ADD_FAILURE() << "the null path";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSInvalidArgumentException);
    EXPECT_NE(exception.reason().find(" removeObserver:forKeyPath:context:]"), std::string::npos) << exception.reason();
  }
}

TEST_F(Observed, BadRegistrationsRaiseAndLeaveNothing) {
  send<"setHost:">(station, host("Ada"));
  const struct {
    Strong<NSObject> object, observer;
    Strong<NSString> path;
    std::uint64_t options;
    std::string_view name;
    const char* why;
  } rows[] = {
      {makeArray({}), watcher, s("count"), 0, NSInvalidArgumentException, "an array"},
      {static_cast<NSObject*>(classOf<Station>()), watcher, s("kind"), 0, NSInvalidArgumentException, "a class"},
      {station, watcher, s("songs.count"), 0, NSInvalidArgumentException, "an array on the way"},
      {station, nullptr, s("title"), 0, NSInvalidArgumentException, "no observer"},
      {station, watcher, s("nothing.name"), 0, NSUndefinedKeyException, "an undefined key on the way"},
      {station, watcher, s("nothing"), kInitial | kNew, NSUndefinedKeyException, "an undefined key that is read"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nameOf([&] {
                send<"addObserver:forKeyPath:options:context:">(row.object, row.observer, row.path, row.options,
                                                                nullptr);
              }),
              row.name);
    EXPECT_EQ(nameOf([&] { send<"removeObserver:forKeyPath:">(row.object, watcher, row.path); }), NSRangeException);
    EXPECT_FALSE(dispatchClass(row.object)->isNotifying());
  }
  send<"addObserver:forKeyPath:options:context:">(station, watcher, s("nothing"), kBoth,
                                                  nullptr);  // until its value is needed
  EXPECT_EQ(nameOf([&] { send<"willChangeValueForKey:">(station, s("nothing")); }), NSUndefinedKeyException);
  unwatch("nothing");
  EXPECT_EQ(watcher->take(), "");
}

TEST_F(Observed, AnObserverThatDoesNotListenRaises) {
  const auto deaf = make<Host>();
  send<"addObserver:forKeyPath:options:context:">(station, deaf, s("title"), 0, nullptr);
  EXPECT_EQ(nameOf([&] { send<"setTitle:">(station, s("a")); }), NSInternalInconsistencyException);
  EXPECT_EQ(shown(send<"title">(station)), "a");
  EXPECT_EQ(
      nameOf([&] { send<"addObserver:forKeyPath:options:context:">(station, deaf, s("slogan"), kInitial, nullptr); }),
      NSInternalInconsistencyException);
  EXPECT_EQ(nameOf([&] { send<"removeObserver:forKeyPath:">(station, deaf, s("slogan")); }), NSRangeException);
}

TEST_F(Observed, ASetterThatThrowsTellsNobody) {
  watch("refused", kBoth | kPrior);
  EXPECT_EQ(nameOf([&] { send<"setRefused:">(station, nullptr); }), NSGenericException);
  EXPECT_EQ(watcher->take(), "refused 1 null>- prior");
}

TEST_F(Observed, RegistrationsMayComeAndGoInsideANotification) {
  const auto other = make<Watcher>();
  const auto third = make<Watcher>();
  bool done = false;
  watcher->during = [&](NSObject*) {
    if (std::exchange(done, true)) return;
    send<"removeObserver:forKeyPath:">(station, other, s("title"));
    send<"addObserver:forKeyPath:options:context:">(station, third, s("title"), kBoth, nullptr);
    send<"removeObserver:forKeyPath:">(station, watcher, s("title"));
    for (int i = 0; i < 20; ++i)
      send<"addObserver:forKeyPath:options:context:">(station, third, s("slogan"), 0, nullptr);
  };
  watch("title");
  send<"addObserver:forKeyPath:options:context:">(station, other, s("title"), kBoth, nullptr);
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(watcher->take(), "title 1 null>a");
  EXPECT_EQ(other->take(), "");
  EXPECT_EQ(third->take(), "");
  send<"setTitle:">(station, s("b"));
  EXPECT_EQ(third->take(), "title 1 a>b");
  EXPECT_EQ(watcher->take() + other->take(), "");
}

TEST_F(Observed, AlsoInsideTheInitialCall) {
  watcher->during = [&](NSObject*) { send<"removeObserver:forKeyPath:">(station, watcher, s("title")); };
  watch("title", kInitial | kNew);
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(watcher->take(), "title 1 ->null");
}

TEST_F(Observed, AChangeInsideANotificationNests) {
  watcher->during = [&](NSObject*) {
    if (watcher->log.size() == 1) send<"setTitle:">(station, s("inner"));
  };
  watch("title");
  send<"setTitle:">(station, s("outer"));
  EXPECT_EQ(watcher->take(), "title 1 null>outer, title 1 outer>inner");
}

TEST_F(Observed, TheObjectMayGoInsideItsNotification) {
  watcher->during = [&](NSObject* object) {
    station = nullptr;
    EXPECT_EQ(shown(send<"valueForKey:">(object, s("title"))), "a");  // held until everybody has been told
  };
  const auto other = make<Watcher>();
  watch("title");
  send<"addObserver:forKeyPath:options:context:">(station, other, s("title"), kBoth, nullptr);
  Station& borrowed = *station;
  send<"setTitle:">(borrowed, s("a"));
  EXPECT_EQ(watcher->take(), "title 1 null>a");
  EXPECT_EQ(other->take(), "title 1 null>a");
}

TEST_F(Observed, AnObserverThatIsGoneIsForgotten) {
  watch("title");
  watch("host.name");
  watcher = nullptr;
  send<"setTitle:">(station, s("a"));
  send<"setHost:">(station, host("Ada"));
  EXPECT_TRUE(station->isUnobserved()) << "purged by the change";
  for (int i = 0; i < 1000; ++i)
    send<"addObserver:forKeyPath:options:context:">(station, make<Watcher>(), s("title"), kBoth, nullptr);
  send<"setTitle:">(station, s("b"));
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Observed, ADyingObserverRemovesItselfAndHearsNothing) {
  struct Leaver : Object<Leaver, Watcher> {
    Strong<Station> station;
    ~Leaver() override {
      send<"setTitle:">(station, s("while dying"));
      send<"removeObserver:forKeyPath:">(station, this, s("slogan"));
      EXPECT_EQ(nameOf([this] { send<"removeObserver:forKeyPath:">(station, this, s("slogan")); }), NSRangeException);
      send<"addObserver:forKeyPath:options:context:">(station, this, s("title"), 0, nullptr);  // reaches nobody
      EXPECT_TRUE(log.empty());
    }
  };
  auto leaver = make<Leaver>();
  leaver->station = station;
  send<"addObserver:forKeyPath:options:context:">(station, leaver, s("title"), 0, nullptr);
  send<"addObserver:forKeyPath:options:context:">(station, leaver, s("slogan"), 0, nullptr);
  leaver = nullptr;
  send<"setTitle:">(station, s("afterwards"));
  EXPECT_TRUE(station->isUnobserved());
}

TEST_F(Observed, AnObjectMayObserveItselfFromItsConstructorAndNotFromItsDestructor) {
  struct Base : Object<Base, NSObject> {
    Strong<NSString> title;
    std::string heard;
    Base() { observeItself(); }
    ~Base() override { observeItself(); }
    void observeItself() { send<"addObserver:forKeyPath:options:context:">(*this, this, s("title"), kNew, nullptr); }
    void observe(NSString*, NSObject*, NSDictionary* change, void*) {
      heard += shown(change->objectForKey(NSKeyValueChangeNewKey));
    }
    using Members = List<Property<"title", &Base::title>,
                         Method<"observeValueForKeyPath:ofObject:change:context:", &Base::observe>>;
  };
  struct Derived : Object<Derived, Base> {};
  auto derived = make<Derived>();
  send<"setTitle:">(derived, s("a"));
  EXPECT_EQ(derived->heard, "a");
  EXPECT_EQ(classOf(*derived).name(), "Derived");
  derived = nullptr;
}
