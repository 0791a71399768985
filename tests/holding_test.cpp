// SPDX-License-Identifier: Apache-2.0
// A message keeps its receiver and arguments alive. Every method of the library's image is called with objects whose last
// outside reference is released during the call: by their overrides, the blocks and the destructors that it runs.
// Length: one list of every method of the library, and an object of each class that drops itself.
#include "allocations.h"
#include "objects.h"
#include <HavrinFoundation/HavrinFoundation.h>
#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <map>
#include <set>

using namespace havrin;

namespace {
struct Twice;
}
template <>
struct platform::Message<Twice, "run:"> : Signature<void(const Block<void()>&)> {};

namespace {

// A field of an object that must live until the message returns; counts its end.
struct Probe {
  int* destroyed = nullptr;
  ~Probe() {
    if (destroyed) ++*destroyed;
  }
};

// One message and the objects in it, each held from outside by one reference. With `plain`, collections are the layer's
// own, and what drops are their elements and the blocks.
class Call {
 public:
  explicit Call(bool plain, bool drops = true) : plain_(plain) { current_ = drops ? this : nullptr; }
  ~Call() { current_ = nullptr; }

  /// A new object that only the test holds. What its constructor calls drops nothing.
  template <class T, class... A>
  T& add(A&&... arguments) {
    Call* const before = std::exchange(current_, nullptr);
    const Strong<T> made = make<T>(std::forward<A>(arguments)...);
    current_ = before;
    if constexpr (requires { made->probe; }) {
      made->probe.destroyed = &destroyed;
      ++probes;
    }
    outside_.emplace_back(made);
    return *made;
  }
  template <class T, class Own>
  T& collection();
  /// A block that holds a probe of its own, and that is reset with the objects.
  template <class B, class F>
  const B& block(F body);

  // What every override, block and destructor below calls.
  static void drop() {
    Call* const call = current_;
    if (!call || call->outside_.empty()) return;
    call->dropped = true;
    call->release();
    EXPECT_EQ(call->destroyed, 0) << "an object of the call was destroyed before the message returned";
  }

  void release() {
    std::exchange(outside_, {}).clear();
    for (const auto& reset : std::exchange(resets_, {})) reset();
  }

  int probes = 0;
  int destroyed = 0;
  bool dropped = false;

 private:
  static inline Call* current_ = nullptr;
  bool plain_;
  std::vector<Strong<NSObject>> outside_;
  std::vector<std::function<void()>> resets_;
};

template <class T>
T dropping(T value) {
  Call::drop();
  return value;
}

template <class Me, class Base>
struct Probed : Object<Me, Base> {
  using Object<Me, Base>::Object;
  Probe probe;
};

// The receiver of the messages that every object answers.
struct Item : Probed<Item, NSObject> {
  bool isEqual(const NSObject* other) const override { return dropping(this == other); }
  std::uint64_t hash() const override { return dropping(1U); }
  bool isKindOfClass(Class cls) const override { return dropping(NSObject::isKindOfClass(cls)); }
  bool conformsToProtocol(const AnyProtocol&) const override { return dropping(true); }
  bool respondsToSelector(Selector) const override { return dropping(true); }
  void add(NSObject* observer, NSString* path, std::uint64_t options, void* context) {
    Call::drop();
    sendSuper<"addObserver:forKeyPath:options:context:">(*this, observer, path, options, context);
  }
  void work() {}
  Strong<NSString> decade;
  using Members = List<Method<"hold_work", &Item::work>, Property<"decade", &Item::decade>,
                       Method<"addObserver:forKeyPath:options:context:", &Item::add>>;
};

// An element of a collection. Its text is a key of Item, a colour code and a number in base 36.
struct OwnString : Probed<OwnString, NSString> {
  bool isEqual(const NSObject* other) const override { return dropping(this == other); }
  std::uint64_t hash() const override { return dropping(1U); }
  std::uint64_t length() const override { return dropping(std::string_view("decade").size()); }
  char16_t characterAtIndex(std::uint64_t index) const override { return dropping(u"decade"[index]); }
};

// Collections without storage of the layer's own.
template <class Me, class Base>
struct Own : Probed<Me, Base> {
  std::uint64_t count() const override { return dropping(items.size()); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return dropping(items.at(index)); }
  std::vector<Strong<NSObject>> items;
};
struct OwnArray : Own<OwnArray, NSArray> {};
struct OwnMutableArray : Own<OwnMutableArray, NSMutableArray> {
  void insertObject(NSObject* object, std::uint64_t index) override {
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(index), object);
    Call::drop();
  }
  void removeObjectAtIndex(std::uint64_t index) override {
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
    Call::drop();
  }
  void replaceObjectAtIndex(std::uint64_t index, NSObject* object) override {
    items.at(index) = object;
    Call::drop();
  }
};
struct OwnOrderedSet : Own<OwnOrderedSet, NSOrderedSet> {};
struct OwnSet : Probed<OwnSet, NSMutableSet> {
  Strong<NSArray> allObjects() const override { return dropping(makeArray(items)); }
  void addObject(NSObject* object) override {
    Call::drop();
    items.emplace_back(object);
  }
  std::vector<Strong<NSObject>> items;
};

