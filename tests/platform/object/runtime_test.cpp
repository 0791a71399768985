// SPDX-License-Identifier: Apache-2.0
// The object runtime as applications meet it: messages, overrides, categories, references, destruction.
// Length: its parts are tested on the same few classes.
#include "../../objects.h"
#include <HavrinFoundation/platform/object/association.h>
#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/members.h>

#include <atomic>
#include <cstring>

using namespace havrin;

namespace {

struct Playable : Protocol<Playable> {};
struct Recordable : Protocol<Recordable, Playable> {};
struct Archivable : Protocol<Archivable, Recordable> {};
struct Streamable : Protocol<Streamable> {};

class Station : public Object<Station, NSObject> {
  Strong<NSString> title_;
  std::int64_t listeners_ = 0;

 public:
  static inline int destroyed = 0;
  ~Station() override { ++destroyed; }

  Strong<NSString> title() const { return title_; }
  void setTitle(NSString* title) { set<"title">(title); }
  Strong<NSString> announce() { return makeString("here is " + (title_ ? utf8(*title_) : "nobody")); }
  std::int64_t tune(std::int64_t by) { return listeners_ += by; }
  std::int64_t both(std::int64_t a, std::int64_t b) { return a + b; }
  static Strong<NSString> kind(ClassOf<Station> self) { return makeString("kind of " + std::string(self.name())); }

  using Protocols = List<Archivable>;
  using Members = List<Property<"title", &Station::title_>, Property<"listeners", &Station::listeners_>,
                       Method<"announce", &Station::announce>, Method<"tune:", &Station::tune>,
                       Method<"both:with:", &Station::both>>;
  using ClassMembers = List<ClassMethod<"kind", &Station::kind>>;
};

class Relay : public Object<Relay, Station> {
  Strong<NSString> announceTwice() { return makeString("twice"); }
  static Strong<NSString> relayKind(ClassOf<Relay>) { return makeString("relay"); }

 public:
  using Members = List<Method<"announce", &Relay::announceTwice>>;
  using ClassMembers = List<ClassMethod<"kind", &Relay::relayKind>>;
};

class Plain : public Object<Plain, Relay> {};

}  // namespace

template <>
struct havrin::Message<NSObject, "test_label:"> : Signature<Strong<NSString>(NSString*)> {};
template <>
struct havrin::Message<Station, "test_same"> : Signature<Strong<Self>()> {};
template <>
struct havrin::ClassMessage<NSObject, "test_made"> : Signature<Strong<Self>()> {};
template <>
struct havrin::Message<NSObject, "test_nobodyAnswers"> : Signature<void()> {};

namespace {

Strong<NSString> label(NSObject& self, NSString* prefix) {
  return makeString(utf8(*prefix) + std::string(classOf(self).name()));
}
Strong<NSString> louder(NSObject&, NSString* prefix) { return makeString(utf8(*prefix) + "!"); }
Strong<Station> same(Station& self) { return Strong<Station>(&self); }
Strong<NSObject> made(ClassOf<NSObject> self) { return alloc(self); }

constexpr MethodRow kRows[] = {row<NSObject, "test_label:", label>()};
constexpr MethodRow kClassRows[] = {classRow<NSObject, "test_made", made>()};
constexpr MethodRow kLouderRows[] = {row<NSObject, "test_label:", louder>()};
constexpr MethodRow kStationRows[] = {row<Station, "test_same", same>()};
constinit const Category kLabels{classObject<NSObject>, "Labels", kRows, kClassRows};
constinit const Category kSame{classObject<Station>, "Same", kStationRows, {}};
constinit const Category kLouder{classObject<NSObject>, "Louder", kLouderRows, {}};
constexpr ConstantString kConstant("constant");
const ConstantString* const kStrings[] = {&kConstant};
const Category* const kCategories[] = {&kLabels, &kSame};
const Loader kLoader{Image{"test", nullptr, kStrings, kCategories, {}}};

}  // namespace

