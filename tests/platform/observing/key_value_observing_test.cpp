// Key-value observing as applications meet it.
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <gtest/gtest.h>

using namespace havrin;

namespace {

constexpr std::uint64_t kNew = NSKeyValueObservingOptionNew;
constexpr std::uint64_t kOld = NSKeyValueObservingOptionOld;
constexpr std::uint64_t kBoth = kNew | kOld;
constexpr std::uint64_t kInitial = NSKeyValueObservingOptionInitial;
constexpr std::uint64_t kPrior = NSKeyValueObservingOptionPrior;

Strong<NSString> text(const char* ascii) { return makeString(ascii); }
std::string shown(NSObject* object) {
  if (!object) return "-";
  return object == NSNull::null() ? "null" : utf8(*object->description());
}

class Host : public Object<Host, NSObject> {
  Strong<NSString> name_;
  Strong<Host> deputy_;

 public:
  static inline int destroyed = 0;
  ~Host() override { ++destroyed; }
  using Members = List<Property<"name", &Host::name_>, Property<"deputy", &Host::deputy_>>;
};

Strong<Host> host(const char* name) {
  auto host = make<Host>();
  send<"setName:">(host, text(name));
  return host;
}

class Station : public Object<Station, NSObject> {
  Strong<Host> host_;
  Weak<Host> guest_;
  Strong<NSString> title_;
  Strong<NSString> slogan_;
  Strong<NSArray> songs_ = makeArray({});
  std::int64_t listeners_ = 0;

 public:
  std::int64_t hand = 0;
  std::int64_t quiet = 0;
  std::vector<Strong<NSObject>> tags;

  std::int64_t handValue() { return hand; }
  void setHand(std::int64_t value) { hand = value; }
  std::int64_t quietValue() { return quiet; }
  void setQuiet(std::int64_t value) {
    if (value == quiet) return;
    willChangeValueForKey(keyPath<Station, "quiet">);
    quiet = value;
    didChangeValueForKey(keyPath<Station, "quiet">);
  }
  void refuse(NSString*) { throw NSException(NSGenericException, "refused"); }
  Strong<NSString> refused() { return nullptr; }
  Strong<NSString> banner() {
    return makeString(shown(title_) + "/" + shown(host_ ? send<"name">(host_) : Strong<NSString>()));
  }
  Strong<NSString> longBanner() { return makeString("<" + utf8(*banner()) + ">"); }
  static Strong<NSArray> bannerNeeds(ClassOf<Station>) { return makeArray({text("title"), text("host.name")}); }
  static Strong<NSArray> longBannerNeeds(ClassOf<Station>) { return makeArray({text("banner")}); }
  static bool quietIsByHand(ClassOf<Station>) { return false; }

  Strong<NSArray> tagList() { return makeArray(tags); }
  void insertTag(NSObject* tag, std::uint64_t index) {
    tags.insert(tags.begin() + static_cast<std::ptrdiff_t>(index), tag);
  }
  void removeTag(std::uint64_t index) { tags.erase(tags.begin() + static_cast<std::ptrdiff_t>(index)); }

  using Members = List<Property<"host", &Station::host_>, Property<"guest", &Station::guest_>,
                       Property<"title", &Station::title_>, Property<"slogan", &Station::slogan_>,
                       Property<"songs", &Station::songs_>, Property<"listeners", &Station::listeners_>,
                       Method<"hand", &Station::handValue>, Method<"setHand:", &Station::setHand>,
                       Method<"quiet", &Station::quietValue>, Method<"setQuiet:", &Station::setQuiet>,
                       Method<"refused", &Station::refused>, Method<"setRefused:", &Station::refuse>,
                       Method<"banner", &Station::banner>, Method<"longBanner", &Station::longBanner>,
                       Method<"tags", &Station::tagList>, Method<"insertObject:inTagsAtIndex:", &Station::insertTag>,
                       Method<"removeObjectFromTagsAtIndex:", &Station::removeTag>>;
  using ClassMembers = List<ClassMethod<"keyPathsForValuesAffectingBanner", &Station::bannerNeeds>,
                            ClassMethod<"keyPathsForValuesAffectingLongBanner", &Station::longBannerNeeds>,
                            ClassMethod<"automaticallyNotifiesObserversOfQuiet", &Station::quietIsByHand>>;
};

// Overrides a setter, and calls the one above.
class Relay : public Object<Relay, Station> {
 public:
  void doubled(std::int64_t value) { Station::setHand(value * 2); }
  using Members = List<Method<"setHand:", &Relay::doubled>>;
};

// Writes down what it is told.
class Watcher : public Object<Watcher, NSObject> {
 public:
  std::vector<std::string> log;
  std::function<void(NSObject*)> during;
  Strong<NSDictionary> last;

