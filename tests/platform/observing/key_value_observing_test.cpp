// SPDX-License-Identifier: Apache-2.0
// Registrations, what they are told, and how they end.
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
  station = make<Relay>();
  watch("hand");
  send<"setHand:">(station, 3);
  EXPECT_EQ(watcher->take(), "hand 1 0>6") << "an overridden setter";
}

TEST_F(Observed, OptionsSayWhatTheChangeHolds) {
  for (const auto& [options, told] : Rows<std::uint64_t, const char*>{
           {0, "title 1 ->-"},
           {kNew, "title 1 ->b"},
           {kOld, "title 1 a>-"},
           {kBoth, "title 1 a>b"},
           {kInitial, "title 1 ->-, title 1 ->-"},
           {kInitial | kBoth, "title 1 ->a, title 1 a>b"},
           {kPrior, "title 1 ->- prior, title 1 ->-"},
           {kPrior | kBoth, "title 1 a>- prior, title 1 a>b"},
       }) {
    SCOPED_TRACE(options);
    send<"setTitle:">(station, s("a"));
    watch("title", options);
    send<"setTitle:">(station, s("b"));
    EXPECT_EQ(watcher->take(), told);
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
  EXPECT_TRUE(change->isEqual(expected) && !isKind<NSMutableDictionary>(change));
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

TEST_F(Observed, RegistrationsAreCountedAndMatchedByContext) {
  int mine = 0;
  int yours = 0;
  for (int* context : {&mine, &mine, &yours}) watch("title", 0, context);
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(watcher->take(), "title 1 ->-, title 1 ->-, title 1 ->-");
  const auto remove = [&](NSObject* observer, const char* path, void* context) {
    return nameOf([&] { send<"removeObserver:forKeyPath:context:">(station, observer, s(path), context); });
  };
  EXPECT_EQ(remove(watcher, "title", nullptr), NSRangeException) << "wrong context";
  EXPECT_EQ(remove(watcher, "slogan", &mine), NSRangeException) << "wrong path";
  EXPECT_EQ(remove(station, "title", &mine), NSRangeException) << "wrong observer";
  EXPECT_EQ(remove(watcher, "title", &yours), "none");
  EXPECT_EQ(remove(watcher, "title", &yours), NSRangeException) << "removed before";
  send<"setTitle:">(station, s("b"));
  EXPECT_EQ(watcher->take(), "title 1 ->-, title 1 ->-");
  for (int i = 0; i < 2; ++i) unwatch("title");
  EXPECT_EQ(nameOf([&] { unwatch("title"); }), NSRangeException);
  const std::string noPath =
      thrownBy([&] { send<"removeObserver:forKeyPath:context:">(station, watcher, nullptr, &mine); });
  EXPECT_TRUE(noPath.starts_with("NSInvalidArgumentException: ") &&
              saysWhy(noPath, " removeObserver:forKeyPath:context:]"))
      << noPath;
}

TEST_F(Observed, BadRegistrationsRaiseAndLeaveNothing) {
  send<"setHost:">(station, host("Ada"));
  const struct {
    Strong<NSObject> object, observer;
    const char* path;
    std::uint64_t options;
    std::string_view name;
    const char* why;
  } rows[] = {
      {makeArray({}), watcher, "count", 0, NSInvalidArgumentException, "an array"},
      {static_cast<NSObject*>(classOf<Station>()), watcher, "kind", 0, NSInvalidArgumentException, "a class"},
      {station, watcher, "songs.count", 0, NSInvalidArgumentException, "an array on the way"},
      {station, nullptr, "title", 0, NSInvalidArgumentException, "no observer"},
      {station, watcher, "nothing.name", 0, NSUndefinedKeyException, "an undefined key on the way"},
      {station, watcher, "nothing", kInitial | kNew, NSUndefinedKeyException, "an undefined key that is read"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nameOf([&] { addObserver(row.object, row.observer, row.path, row.options); }), row.name);
    EXPECT_EQ(nameOf([&] { removeObserver(row.object, watcher, row.path); }), NSRangeException);
    EXPECT_FALSE(dispatchClass(row.object)->isNotifying());
  }
  watch("nothing");  // until its value is needed
  EXPECT_EQ(nameOf([&] { send<"willChangeValueForKey:">(station, s("nothing")); }), NSUndefinedKeyException);
  unwatch("nothing");
  EXPECT_EQ(watcher->take(), "");
}

TEST_F(Observed, AnObserverThatDoesNotListenRaises) {
  const auto deaf = make<Host>();
  addObserver(station, deaf, "title", 0);
  EXPECT_EQ(nameOf([&] { send<"setTitle:">(station, s("a")); }), NSInternalInconsistencyException);
  EXPECT_EQ(shown(send<"title">(station)), "a");
  EXPECT_EQ(nameOf([&] { addObserver(station, deaf, "slogan", kInitial); }), NSInternalInconsistencyException);
  EXPECT_EQ(nameOf([&] { removeObserver(station, deaf, "slogan"); }), NSRangeException);
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
    removeObserver(station, other, "title");
    addObserver(station, third, "title");
    unwatch("title");
    for (int i = 0; i < 20; ++i) addObserver(station, third, "slogan", 0);
  };
  watch("title");
  addObserver(station, other, "title");
  send<"setTitle:">(station, s("a"));
  EXPECT_EQ(watcher->take(), "title 1 null>a");
  EXPECT_EQ(other->take() + third->take(), "");
  send<"setTitle:">(station, s("b"));
  EXPECT_EQ(third->take(), "title 1 a>b");
  EXPECT_EQ(watcher->take() + other->take(), "");
  watcher->during = [&](NSObject*) { unwatch("title"); };
  watch("title", kInitial | kNew);
  send<"setTitle:">(station, s("c"));
  EXPECT_EQ(watcher->take(), "title 1 ->b") << "ended inside the initial call";
}

TEST_F(Observed, AChangeInsideANotificationNests) {
  watcher->during = [&](NSObject*) {
    if (watcher->log == "title 1 null>outer") send<"setTitle:">(station, s("inner"));
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
  addObserver(station, other, "title");
  Station& borrowed = *station;
  send<"setTitle:">(borrowed, s("a"));
  EXPECT_EQ(watcher->take(), "title 1 null>a");
  EXPECT_EQ(other->take(), "title 1 null>a");
}

TEST_F(Observed, ADyingObserverRemovesItselfAndHearsNothing) {
  struct Leaver : Object<Leaver, Watcher> {
    Strong<Station> station;
    ~Leaver() override {
      send<"setTitle:">(station, s("while dying"));
      removeObserver(station, this, "slogan");
      EXPECT_EQ(nameOf([this] { removeObserver(station, this, "slogan"); }), NSRangeException);
      addObserver(station, this, "title", 0);  // reaches nobody
      EXPECT_TRUE(log.empty());
    }
  };
  auto leaver = make<Leaver>();
  leaver->station = station;
  addObserver(station, leaver, "title", 0);
  addObserver(station, leaver, "slogan", 0);
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
    void observeItself() { addObserver(this, this, "title", kNew); }
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