TEST(Messages, FindTheMethodOfTheReceiversOwnClass) {
  const auto station = make<Station>();
  const auto relay = make<Relay>();
  station->setTitle(makeString("Nord"));
  EXPECT_EQ(text(send<"announce">(station)), "here is Nord");
  EXPECT_EQ(text(send<"announce">(static_cast<Station&>(*relay))), "twice");
  EXPECT_EQ(text(send<"announce">(make<Plain>())), "twice");
  EXPECT_EQ(text(send<"kind">(classOf<Station>())), "kind of Station");
  EXPECT_EQ(text(send<"kind">(ClassOf<Station>(classOf<Plain>()))), "relay");
  const Strong<Station> none;
  send<"setTitle:">(none, nullptr);
  EXPECT_TRUE(send<"tune:">(none, 3) == 0 && !send<"announce">(none)) << "the zero of the result";
}

TEST(Messages, OfCategoriesReachEveryObjectAndEveryClass) {
  EXPECT_EQ(text(send<"test_label:">(makeString("x"), makeString("a "))), "a NSString");
  EXPECT_EQ(text(send<"test_label:">(classOf<Station>(), makeString("class "))), "class Station");
  const Strong<NSString> constant = static_cast<NSString*>(kConstant);
  EXPECT_EQ(text(send<"test_label:">(makeString("x"), constant)), "constantNSString");
  EXPECT_EQ(text(send<"test_label:">(constant, constant)), "constantNSString") << "a string that was not made";
  const Strong<Relay> relay = send<"test_same">(make<Relay>());
  EXPECT_TRUE(isKind<Relay>(relay));
  const Strong<Plain> plain = send<"test_made">(classOf<Plain>());
  EXPECT_EQ(classOf(*plain).name(), "Plain");
}

namespace {

// Three levels, of which each goes on to the one above; the last one's own static class decides where it begins.
class First : public Object<First, Station> {
 public:
  Strong<NSString> announce() { return makeString("1 " + text(sendSuper<"announce">(*this))); }
  Strong<Station> self() { return sendSuper<"test_same">(*this); }
  static Strong<NSString> kind(ClassOf<First> self) { return makeString("1 " + text(sendSuper<"kind">(self))); }
  using Members = List<Method<"announce", &First::announce>, Method<"test_same", &First::self>>;
  using ClassMembers = List<ClassMethod<"kind", &First::kind>>;
};
class Second : public Object<Second, First> {};
class Third : public Object<Third, Second> {
 public:
  Strong<NSString> announce() { return makeString("3 " + text(sendSuper<"announce">(*this))); }
  Strong<NSString> label(NSString* prefix) {
    send<"setTitle:">(*this, prefix);
    return sendSuper<"test_label:">(*this, prefix);
  }
  static Strong<NSString> kind(ClassOf<Third> self) { return makeString("3 " + text(sendSuper<"kind">(self))); }
  using Members = List<Method<"announce", &Third::announce>, Method<"test_label:", &Third::label>>;
  using ClassMembers = List<ClassMethod<"kind", &Third::kind>>;
};
class Fourth : public Object<Fourth, Third> {};

}  // namespace

TEST(Messages, ToTheSuperclassReachTheMethodThatAnOverrideReplaces) {
  const auto fourth = make<Fourth>();
  EXPECT_EQ(text(send<"test_label:">(fourth, makeString("a "))), "a Fourth") << "the object stays what it is";
  EXPECT_EQ(text(send<"announce">(fourth)), "3 1 here is a ");
  EXPECT_EQ(text(send<"kind">(classOf<Fourth>())), "3 1 kind of Fourth");
  const Strong<Fourth> same = send<"test_same">(fourth);
  EXPECT_EQ(same.get(), fourth.get());
  static_assert(std::is_same_v<decltype(sendSuper<"test_same">(*fourth)), Strong<Station>>,
                "what the superclass returns is not known to be of the override's class");
}