  void observeValueForKeyPath(NSString* path, NSObject* object, NSDictionary* change, void*) override {
    last = change;
    std::string line = utf8(*path) + " " + shown(change->objectForKey(NSKeyValueChangeKindKey)) + " " +
                       shown(change->objectForKey(NSKeyValueChangeOldKey)) + ">" +
                       shown(change->objectForKey(NSKeyValueChangeNewKey));
    if (change->objectForKey(NSKeyValueChangeIndexesKey)) {
      line += " at " + std::to_string(cast<NSIndexSet>(change->objectForKey(NSKeyValueChangeIndexesKey))->firstIndex());
    }
    if (change->objectForKey(NSKeyValueChangeNotificationIsPriorKey)) line += " prior";
    log.push_back(line);
    if (during) during(object);
  }
  std::string take() {
    std::string all;
    for (const std::string& line : std::exchange(log, {})) all += (all.empty() ? "" : ", ") + line;
    return all;
  }
};

template <class F>
std::string nameOf(F body) {
  try {
    body();
  } catch (const NSException& exception) {
    EXPECT_FALSE(exception.reason().empty());
    return exception.name();
  }
  return "none";
}

struct Observed : testing::Test {
  Strong<Station> station = make<Station>();
  Strong<Watcher> watcher = make<Watcher>();

  void watch(const char* path, std::uint64_t options = kBoth, void* context = nullptr) {
    station->addObserver(watcher, text(path), options, context);
  }
  void unwatch(const char* path) { station->removeObserver(watcher, text(path)); }
};

}  // namespace

TEST_F(Observed, SettersTellWhatWasAndWhatIs) {
  watch("title");
  watch("listeners");
  watch("hand");
  send<"setTitle:">(station, text("a"));
  send<"setTitle:">(station, text("a"));
  send<"setTitle:">(station, nullptr);
  EXPECT_EQ(watcher->take(), "title 1 null>a, title 1 a>a, title 1 a>null");
  send<"setListeners:">(station, 3);
  station->setValueForKey(makeNumber(4), text("listeners"));
  station->setValueForKeyPath(makeNumber(4), text("listeners"));
  EXPECT_EQ(watcher->take(), "listeners 1 0>3, listeners 1 3>4, listeners 1 4>4");
  send<"setHand:">(station, 5);
  station->performSelector(selector<"setHand:">, makeNumber(6));
  EXPECT_EQ(watcher->take(), "hand 1 0>5, hand 1 5>6");
  send<"setSlogan:">(station, text("unwatched"));
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
    send<"setTitle:">(station, text("a"));
    watch("title", row.options);
    send<"setTitle:">(station, text("b"));
    EXPECT_EQ(watcher->take(), row.told);
    unwatch("title");
  }
  send<"setTitle:">(station, nullptr);
  watch("title", kInitial | kNew);
  EXPECT_EQ(watcher->take(), "title 1 ->null");
}