struct OwnNumber : Probed<OwnNumber, NSNumber> {
  std::int64_t integerValue() const override { return dropping(std::int64_t{36}); }
};
struct OwnData : Probed<OwnData, NSData> {
  explicit OwnData(NSData* data) : Probed(data->bytes()) {}
  std::span<const std::byte> bytes() const override { return dropping(NSData::bytes()); }
};
struct OwnCharacterSet : Probed<OwnCharacterSet, NSCharacterSet> {
  CharacterSet characterSet() const override { return dropping(CharacterSet("te")); }
};
struct OwnAttributedString : Probed<OwnAttributedString, NSAttributedString> {
  Strong<NSString> string() const override { return dropping(NSAttributedString::string()); }
};
struct OwnDictionary : Probed<OwnDictionary, NSDictionary> {};
struct OwnColour : Probed<OwnColour, UIColor> {
  OwnColour() : Probed(0.25, 0.5) {}
  std::optional<RGBA> getRedGreenBlueAlpha() const override { return dropping(UIColor::getRedGreenBlueAlpha()); }
  const CGColor& cgColor() const override {
    Call::drop();
    return UIColor::cgColor();
  }
};
struct OwnDate : Probed<OwnDate, NSDate> {
  Strong<NSDate> initWithTimeIntervalSince1970(double seconds) override {
    Call::drop();
    return NSDate::initWithTimeIntervalSince1970(seconds);
  }
  double timeIntervalSinceReferenceDate() const override { return dropping(5.0); }
};
struct OwnBundle : Probed<OwnBundle, NSBundle> {
  bool isEqual(const NSObject*) const override { return dropping(true); }
  Strong<NSObject> objectForInfoDictionaryKey(const NSString*) const override {
    return dropping(Strong<NSObject>(s("7")));
  }
};
struct OwnProcess : Probed<OwnProcess, NSProcessInfo> {
  Strong<NSDictionary> environment() const override { return dropping(NSProcessInfo::environment()); }
};
struct Board : Probed<Board, UIResponder> {};
// What a setter replaces: its destructor runs inside the setter.
template <class Base>
struct Replaced : Object<Replaced<Base>, Base> {
  ~Replaced() override { Call::drop(); }
};

template <class T, class Own>
T& Call::collection() {
  OwnString& first = add<OwnString>();
  OwnString& second = add<OwnString>();
  if (!plain_) {
    Own& own = add<Own>();
    own.items = {Strong<NSObject>(&first), Strong<NSObject>(&second)};
    return own;
  }
  NSObject* const items[] = {&first, &second};
  if constexpr (std::is_same_v<T, NSArray>) {
    outside_.emplace_back(makeArray(items));
  } else if constexpr (std::is_same_v<T, NSMutableArray>) {
    outside_.emplace_back(makeMutableArray({&first, &second}));
  } else {
    return add<T>(items);
  }
  return static_cast<T&>(*outside_.back());
}