TEST(Messages, ThatNobodyAnswersSayReceiverAndSelector) {
  const auto station = make<Station>();
  const std::string thrown = thrownBy([&] { send<"test_nobodyAnswers">(station); });
  EXPECT_TRUE(saysWhy(
      thrown, "NSInvalidArgumentException: -[Station test_nobodyAnswers]: unrecognized selector sent to instance 0x"));
  EXPECT_TRUE(saysWhy(thrown, "the image whose category has it is not loaded"));
  EXPECT_TRUE(saysWhy(thrownBy([&] { station->performSelector(Selector()); }),
                      "-[Station performSelector:withObject:]: the selector is null"));
}

TEST(Messages, AreReplacedByACategoryThatComesLater) {
  const auto station = make<Station>();
  const auto performed = [&] { return text(station->performSelector(selector<"test_label:">, makeString("b "))); };
  EXPECT_EQ(text(send<"test_label:">(station, makeString("a "))), "a Station");
  EXPECT_EQ(performed(), "b Station");
  const std::uint64_t before = methodChanges();
  const Category* const later[] = {&kLouder};
  const Loader loader{Image{"later", nullptr, {}, later, {}}};
  EXPECT_EQ(text(send<"test_label:">(station, makeString("a "))), "a !");
  EXPECT_EQ(performed(), "b !");
  EXPECT_GT(methodChanges(), before);
  const Category* const back[] = {&kLabels};
  const Loader restore{Image{"restore", nullptr, {}, back, {}}};
}

TEST(Selectors, AreOneForEqualNames) {
  EXPECT_EQ(Selector(selector<"tune:">), Selector::named("tune:"));
  EXPECT_NE(Selector(selector<"tune:">), Selector(selector<"title">));
  EXPECT_EQ(Selector(selector<"tune:">).name(), "tune:");
  for (int i = 0; i < 2; ++i) EXPECT_FALSE(Selector::known("nobody ever spells this")) << "asking does not make it";
  EXPECT_EQ(Selector::known("tune:").key(), Selector::named("tune:").key());
  EXPECT_EQ(text(Selector::named("tune:").nameString()), "tune:");
  EXPECT_EQ(Selector(selector<"tune:">).nameString(), Selector::named("tune:").nameString());
  EXPECT_FALSE(Selector().nameString());
}

TEST(Selectors, BeyondTheTablesStillFindTheirMethods) {
  for (int i = 0; i < 5000; ++i) (void)Selector::named("filler" + std::to_string(i));
  struct Late : Object<Late, NSObject> {
    std::int64_t late() { return 7; }
    using Members = List<Method<"aSelectorNumberedLate", &Late::late>>;
  };
  const auto object = make<Late>();
  EXPECT_EQ(Selector::named("aSelectorNumberedLate").number(), 0U);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(send<"aSelectorNumberedLate">(object), 7);
  EXPECT_EQ(unboxInteger(object->performSelector(selector<"aSelectorNumberedLate">)), 7);
}