TEST_F(Observed, ChangesAreImmutableDictionaries) {
  watch("title");
  send<"setTitle:">(station, text("a"));
  const Strong<NSDictionary> change = watcher->last;
  EXPECT_EQ(change->count(), 3U);
  EXPECT_TRUE(change->isEqual(
      makeDictionary({{text("kind"), makeNumber(1)}, {text("old"), NSNull::null()}, {text("new"), text("a")}})));
  EXPECT_FALSE(isKind<NSMutableDictionary>(change));
  EXPECT_EQ(change->copy().get(), change.get());
  const Strong<NSObject> copy = change->mutableCopy();
  EXPECT_TRUE(isKind<NSMutableDictionary>(copy));
  EXPECT_TRUE(copy->isEqual(change));
  EXPECT_FALSE(change->objectForKey(text("indexes")));
  EXPECT_FALSE(change->objectForKey(makeNumber(1)));
}

TEST_F(Observed, ObjectsStillLookLikeWhatTheyAre) {
  const std::string before = utf8(*station->description());
  ClassObject* const cls = classOf(*station).object();
  watch("title");
  EXPECT_TRUE(dispatchClass(station)->isNotifying());
  EXPECT_EQ(classOf(*station).object(), cls);
  EXPECT_TRUE(station->isMemberOfClass(classOf<Station>()));
  EXPECT_TRUE(isKind<Station>(station));
  EXPECT_EQ(utf8(*station->description()), before);
  watch("listeners");
  unwatch("title");
  EXPECT_TRUE(dispatchClass(station)->isNotifying());
  unwatch("listeners");
  EXPECT_FALSE(dispatchClass(station)->isNotifying());
}

TEST_F(Observed, AnOverriddenSetterTakesPart) {
  const auto relay = make<Relay>();
  relay->addObserver(watcher, text("hand"), kBoth, nullptr);
  send<"setHand:">(static_cast<Station&>(*relay), 3);
  EXPECT_EQ(watcher->take(), "hand 1 0>6");
  relay->removeObserver(watcher, text("hand"));
}

TEST_F(Observed, RegistrationsAreCountedAndMatchedByContext) {
  int mine = 0;
  int yours = 0;
  watch("title", 0, &mine);
  watch("title", 0, &mine);
  watch("title", 0, &yours);
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(watcher->log.size(), 3U);
  const auto remove = [&](NSObject* observer, const char* path, void* context) {
    return nameOf([&] { station->removeObserver(observer, text(path), context); });
  };
  EXPECT_EQ(remove(watcher, "title", nullptr), NSRangeException) << "wrong context";
  EXPECT_EQ(remove(watcher, "slogan", &mine), NSRangeException) << "wrong path";
  EXPECT_EQ(remove(station, "title", &mine), NSRangeException) << "wrong observer";
  EXPECT_EQ(remove(watcher, "title", &yours), "none");
  EXPECT_EQ(remove(watcher, "title", &yours), NSRangeException) << "removed before";
  watcher->log.clear();
  send<"setTitle:">(station, text("b"));
  EXPECT_EQ(watcher->log.size(), 2U);
  unwatch("title");
  unwatch("title");
  EXPECT_EQ(nameOf([&] { unwatch("title"); }), NSRangeException);
  EXPECT_EQ(nameOf([&] { station->removeObserver(watcher, nullptr); }), NSInvalidArgumentException);
}