template <class B, class F>
const B& Call::block(F body) {
  const auto kept = std::make_shared<B>([body, held = Strong<Item>(&add<Item>())](auto... arguments) {
    Call::drop();
    return body(arguments...);
  });
  resets_.emplace_back([kept] { *kept = nullptr; });
  return *kept;
}

constexpr auto yes = [](NSObject*) { return dropping(true); };
constexpr auto same = [](NSObject* object) { return dropping(Strong<NSObject>(object)); };
constexpr auto sum = [](NSObject* object, NSObject*) { return dropping(Strong<NSObject>(object)); };

// The receiver and the arguments of a message, by their types.
struct Given {
  Call& call;

  operator double() const { return 0.5; }
  operator std::int64_t() const { return 1; }
  operator std::uint64_t() const { return 0; }
  operator Class() const { return classOf<NSString>(); }
  operator Selector() const { return selector<"hold_work">; }
  operator const AnyProtocol&() const { return protocolOf<NSCoding>(); }
  operator Strong<NSError>*() const { return nullptr; }
  operator NSObject*() const { return &call.add<Item>(); }
  operator NSAttributedString*() const { return &call.add<OwnAttributedString>(); }
  operator NSBundle*() const { return &call.add<OwnBundle>(); }
  operator NSCharacterSet*() const { return &call.add<OwnCharacterSet>(); }
  operator NSDate*() const { return &call.add<OwnDate>(); }
  operator NSDictionary*() const { return &call.add<OwnDictionary>(); }
  operator NSNumber*() const { return &call.add<OwnNumber>(); }
  operator NSProcessInfo*() const { return &call.add<OwnProcess>(); }
  operator NSString*() const { return &call.add<OwnString>(); }
  operator UIColor*() const { return &call.add<OwnColour>(); }
  operator UIResponder*() const { return &call.add<Board>(); }
  operator NSArray*() const { return &call.collection<NSArray, OwnArray>(); }
  operator NSMutableArray*() const { return &call.collection<NSMutableArray, OwnMutableArray>(); }
  operator NSSet*() const { return &call.collection<NSSet, OwnSet>(); }
  operator NSMutableSet*() const { return &call.collection<NSMutableSet, OwnSet>(); }
  operator NSOrderedSet*() const { return &call.collection<NSOrderedSet, OwnOrderedSet>(); }
  operator NSData*() const {
    return &call.add<OwnData>(NSKeyedArchiver::archivedDataWithRootObject(s("text"), false, nullptr));
  }
  operator NSFastEnumeration*() const {
    OwnArray& classes = call.add<OwnArray>();
    classes.items = {Strong<NSObject>(classOf<NSNumber>()), Strong<NSObject>(classOf<Item>())};
    return &classes;
  }
  operator ElementPredicate() const { return yes; }
  operator ElementTransform() const { return same; }
  operator ElementReducer() const { return sum; }
  operator const AsyncTransform&() const {
    return call.block<AsyncTransform>([](NSObject* element, const AsyncCompletion& done) { done(element); });
  }
  operator const AsyncResult&() const {
    return call.block<AsyncResult>([](NSArray*) {});
  }
  operator const KeyValueObservation::Action&() const {
    return call.block<KeyValueObservation::Action>([](NSObject*, NSObject*, NSDictionary*) {});
  }
};

// By class and selector: sends that message to objects that release themselves and their neighbours.
using Calls = std::map<std::string, void (*)(Call&)>;

template <class Receiver, Text... Names>
void addMessages(Calls& calls) {
  const auto add = [&]<Text Name, class Result, class... Parameters>(Result(*)(Parameters...)) {
    calls[std::string(classOf<Receiver>().name()) + ' ' + std::string(Name.view())] = [](Call& call) {
      const Given given{call};
      (void)send<Name>(static_cast<Receiver*>(given), static_cast<Parameters>(given)...);
    };
  };
  (add.template operator()<Names>(static_cast<typename detail::MessageOf<Receiver, Names>::Type*>(nullptr)), ...);
}
template <class Receiver, Text... Names>
void addClassMessages(Calls& calls) {
  const auto add = [&]<Text Name, class Result, class... Parameters>(Result(*)(Parameters...)) {
    calls['+' + std::string(classOf<Receiver>().name()) + ' ' + std::string(Name.view())] = [](Call& call) {
      const Given given{call};
      (void)send<Name>(classOf<Receiver>(), static_cast<Parameters>(given)...);
    };
  };
  (add.template operator()<Names>(static_cast<typename detail::ClassMessageOf<Receiver, Names>::Type*>(nullptr)), ...);
}