TEST(Perform, BoxesBothWaysAndRefusesWhatDoesNotFit) {
  const auto station = make<Station>();
  EXPECT_EQ(unboxInteger(station->performSelector(selector<"tune:">, makeNumber(4.9))), 4);
  station->performSelector(selector<"setTitle:">, makeString("Sued"));
  EXPECT_EQ(text(station->performSelector(selector<"title">)), "Sued");
  station->performSelector(selector<"setTitle:">);
  EXPECT_FALSE(station->title());
  const struct {
    const char* why;
    Selector selector;
    Strong<NSObject> argument;
  } rows[] = {
      {"no such method", selector<"select:">, nullptr},
      {"two arguments", selector<"both:with:">, makeNumber(1)},
      {"a number where a string is asked for", selector<"setTitle:">, makeNumber(1)},
      {"null where a number is asked for", selector<"tune:">, nullptr},
      {"a string where a number is asked for", selector<"tune:">, makeString("1")},
      {"the null selector", Selector(), nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    EXPECT_EQ(nameOf([&] { station->performSelector(row.selector, row.argument); }), NSInvalidArgumentException);
  }
}

TEST(Classes, AreObjectsWithMetaclassesAndConformByDeclaration) {
  NSObject* const cls = classOf<Plain>();
  EXPECT_TRUE(cls->isKindOfClass(classOf<NSObject>()) && !cls->isKindOfClass(classOf<Plain>()));
  EXPECT_EQ(Class::from(cls), classOf<Plain>());
  EXPECT_FALSE(Class::from(make<Plain>()));
  EXPECT_EQ(text(cls->description()), "Plain");
  EXPECT_TRUE(make<Plain>()->isKindOfClass(classOf<Station>()));
  EXPECT_FALSE(make<Station>()->isKindOfClass(classOf<Plain>()));
  EXPECT_TRUE(make<Plain>()->isMemberOfClass(classOf<Plain>()) && !make<Plain>()->isMemberOfClass(classOf<Relay>()));
  EXPECT_EQ(classOf<Plain>().superclass().name(), "Relay");
  const auto plain = make<Plain>();
  EXPECT_TRUE(plain->conformsToProtocol(protocolOf<Recordable>()) && plain->conformsToProtocol(protocolOf<Playable>()));
  EXPECT_FALSE(plain->conformsToProtocol(protocolOf<Streamable>()));
  EXPECT_TRUE(cls->conformsToProtocol(protocolOf<Playable>()));
  EXPECT_TRUE(plain->respondsToSelector(selector<"test_label:">));
  EXPECT_FALSE(plain->respondsToSelector(Selector::named("noSuchThing")));
}

TEST(Classes, DeeperThanTheAncestorTableAreWalked) {
  struct A : Object<A, Plain> {};
  struct B : Object<B, A> {};
  struct C : Object<C, B> {};
  struct D : Object<D, C> {};
  struct E : Object<E, D> {};
  struct F : Object<F, E> {};
  const auto deep = make<F>();
  EXPECT_TRUE(isKind<Station>(deep) && isKind<D>(deep) && isKind<E>(deep));
  EXPECT_FALSE(isKind<F>(make<E>()) || isKind<NSString>(deep));
  const auto kept = cast<D>(make<F>());  // of a temporary, a reference
  EXPECT_TRUE(Weak<D>(kept).lock());
  EXPECT_FALSE(cast<F>(make<E>()));
}

TEST(References, ReadNullFromTheMomentTheLastStrongOneGoes) {
  struct Watcher : Object<Watcher, NSObject> {
    Weak<Watcher> self;
    bool* seen = nullptr;
    ~Watcher() override {
      *seen = !self.lock();
      const Strong<Watcher> again(this);  // cannot bring the object back
    }
  };
  bool nullInDestructor = false;
  auto watcher = make<Watcher>();
  const Weak<Watcher> weak = watcher->self = watcher;
  watcher->seen = &nullInDestructor;
  EXPECT_EQ(weak.lock().get(), watcher.get());
  watcher = nullptr;
  EXPECT_TRUE(nullInDestructor);
  EXPECT_FALSE(weak.lock());
}

TEST(References, RaceBetweenPromotionAndTheLastRelease) {
  for (int round = 0; round < 2000; ++round) {
    auto object = make<Station>();
    // Every other time the thread has the only weak reference, which goes while the object does.
    const Weak<Station> weak = round % 2 ? Weak<Station>() : object;
    std::thread other([theirs = Weak<Station>(object)] {
      if (const Strong<Station> held = theirs.lock()) send<"tune:">(held, 1);
    });
    object = nullptr;
    other.join();
    EXPECT_FALSE(weak.lock());
  }
}

TEST(Destruction, OfAMillionLinksUsesBoundedStack) {
  struct Link : Object<Link, NSObject> {
    Strong<NSObject> next;
  };
  Strong<Link> chain = make<Link>();
  const Weak<Link> last = chain;
  for (int i = 0; i < 1'000'000; ++i) {
    auto link = make<Link>();
    link->next = std::move(chain);
    chain = std::move(link);
  }
  std::thread([&chain] { chain = nullptr; }).join();
  EXPECT_FALSE(last.lock());
}

TEST(Destruction, ReleasesAttachedValuesAfterTheDestructors) {
  struct Owner : Object<Owner, NSObject> {
    bool* alive = nullptr;
    ~Owner() override { *alive = static_cast<bool>(associatedValue(*this, selector<"test_label:">)); }
  };
  bool alive = false;
  auto owner = make<Owner>();
  auto value = make<NSObject>();
  owner->alive = &alive;
  setAssociatedValue(*owner, selector<"test_label:">, value);
  EXPECT_EQ(associatedValue(*owner, selector<"test_label:">).get(), value.get());
  EXPECT_FALSE(associatedValue(*owner, selector<"tune:">));
  const Weak<NSObject> weak = value;
  value = nullptr;
  owner = nullptr;
  EXPECT_TRUE(alive);
  EXPECT_FALSE(weak.lock());
}

TEST(Destruction, SendsInABaseDestructorReachNoOverride) {
  struct Base : Object<Base, NSObject> {
    std::string* log = nullptr;
    std::int64_t who() { return 1; }
    ~Base() override { *log += std::to_string(send<"test_who">(*this)); }
    using Members = List<Method<"test_who", &Base::who>>;
  };
  struct Derived : Object<Derived, Base> {
    std::int64_t whoElse() { return 2; }
    ~Derived() override { *log += std::to_string(send<"test_who">(*this)); }
    using Members = List<Method<"test_who", &Derived::whoElse>>;
  };
  std::string log;
  make<Derived>()->log = &log;
  EXPECT_EQ(log, "21");
}

TEST(Associations, AreReplacedAndRemovedOnAnyObject) {
  Station::destroyed = 0;
  NSObject& cls = *static_cast<NSObject*>(classOf<Station>());
  for (int replaced = 0; replaced < 2; ++replaced) {
    setAssociatedValue(cls, selector<"title">, make<Station>());
    EXPECT_EQ(Station::destroyed, replaced);
  }
  setAssociatedValue(cls, selector<"title">, nullptr);
  EXPECT_EQ(Station::destroyed, 2);
}

TEST(Blocks, NameTheClassTheyTakeAndAreTestedAgainstIt) {
  const Block<std::int64_t(NSObject*)> byReference = [](Station& station) { return send<"tune:">(station, 1); };
  const Block<std::int64_t(NSObject*)> byPointer = [](const Station* station) { return station ? 1 : 0; };
  EXPECT_EQ(byReference(make<Relay>()), 1);
  EXPECT_EQ(byPointer(nullptr), 0);
  EXPECT_EQ(nameOf([&] { byReference(makeString("no station")); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([&] { byReference(nullptr); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([&] { byPointer(makeString("no station")); }), NSInvalidArgumentException);
  EXPECT_EQ(nameOf([] { Block<void()>()(); }), NSInvalidArgumentException);
}

TEST(Blocks, ShareTheirClosureAndViewsBorrowIt) {
  const auto held = make<Station>();
  Station::destroyed = 0;
  {
    Block<bool()> block = [station = make<Station>()] { return static_cast<bool>(station); };
    const Block<bool()> same = block;
    EXPECT_EQ(block, same);
    BlockView<bool()> view = block;
    EXPECT_EQ(view.copy(), same);
    block = nullptr;
    EXPECT_TRUE(same());
    EXPECT_EQ(Station::destroyed, 0);
  }
  EXPECT_EQ(Station::destroyed, 1);
  EXPECT_FALSE(BlockView<void()>(Block<void()>()));
  const auto moveOnly = [only = std::make_unique<int>(1)] { return *only; };
  const auto copyable = [&moveOnly] { return moveOnly(); };
  EXPECT_EQ((BlockView<int()>(copyable).copy()()), 1);
  EXPECT_EQ(nameOf([&] { (void)BlockView<int()>(moveOnly).copy(); }), NSInvalidArgumentException);
}

TEST(ObjectsDeathTest, LiveOnTheHeapOnly) {
  EXPECT_DEATH(
      {
        alignas(16) char memory[256];
        std::memset(memory, 0, sizeof memory);
        ::new (memory + 64) Station;
      },
      "of class Station or a subclass was not made by make<T>");
}