TEST_F(Observed, BadRegistrationsRaiseAndLeaveNothing) {
  send<"setHost:">(station, host("Ada"));
  const struct {
    Strong<NSObject> object;
    Strong<NSObject> observer;
    Strong<NSString> path;
    std::uint64_t options;
    std::string_view name;
    const char* why;
  } rows[] = {
      {makeArray({}), watcher, text("count"), 0, NSInvalidArgumentException, "an array"},
      {static_cast<NSObject*>(classOf<Station>()), watcher, text("kind"), 0, NSInvalidArgumentException, "a class"},
      {station, watcher, text("songs.count"), 0, NSInvalidArgumentException, "an array on the way"},
      {station, nullptr, text("title"), 0, NSInvalidArgumentException, "no observer"},
      {station, watcher, nullptr, 0, NSInvalidArgumentException, "no path"},
      {station, watcher, text("nothing.name"), 0, NSUndefinedKeyException, "an undefined key on the way"},
      {station, watcher, text("host.nothing.name"), 0, NSUndefinedKeyException, "the same, further on"},
      {station, watcher, text("nothing"), kInitial | kNew, NSUndefinedKeyException, "an undefined key that is read"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nameOf([&] { row.object->addObserver(row.observer, row.path, row.options, nullptr); }), row.name);
    if (row.path) {
      EXPECT_EQ(nameOf([&] { row.object->removeObserver(watcher, row.path); }), NSRangeException);
    }
    EXPECT_FALSE(dispatchClass(row.object)->isNotifying());
  }
  station->addObserver(watcher, text("nothing"), kBoth, nullptr);  // until its value is needed
  EXPECT_EQ(nameOf([&] { station->willChangeValueForKey(text("nothing")); }), NSUndefinedKeyException);
  unwatch("nothing");
  EXPECT_EQ(watcher->take(), "");
}

TEST_F(Observed, AnObserverThatDoesNotListenRaises) {
  const auto deaf = make<Host>();
  station->addObserver(deaf, text("title"), 0, nullptr);
  EXPECT_EQ(nameOf([&] { send<"setTitle:">(station, text("a")); }), NSInternalInconsistencyException);
  EXPECT_EQ(shown(send<"title">(station)), "a");
  EXPECT_EQ(nameOf([&] { station->addObserver(deaf, text("slogan"), kInitial, nullptr); }),
            NSInternalInconsistencyException);
  EXPECT_EQ(nameOf([&] { station->removeObserver(deaf, text("slogan")); }), NSRangeException);
}

TEST_F(Observed, ASetterThatThrowsTellsNobody) {
  watch("refused", kBoth | kPrior);
  EXPECT_EQ(nameOf([&] { send<"setRefused:">(station, nullptr); }), NSGenericException);
  EXPECT_EQ(watcher->take(), "refused 1 null>- prior");
}

TEST_F(Observed, PathsFollowWhatIsReplacedAndWhatIsMissing) {
  const auto ada = host("Ada");
  const auto bob = host("Bob");
  watch("host.name");
  send<"setHost:">(station, ada);
  send<"setName:">(ada, text("Ana"));
  send<"setHost:">(station, bob);
  EXPECT_EQ(watcher->take(), "host.name 1 null>Ada, host.name 1 Ada>Ana, host.name 1 Ana>Bob");
  send<"setName:">(ada, text("nobody hears"));
  EXPECT_FALSE(dispatchClass(ada)->isNotifying());
  send<"setHost:">(station, bob);
  send<"setName:">(bob, text("Ben"));
  send<"setHost:">(station, nullptr);
  EXPECT_EQ(watcher->take(), "host.name 1 Bob>Bob, host.name 1 Bob>Ben, host.name 1 Ben>null");
  send<"setName:">(bob, text("gone"));
  EXPECT_EQ(watcher->take(), "");
  unwatch("host.name");
  EXPECT_FALSE(dispatchClass(station)->isNotifying());
}

TEST_F(Observed, PathsOfThreeStepsTellOfTheRoot) {
  watch("host.deputy.name");
  std::vector<NSObject*> objects;
  watcher->during = [&](NSObject* object) { objects.push_back(object); };
  const auto ada = host("Ada");
  const auto bob = host("Bob");
  send<"setHost:">(station, ada);
  send<"setDeputy:">(ada, bob);
  send<"setName:">(bob, text("Ben"));
  send<"setName:">(ada, text("on the way, but not the end"));
  send<"setDeputy:">(ada, nullptr);
  EXPECT_EQ(watcher->take(),
            "host.deputy.name 1 null>null, host.deputy.name 1 null>Bob, host.deputy.name 1 Bob>Ben, "
            "host.deputy.name 1 Ben>null");
  EXPECT_EQ(objects, std::vector<NSObject*>(4, station));
}