const Calls kCalls = [] {
  Calls calls = {
      {"NSObject h_debounce:delay:",
       [](Call& call) {
         TestClock clock;
         send<"h_debounce:delay:">(call.add<Item>(), selector<"hold_work">, 1);
         clock.advance(2);
       }},
      {"NSObject setH_throttleTimestamps:",
       [](Call& call) {
         Item& item = call.add<Item>();
         send<"setH_throttleTimestamps:">(item, make<Replaced<NSMutableDictionary>>());
         send<"setH_throttleTimestamps:">(item, nullptr);
       }},
      {"UIResponder setKeyValueObservations:",
       [](Call& call) {
         Board& board = call.add<Board>();
         send<"setKeyValueObservations:">(board, make<Replaced<NSArray>>());
         send<"setKeyValueObservations:">(board, nullptr);
       }},
      {"+NSArray arrayByCombiningElementsOfArrays:",
       [](Call& call) {
         NSArray* const array = Given{call};
         (void)send<"arrayByCombiningElementsOfArrays:">(classOf<NSArray>(), nilTerminated(array, array));
       }},
  };
  addMessages<NSObject, "h_throttle:delay:", "ifConformance:", "isAnyKindOfClass:">(calls);
  addMessages<NSProcessInfo, "isExecutingTests">(calls);
  addMessages<UIResponder, "observeModel:forKeyPath:action:", "observeModel:forKeyPaths:action:",
              "observeModel:forKeyPath:options:action:", "observeModel:forKeyPaths:options:action:">(calls);
  addMessages<NSArray, "select:", "reject:", "map:", "compactMap:", "reduce:withBlock:", "firstWhere:",
              "asyncMap:result:", "asyncMapAux:block:currentResult:result:", "hav_randomObject",
              "arrayByRemovingObjectsFromIndex:">(calls);
  addMessages<NSMutableArray, "safeAddObject:", "shuffle",
              "uniqueInsertObject:atPreferredIdx:", "hav_removeObjectsInArray:", "removeObjectsFromIndex:">(calls);
  addMessages<NSSet, "select:", "reject:", "map:", "compactMap:">(calls);
  addMessages<NSMutableSet, "safeAddObject:">(calls);
  addMessages<NSOrderedSet, "select:", "reject:", "map:", "compactMap:">(calls);
  addMessages<NSNumber, "base36Value">(calls);
  addMessages<NSData, "hexString">(calls);
  addMessages<NSString, "base36Value", "base36ValueAsBase10", "entireRange",
              "containsAnyCharactersInSet:", "containsOnlyCharactersInSet:">(calls);
  addMessages<NSAttributedString, "entireRange", "initWithOptionalString:", "initWithOptionalString:attributes:">(
      calls);
  addMessages<NSDate, "initWithMillisecondsSince1970:", "hav_millisecondsSince1970", "hav_isSameMonthAndDayAsToday",
              "hav_isSameMonthAndDayAsDate:", "hav_isAfterDate:", "hav_isBeforeDate:", "hav_dateByAddingDays:",
              "hav_numberOfCalendarDaysToDate:">(calls);
  addMessages<UIColor, "h_hexString", "isEqualToColor:withTolerance:", "isApproximatelyWhiteColor", "inverseColor",
              "blendWithColor:weight:">(calls);
  addMessages<NSBundle, "appVersionString", "appBuildNumberString", "appBuildNumber", "appAndBuildVersionString",
              "havrinAppUserAgentString">(calls);
  addClassMessages<NSObject, "ifInstance:">(calls);
  addClassMessages<NSKeyedUnarchiver, "insecureUnarchivedObjectOfClass:fromData:error:",
                   "insecureUnarchivedObjectOfClasses:fromData:error:">(calls);
  addClassMessages<NSString, "stringByRepeatingString:times:joinedBy:">(calls);
  addClassMessages<NSDate, "hav_numberOfCalendarMinutesBetweenDate:andDate:">(calls);
  addClassMessages<UIColor, "h_colorWithHexString:", "sanitizedWithHexString:">(calls);
  return calls;
}();