TEST_F(Observed, OneObjectMayStandOnAPathTwice) {
  const auto ada = host("Ada");
  send<"setDeputy:">(ada, ada);
  ada->addObserver(watcher, text("deputy.deputy.name"), kBoth, nullptr);
  send<"setName:">(ada, text("Ana"));
  EXPECT_EQ(watcher->take(), "deputy.deputy.name 1 Ada>Ana");
  send<"setDeputy:">(ada, host("Bob"));
  EXPECT_EQ(watcher->take(), "deputy.deputy.name 1 Ana>null");
  send<"setName:">(ada, text("Amy"));
  EXPECT_EQ(watcher->take(), "");
  ada->removeObserver(watcher, text("deputy.deputy.name"));
  EXPECT_FALSE(dispatchClass(ada)->isNotifying());
}

TEST_F(Observed, ObjectsOnTheWayAreNotRetainedAndMayDie) {
  const auto bob = host("Bob");
  watch("guest.deputy.name");
  {
    const auto guest = host("Eve");
    send<"setDeputy:">(guest, bob);
    send<"setGuest:">(station, guest);
    EXPECT_EQ(watcher->take(), "guest.deputy.name 1 null>Bob");
    Host::destroyed = 0;
  }
  EXPECT_EQ(Host::destroyed, 1);
  send<"setName:">(bob, text("Ben"));
  EXPECT_EQ(watcher->take(), "") << "nothing leads there any more";
  const auto guest = host("Zoe");
  send<"setGuest:">(station, guest);
  send<"setDeputy:">(guest, bob);
  EXPECT_EQ(watcher->take(), "guest.deputy.name 1 null>null, guest.deputy.name 1 null>Ben");
  const Strong<Watcher> other = make<Watcher>();
  station = nullptr;  // the root goes first
  send<"setDeputy:">(guest, nullptr);
  EXPECT_EQ(watcher->take(), "");
  EXPECT_FALSE(dispatchClass(guest)->isNotifying());
}

TEST_F(Observed, DependentKeysChangeWithWhatTheyDependOn) {
  watch("banner");
  watch("longBanner", kNew);
  send<"setTitle:">(station, text("Nord"));
  EXPECT_EQ(watcher->take(), "banner 1 -/->Nord/-, longBanner 1 -><Nord/->");
  const auto ada = host("Ada");
  send<"setHost:">(station, ada);
  EXPECT_EQ(watcher->take(), "banner 1 Nord/->Nord/Ada, longBanner 1 -><Nord/Ada>");
  send<"setName:">(ada, text("Ana"));
  EXPECT_EQ(watcher->take(), "banner 1 Nord/Ada>Nord/Ana, longBanner 1 -><Nord/Ana>");
  send<"setHost:">(station, nullptr);
  watcher->log.clear();
  send<"setName:">(ada, text("Amy"));
  station->willChangeValueForKey(text("banner"));
  station->didChangeValueForKey(text("banner"));
  EXPECT_EQ(watcher->take(), "banner 1 Nord/->Nord/-, longBanner 1 -><Nord/->");
  unwatch("banner");
  unwatch("longBanner");
  EXPECT_FALSE(dispatchClass(station)->isNotifying());
}

TEST_F(Observed, ByHandWhatIsAnnouncedIsTold) {
  watch("quiet");
  send<"setQuiet:">(station, 1);
  send<"setQuiet:">(station, 1);
  EXPECT_EQ(watcher->take(), "quiet 1 0>1") << "the setter decides";
  station->didChangeValueForKey(text("quiet"));
  EXPECT_EQ(watcher->take(), "") << "never announced";
  watch("hand");
  station->willChangeValueForKey(text("hand"));
  send<"setHand:">(station, 5);
  station->didChangeValueForKey(text("hand"));
  EXPECT_EQ(watcher->take(), "hand 1 0>5, hand 1 0>5") << "the inner pair first";
  station->willChangeValueForKey(text("hand"));  // and never done
  unwatch("hand");
  unwatch("quiet");
  EXPECT_EQ(nameOf([&] { station->willChangeValueForKey(nullptr); }), NSInvalidArgumentException);
}