// They read an associated value, or take no object.
const std::set<std::string> kRunNoCodeOfTheProgram = {
    "NSObject h_throttleTimestamps",
    "UIResponder keyValueObservations",
    "+NSString friendlyStringWithNumber:",
    "+NSCharacterSet hexadecimalCharacterSet",
    "+NSCharacterSet asciiAlphabetCharacterSet",
    "+NSCharacterSet h_URLSchemeAllowedCharacterSet",
    "+NSCharacterSet validSubhavrinNameCharacterSet",
    "+NSDateFormatter hav_rfc1123Formatter",
    "+NSUUID zero",
    "+UIColor randomColor",
};

// Categories of the layer: tested where they are.
const std::set<std::string_view> kOfTheLayer = {"KeyValueCoding", "KeyValueObserving", "DependentKeys"};

TEST(Holding, EveryMessageKeepsItsReceiverAndArgumentsAlive) {
  std::size_t rows = 0;
  const auto check = [&](const std::string& cls, const MethodRow& row) {
    const std::string name = cls + ' ' + row.selector->name;
    SCOPED_TRACE(name);
    ++rows;
    if (kRunNoCodeOfTheProgram.contains(name)) return;
    const auto found = kCalls.find(name);
    ASSERT_NE(found, kCalls.end()) << "a row that neither kCalls nor kRunNoCodeOfTheProgram has";
    for (const bool plain : {false, true}) {
      SCOPED_TRACE(plain ? "plain collections" : "subclasses");
      Call call(plain);
      found->second(call);
      EXPECT_TRUE(call.dropped || plain) << "the message ran no code of the program";
      call.release();
      EXPECT_EQ(call.destroyed, call.probes) << "objects that the message goes on holding";
    }
  };
  for (const Category* category : kHavrinFoundation.categories) {
    if (kOfTheLayer.contains(category->name)) continue;
    const std::string cls(category->cls()->name());
    for (const MethodRow& row : category->rows) check(cls, row);
    for (const MethodRow& row : category->classRows) check('+' + cls, row);
  }
  EXPECT_EQ(rows, kCalls.size() + kRunNoCodeOfTheProgram.size()) << "the lists have rows that the image has not";
}

// Each allocation of each row fails once, the first time and when the library has what it keeps for good.
TEST(Holding, NoMessageLeaksWhenAnAllocationFails) {
  for (const auto& [name, send] : kCalls) {
    SCOPED_TRACE(name);
    {
      Call objects(true, false);
      send(objects);
    }
    bool failed = true;
    for (int at = 0; failed; ++at) {
      SCOPED_TRACE("allocation " + std::to_string(at));
      const auto run = [&, &call = send] {
        Call objects(true, false);
        allocations::failAt(at);
        try {
          call(objects);
        } catch (const std::bad_alloc&) {
        } catch (const NSException&) {  // in a method that reports it as an argument too long for memory
        }
        failed = allocations::disarm();
        objects.release();
        EXPECT_EQ(objects.destroyed, objects.probes);
      };
      // What the library makes once and keeps comes in some of the runs; a leak comes in all of them.
      bool steady = false;
      for (int runs = 0; runs < 300 && !steady; ++runs) {
        const std::int64_t before = allocations::living();
        run();
        steady = allocations::living() == before;
      }
      EXPECT_TRUE(steady);
    }
  }
}

struct Twice : Object<Twice, NSObject> {
  void run(const Block<void()>& action) {
    action();
    action();
  }
  using Members = List<HeldMethod<"run:", &Twice::run>>;
};

TEST(Holding, ABlockOutlivesTheVariableThatTheCallerPassed) {
  int runs = 0;
  Block<void()> action;
  action = [&] {
    ++runs;
    action = nullptr;
  };
  send<"run:">(make<Twice>(), action);
  EXPECT_EQ(runs, 2);
}

}  // namespace