TEST_F(Observed, ArraysChangedInPlaceTellWhere) {
  watch("songs");
  const auto songs = station->mutableArrayValueForKey(text("songs"));
  songs->addObject(text("a"));
  songs->addObject(text("b"));
  songs->insertObject(text("x"), 1);
  EXPECT_EQ(watcher->take(), "songs 2 ->(a) at 0, songs 2 ->(b) at 1, songs 2 ->(x) at 1");
  songs->removeObjectAtIndex(0);
  songs->replaceObjectAtIndex(1, text("y"));
  EXPECT_EQ(watcher->take(), "songs 3 (a)>- at 0, songs 4 (b)>(y) at 1");
  EXPECT_EQ(shown(send<"songs">(station)), "(x, y)");
  EXPECT_EQ(shown(songs), "(x, y)");
  EXPECT_EQ(nameOf([&] { songs->removeObjectAtIndex(2); }), NSRangeException);
  EXPECT_EQ(nameOf([&] { songs->addObject(nullptr); }), NSInvalidArgumentException);
  send<"setSongs:">(station, makeArray({}));
  EXPECT_EQ(watcher->take(), "songs 1 (x, y)>()");
  EXPECT_EQ(songs->count(), 0U);
  send<"setSongs:">(station, nullptr);
  songs->addObject(text("z"));
  EXPECT_EQ(watcher->take(), "songs 1 ()>null, songs 2 ->(z) at 0");
}

TEST_F(Observed, ArraysOfWhichOnlyTheStepsAreOfferedChangeThroughThem) {
  watch("tags");
  const auto tags = station->mutableArrayValueForKey(text("tags"));
  tags->addObject(text("jazz"));
  tags->insertObject(text("news"), 0);
  tags->removeLastObject();
  EXPECT_EQ(watcher->take(), "tags 2 ->(jazz) at 0, tags 2 ->(news) at 0, tags 3 (jazz)>- at 1");
  EXPECT_EQ(station->tags.size(), 1U);
  EXPECT_EQ(nameOf([&] { tags->replaceObjectAtIndex(0, text("x")); }), NSUndefinedKeyException);
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(nameOf([&] { (void)station->mutableArrayValueForKey(text("title"))->count(); }),
            NSInvalidArgumentException);
}

TEST_F(Observed, RegistrationsMayComeAndGoInsideANotification) {
  const auto other = make<Watcher>();
  const auto third = make<Watcher>();
  bool done = false;
  watcher->during = [&](NSObject*) {
    if (std::exchange(done, true)) return;
    station->removeObserver(other, text("title"));
    station->addObserver(third, text("title"), kBoth, nullptr);
    station->removeObserver(watcher, text("title"));
    for (int i = 0; i < 20; ++i) station->addObserver(third, text("slogan"), 0, nullptr);
  };
  watch("title");
  station->addObserver(other, text("title"), kBoth, nullptr);
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(watcher->take(), "title 1 null>a");
  EXPECT_EQ(other->take(), "");
  EXPECT_EQ(third->take(), "");
  send<"setTitle:">(station, text("b"));
  EXPECT_EQ(third->take(), "title 1 a>b");
  EXPECT_EQ(watcher->take() + other->take(), "");
}

TEST_F(Observed, AlsoInsideTheInitialCall) {
  watcher->during = [&](NSObject*) { station->removeObserver(watcher, text("title")); };
  watch("title", kInitial | kNew);
  send<"setTitle:">(station, text("a"));
  EXPECT_EQ(watcher->take(), "title 1 ->null");
}

TEST_F(Observed, AChangeInsideANotificationNests) {
  watcher->during = [&](NSObject*) {
    if (watcher->log.size() == 1) send<"setTitle:">(station, text("inner"));
  };
  watch("title");
  send<"setTitle:">(station, text("outer"));
  EXPECT_EQ(watcher->take(), "title 1 null>outer, title 1 outer>inner");
}

TEST_F(Observed, TheObjectMayGoInsideItsNotification) {
  watcher->during = [&](NSObject* object) {
    station = nullptr;
    EXPECT_EQ(shown(object->valueForKey(text("title"))), "a");  // held until everybody has been told
  };
  const auto other = make<Watcher>();
  watch("title");
  station->addObserver(other, text("title"), kBoth, nullptr);
  Station& borrowed = *station;
  send<"setTitle:">(borrowed, text("a"));
  EXPECT_EQ(watcher->take(), "title 1 null>a");
  EXPECT_EQ(other->take(), "title 1 null>a");
}

TEST_F(Observed, AnObserverThatIsGoneIsForgotten) {
  watch("title");
  watch("host.name");
  watcher = nullptr;
  send<"setTitle:">(station, text("a"));
  send<"setHost:">(station, host("Ada"));
  EXPECT_FALSE(dispatchClass(station)->isNotifying()) << "purged by the change";
  for (int i = 0; i < 1000; ++i) station->addObserver(make<Watcher>(), text("title"), kBoth, nullptr);
  send<"setTitle:">(station, text("b"));
  EXPECT_FALSE(dispatchClass(station)->isNotifying());
}

TEST_F(Observed, ADyingObserverRemovesItselfAndHearsNothing) {
  struct Leaver : Object<Leaver, Watcher> {
    Strong<Station> station;
    ~Leaver() override {
      send<"setTitle:">(station, text("while dying"));
      station->removeObserver(this, text("slogan"));
      EXPECT_EQ(nameOf([this] { station->removeObserver(this, text("slogan")); }), NSRangeException);
      station->addObserver(this, text("title"), 0, nullptr);  // reaches nobody
      EXPECT_TRUE(log.empty());
    }
  };
  auto leaver = make<Leaver>();
  leaver->station = station;
  station->addObserver(leaver, text("title"), 0, nullptr);
  station->addObserver(leaver, text("slogan"), 0, nullptr);
  leaver = nullptr;
  send<"setTitle:">(station, text("afterwards"));
  EXPECT_FALSE(dispatchClass(station)->isNotifying());
}

TEST_F(Observed, AnObjectMayObserveItselfFromItsConstructorAndNotFromItsDestructor) {
  struct Base : Object<Base, NSObject> {
    Strong<NSString> title;
    std::string heard;
    Base() { addObserver(this, text("title"), kNew, nullptr); }
    ~Base() override { addObserver(this, text("title"), kNew, nullptr); }
    void observeValueForKeyPath(NSString*, NSObject*, NSDictionary* change, void*) override {
      heard += shown(change->objectForKey(NSKeyValueChangeNewKey));
    }
    using Members = List<Property<"title", &Base::title>>;
  };
  struct Derived : Object<Derived, Base> {};
  auto derived = make<Derived>();
  send<"setTitle:">(derived, text("a"));
  EXPECT_EQ(derived->heard, "a");
  EXPECT_EQ(classOf(*derived).name(), "Derived");
  derived = nullptr;
}

TEST_F(Observed, DictionariesTellOfEntriesSetByKey) {
  const auto dictionary = make<NSMutableDictionary>();
  dictionary->addObserver(watcher, text("a.b"), kBoth, nullptr);
  const auto inner = make<NSMutableDictionary>();
  dictionary->setValueForKey(inner, text("a"));
  inner->setValueForKey(makeNumber(1), text("b"));
  inner->setValueForKey(nullptr, text("b"));
  EXPECT_EQ(watcher->take(), "a.b 1 null>null, a.b 1 null>1, a.b 1 1>null");
  EXPECT_TRUE(dictionary->objectForKey(text("a")));
}
