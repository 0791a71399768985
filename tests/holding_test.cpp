// SPDX-License-Identifier: Apache-2.0
// Receiver and arguments outlive a message, whatever code of the program it runs. Every row of the library's image is
// called with objects whose last outside reference goes while the row works with them: their overrides, the blocks and
// the destructors that the row runs release what the test holds.
// Length: one table with a row for each method of the library.
#include "allocations.h"
#include "objects.h"
#include <HavrinFoundation/HavrinFoundation.h>
#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/testkit/test_clock.h>

#include <map>

using namespace havrin;

namespace {
class Twice;
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

// An element of a collection, and the receiver of what every object answers.
class Item : public Object<Item, NSObject> {
 public:
  bool isEqual(const NSObject* other) const override { return dropping(this == other); }
  std::uint64_t hash() const override { return dropping(1U); }
  bool isKindOfClass(Class cls) const override { return dropping(NSObject::isKindOfClass(cls)); }
  bool conformsToProtocol(const AnyProtocol&) const override { return dropping(true); }
  bool respondsToSelector(Selector) const override { return dropping(true); }
  void work() {}
  using Members = List<Method<"hold_work", &Item::work>>;
  Probe probe;
};

// Collections without storage of the layer's own.
template <class Me, class Base>
class Own : public Object<Me, Base> {
 public:
  std::uint64_t count() const override { return dropping(items.size()); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return dropping(items.at(index)); }
  std::vector<Strong<NSObject>> items;
  Probe probe;
};
class OwnArray : public Own<OwnArray, NSArray> {};
class OwnMutableArray : public Own<OwnMutableArray, NSMutableArray> {
 public:
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
class OwnOrderedSet : public Own<OwnOrderedSet, NSOrderedSet> {};
class OwnSet : public Object<OwnSet, NSMutableSet> {
 public:
  Strong<NSSet> initWithSet(const NSSet* set) override { return dropping(NSMutableSet::initWithSet(set)); }
  std::uint64_t count() const override { return dropping(items.size()); }
  Strong<NSObject> member(const NSObject*) const override { return dropping(items.empty() ? nullptr : items[0]); }
  Strong<NSArray> allObjects() const override { return dropping(makeArray(items)); }
  void addObject(NSObject* object) override {
    Call::drop();
    items.emplace_back(object);
  }
  std::vector<Strong<NSObject>> items;
  Probe probe;
};

class OwnString : public Object<OwnString, NSString> {
 public:
  explicit OwnString(std::u16string text = u"title") : text_(std::move(text)) {}
  std::uint64_t length() const override { return dropping(text_.size()); }
  char16_t characterAtIndex(std::uint64_t index) const override { return dropping(text_.at(index)); }
  Probe probe;

 private:
  std::u16string text_;
};
class OwnNumber : public Object<OwnNumber, NSNumber> {
 public:
  std::int64_t integerValue() const override { return dropping(std::int64_t{36}); }
  Probe probe;
};
class OwnData : public Object<OwnData, NSData> {
 public:
  explicit OwnData(NSData* data) : Object(data->bytes()) {}
  std::span<const std::byte> bytes() const override { return dropping(NSData::bytes()); }
  Probe probe;
};
class OwnCharacterSet : public Object<OwnCharacterSet, NSCharacterSet> {
 public:
  CharacterSet characterSet() const override { return dropping(CharacterSet("te")); }
  Probe probe;
};
class OwnAttributedString : public Object<OwnAttributedString, NSAttributedString> {
 public:
  Strong<NSString> string() const override { return dropping(NSAttributedString::string()); }
  Strong<NSAttributedString> initWithString(NSString* text) override {
    Call::drop();
    return NSAttributedString::initWithString(text);
  }
  Strong<NSAttributedString> initWithStringAttributes(NSString* text, NSDictionary* attributes) override {
    Call::drop();
    return NSAttributedString::initWithStringAttributes(text, attributes);
  }
  Probe probe;
};
class OwnDictionary : public Object<OwnDictionary, NSDictionary> {
 public:
  OwnDictionary() : Object(std::initializer_list<KeyAndValue>{{s("key"), s("value")}}) {}
  std::uint64_t count() const override { return dropping(NSDictionary::count()); }
  Strong<NSObject> objectForKey(const NSObject* key) const override {
    return dropping(NSDictionary::objectForKey(key));
  }
  Strong<NSArray> allKeys() const override { return dropping(NSDictionary::allKeys()); }
  Strong<NSObject> copy() const override { return dropping(NSDictionary::copy()); }
  Probe probe;
};
class OwnColour : public Object<OwnColour, UIColor> {
 public:
  OwnColour() : Object(0.25, 0.5) {}
  std::optional<RGBA> getRedGreenBlueAlpha() const override { return dropping(UIColor::getRedGreenBlueAlpha()); }
  const CGColor& cgColor() const override {
    Call::drop();
    return UIColor::cgColor();
  }
  Probe probe;
};
class OwnDate : public Object<OwnDate, NSDate> {
 public:
  Strong<NSDate> initWithTimeIntervalSince1970(double seconds) override {
    Call::drop();
    return NSDate::initWithTimeIntervalSince1970(seconds);
  }
  double timeIntervalSinceReferenceDate() const override { return dropping(5.0); }
  Probe probe;
};
class OwnBundle : public Object<OwnBundle, NSBundle> {
 public:
  bool isEqual(const NSObject*) const override { return dropping(true); }
  Strong<NSObject> objectForInfoDictionaryKey(const NSString*) const override {
    return dropping(Strong<NSObject>(s("7")));
  }
  Probe probe;
};
class OwnProcess : public Object<OwnProcess, NSProcessInfo> {
 public:
  Strong<NSDictionary> environment() const override { return dropping(NSProcessInfo::environment()); }
  Probe probe;
};
// Observed and observing.
class Model : public Object<Model, NSObject> {
 public:
  void addObserver(NSObject* observer, NSString* path, std::uint64_t options, void* context) override {
    Call::drop();
    NSObject::addObserver(observer, path, options, context);
  }
  Strong<NSString> title;
  Probe probe;
  using Members = List<Property<"title", &Model::title>>;
};
class Board : public Object<Board, UIResponder> {
 public:
  Probe probe;
};
// What a setter replaces: its destructor runs inside the setter.
template <class Base>
class Replaced : public Object<Replaced<Base>, Base> {
 public:
  ~Replaced() override { Call::drop(); }
};

template <class T, class Own>
T& Call::collection() {
  Item& first = add<Item>();
  Item& second = add<Item>();
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

NSArray& array(Call& call) { return call.collection<NSArray, OwnArray>(); }
NSMutableArray& mutableArray(Call& call) { return call.collection<NSMutableArray, OwnMutableArray>(); }
NSSet& set(Call& call) { return call.collection<NSSet, OwnSet>(); }
NSMutableSet& mutableSet(Call& call) { return call.collection<NSMutableSet, OwnSet>(); }
NSOrderedSet& orderedSet(Call& call) { return call.collection<NSOrderedSet, OwnOrderedSet>(); }

bool yes(NSObject*) { return dropping(true); }
Strong<NSObject> same(NSObject* object) { return dropping(Strong<NSObject>(object)); }

const AsyncTransform& transform(Call& call) {
  return call.block<AsyncTransform>([](NSObject* element, const AsyncCompletion& done) { done(element); });
}
const AsyncResult& result(Call& call) {
  return call.block<AsyncResult>([](NSArray*) {});
}
void act(NSObject*, NSObject*, NSDictionary*) { Call::drop(); }
OwnArray& keyPaths(Call& call) {
  OwnArray& paths = call.add<OwnArray>();
  paths.items.emplace_back(&call.add<OwnString>());
  return paths;
}
OwnArray& classes(Call& call) {
  OwnArray& list = call.add<OwnArray>();
  list.items = {Strong<NSObject>(classOf<NSNumber>()), Strong<NSObject>(classOf<Item>())};
  return list;
}
OwnData& archive(Call& call) {
  return call.add<OwnData>(NSKeyedArchiver::archivedDataWithRootObject(s("text"), false, nullptr));
}

// A message to objects that drop themselves and their neighbours, for the row of each class and selector.
const std::map<std::string, void (*)(Call&)> kCalls = {
    {"NSProcessInfo isExecutingTests", [](Call& c) { (void)send<"isExecutingTests">(c.add<OwnProcess>()); }},
    {"NSObject h_debounce:delay:",
     [](Call& c) {
       TestClock clock;
       send<"h_debounce:delay:">(c.add<Item>(), selector<"hold_work">, 1);
       clock.advance(2);
     }},
    {"NSObject h_throttle:delay:", [](Call& c) { send<"h_throttle:delay:">(c.add<Item>(), selector<"hold_work">, 1); }},
    {"NSObject setH_throttleTimestamps:",
     [](Call& c) {
       Item& item = c.add<Item>();
       send<"setH_throttleTimestamps:">(item, make<Replaced<NSMutableDictionary>>());
       send<"setH_throttleTimestamps:">(item, nullptr);
     }},
    {"UIResponder observeModel:forKeyPath:action:",
     [](Call& c) {
       send<"observeModel:forKeyPath:action:">(c.add<Board>(), &c.add<Model>(), &c.add<OwnString>(), act);
     }},
    {"UIResponder observeModel:forKeyPaths:action:",
     [](Call& c) { send<"observeModel:forKeyPaths:action:">(c.add<Board>(), &c.add<Model>(), &keyPaths(c), act); }},
    {"UIResponder observeModel:forKeyPath:options:action:",
     [](Call& c) {
       send<"observeModel:forKeyPath:options:action:">(c.add<Board>(), &c.add<Model>(), &c.add<OwnString>(), 0, act);
     }},
    {"UIResponder observeModel:forKeyPaths:options:action:",
     [](Call& c) {
       send<"observeModel:forKeyPaths:options:action:">(c.add<Board>(), &c.add<Model>(), &keyPaths(c), 0, act);
     }},
    {"UIResponder setKeyValueObservations:",
     [](Call& c) {
       Board& board = c.add<Board>();
       send<"setKeyValueObservations:">(board, make<Replaced<NSArray>>());
       send<"setKeyValueObservations:">(board, nullptr);
     }},
    {"NSArray select:", [](Call& c) { (void)send<"select:">(array(c), yes); }},
    {"NSArray reject:", [](Call& c) { (void)send<"reject:">(array(c), yes); }},
    {"NSArray map:", [](Call& c) { (void)send<"map:">(array(c), same); }},
    {"NSArray asyncMap:result:", [](Call& c) { send<"asyncMap:result:">(array(c), transform(c), result(c)); }},
    {"NSArray asyncMapAux:block:currentResult:result:",
     [](Call& c) { send<"asyncMapAux:block:currentResult:result:">(array(c), 0, transform(c), &array(c), result(c)); }},
    {"NSArray compactMap:", [](Call& c) { (void)send<"compactMap:">(array(c), same); }},
    {"NSArray reduce:withBlock:",
     [](Call& c) {
       (void)send<"reduce:withBlock:">(array(c), &c.add<Item>(), [](NSObject* sum, NSObject*) { return same(sum); });
     }},
    {"NSArray firstWhere:", [](Call& c) { (void)send<"firstWhere:">(array(c), yes); }},
    {"NSSet select:", [](Call& c) { (void)send<"select:">(set(c), yes); }},
    {"NSSet reject:", [](Call& c) { (void)send<"reject:">(set(c), yes); }},
    {"NSSet map:", [](Call& c) { (void)send<"map:">(set(c), same); }},
    {"NSSet compactMap:", [](Call& c) { (void)send<"compactMap:">(set(c), same); }},
    {"NSOrderedSet select:", [](Call& c) { (void)send<"select:">(orderedSet(c), yes); }},
    {"NSOrderedSet reject:", [](Call& c) { (void)send<"reject:">(orderedSet(c), yes); }},
    {"NSOrderedSet map:", [](Call& c) { (void)send<"map:">(orderedSet(c), same); }},
    {"NSOrderedSet compactMap:", [](Call& c) { (void)send<"compactMap:">(orderedSet(c), same); }},
    {"NSArray hav_randomObject", [](Call& c) { (void)send<"hav_randomObject">(array(c)); }},
    {"NSArray arrayByRemovingObjectsFromIndex:",
     [](Call& c) { (void)send<"arrayByRemovingObjectsFromIndex:">(array(c), 1); }},
    {"+NSArray arrayByCombiningElementsOfArrays:",
     [](Call& c) {
       (void)send<"arrayByCombiningElementsOfArrays:">(classOf<NSArray>(), nilTerminated(&array(c), &array(c)));
     }},
    {"NSMutableSet safeAddObject:", [](Call& c) { send<"safeAddObject:">(mutableSet(c), &c.add<Item>()); }},
    {"NSMutableArray safeAddObject:", [](Call& c) { send<"safeAddObject:">(mutableArray(c), &c.add<Item>()); }},
    {"NSMutableArray shuffle", [](Call& c) { send<"shuffle">(mutableArray(c)); }},
    {"NSMutableArray uniqueInsertObject:atPreferredIdx:",
     [](Call& c) { (void)send<"uniqueInsertObject:atPreferredIdx:">(mutableArray(c), &c.add<Item>(), 0); }},
    {"NSMutableArray hav_removeObjectsInArray:",
     [](Call& c) { (void)send<"hav_removeObjectsInArray:">(mutableArray(c), &array(c)); }},
    {"NSMutableArray removeObjectsFromIndex:",
     [](Call& c) { (void)send<"removeObjectsFromIndex:">(mutableArray(c), 1); }},
    {"NSObject ifConformance:", [](Call& c) { (void)send<"ifConformance:">(c.add<Item>(), protocolOf<NSCoding>()); }},
    {"NSObject isAnyKindOfClass:", [](Call& c) { (void)send<"isAnyKindOfClass:">(c.add<Item>(), &classes(c)); }},
    {"+NSObject ifInstance:", [](Call& c) { (void)send<"ifInstance:">(classOf<Item>(), &c.add<Item>()); }},
    {"+NSKeyedUnarchiver insecureUnarchivedObjectOfClass:fromData:error:",
     [](Call& c) {
       (void)send<"insecureUnarchivedObjectOfClass:fromData:error:">(classOf<NSKeyedUnarchiver>(), classOf<NSString>(),
                                                                     &archive(c), nullptr);
     }},
    {"+NSKeyedUnarchiver insecureUnarchivedObjectOfClasses:fromData:error:",
     [](Call& c) {
       (void)send<"insecureUnarchivedObjectOfClasses:fromData:error:">(classOf<NSKeyedUnarchiver>(), &set(c),
                                                                       &archive(c), nullptr);
     }},
    {"NSNumber base36Value", [](Call& c) { (void)send<"base36Value">(c.add<OwnNumber>()); }},
    {"NSString base36Value", [](Call& c) { (void)send<"base36Value">(c.add<OwnString>()); }},
    {"NSString base36ValueAsBase10", [](Call& c) { (void)send<"base36ValueAsBase10">(c.add<OwnString>()); }},
    {"NSData hexString", [](Call& c) { (void)send<"hexString">(archive(c)); }},
    {"NSString entireRange", [](Call& c) { (void)send<"entireRange">(c.add<OwnString>()); }},
    {"NSString containsAnyCharactersInSet:",
     [](Call& c) { (void)send<"containsAnyCharactersInSet:">(c.add<OwnString>(), &c.add<OwnCharacterSet>()); }},
    {"NSString containsOnlyCharactersInSet:",
     [](Call& c) { (void)send<"containsOnlyCharactersInSet:">(c.add<OwnString>(), &c.add<OwnCharacterSet>()); }},
    {"+NSString stringByRepeatingString:times:joinedBy:",
     [](Call& c) {
       (void)send<"stringByRepeatingString:times:joinedBy:">(classOf<NSString>(), &c.add<OwnString>(), 3,
                                                             &c.add<OwnString>());
     }},
    {"NSAttributedString entireRange", [](Call& c) { (void)send<"entireRange">(c.add<OwnAttributedString>()); }},
    {"NSAttributedString initWithOptionalString:",
     [](Call& c) { (void)send<"initWithOptionalString:">(c.add<OwnAttributedString>(), &c.add<OwnString>()); }},
    {"NSAttributedString initWithOptionalString:attributes:",
     [](Call& c) {
       (void)send<"initWithOptionalString:attributes:">(c.add<OwnAttributedString>(), &c.add<OwnString>(),
                                                        &c.add<OwnDictionary>());
     }},
    {"NSDate initWithMillisecondsSince1970:",
     [](Call& c) { (void)send<"initWithMillisecondsSince1970:">(c.add<OwnDate>(), 1); }},
    {"NSDate hav_millisecondsSince1970", [](Call& c) { (void)send<"hav_millisecondsSince1970">(c.add<OwnDate>()); }},
    {"NSDate hav_isSameMonthAndDayAsToday",
     [](Call& c) { (void)send<"hav_isSameMonthAndDayAsToday">(c.add<OwnDate>()); }},
    {"NSDate hav_isSameMonthAndDayAsDate:",
     [](Call& c) { (void)send<"hav_isSameMonthAndDayAsDate:">(c.add<OwnDate>(), &c.add<OwnDate>()); }},
    {"NSDate hav_isAfterDate:", [](Call& c) { (void)send<"hav_isAfterDate:">(c.add<OwnDate>(), &c.add<OwnDate>()); }},
    {"NSDate hav_isBeforeDate:", [](Call& c) { (void)send<"hav_isBeforeDate:">(c.add<OwnDate>(), &c.add<OwnDate>()); }},
    {"NSDate hav_dateByAddingDays:", [](Call& c) { (void)send<"hav_dateByAddingDays:">(c.add<OwnDate>(), 1); }},
    {"NSDate hav_numberOfCalendarDaysToDate:",
     [](Call& c) { (void)send<"hav_numberOfCalendarDaysToDate:">(c.add<OwnDate>(), &c.add<OwnDate>()); }},
    {"+NSDate hav_numberOfCalendarMinutesBetweenDate:andDate:",
     [](Call& c) {
       (void)send<"hav_numberOfCalendarMinutesBetweenDate:andDate:">(classOf<NSDate>(), &c.add<OwnDate>(),
                                                                     &c.add<OwnDate>());
     }},
    {"UIColor h_hexString", [](Call& c) { (void)send<"h_hexString">(c.add<OwnColour>()); }},
    {"+UIColor h_colorWithHexString:",
     [](Call& c) { (void)send<"h_colorWithHexString:">(classOf<UIColor>(), &c.add<OwnString>(u"#ff8800")); }},
    {"+UIColor sanitizedWithHexString:",
     [](Call& c) { (void)send<"sanitizedWithHexString:">(classOf<UIColor>(), &c.add<OwnString>(u"#ff8800")); }},
    {"UIColor isEqualToColor:withTolerance:",
     [](Call& c) { (void)send<"isEqualToColor:withTolerance:">(c.add<OwnColour>(), &c.add<OwnColour>(), 0.1); }},
    {"UIColor isApproximatelyWhiteColor", [](Call& c) { (void)send<"isApproximatelyWhiteColor">(c.add<OwnColour>()); }},
    {"UIColor inverseColor", [](Call& c) { (void)send<"inverseColor">(c.add<OwnColour>()); }},
    {"UIColor blendWithColor:weight:",
     [](Call& c) { (void)send<"blendWithColor:weight:">(c.add<OwnColour>(), &c.add<OwnColour>(), 0.5); }},
    {"NSBundle appVersionString", [](Call& c) { (void)send<"appVersionString">(c.add<OwnBundle>()); }},
    {"NSBundle appBuildNumberString", [](Call& c) { (void)send<"appBuildNumberString">(c.add<OwnBundle>()); }},
    {"NSBundle appBuildNumber", [](Call& c) { (void)send<"appBuildNumber">(c.add<OwnBundle>()); }},
    {"NSBundle appAndBuildVersionString", [](Call& c) { (void)send<"appAndBuildVersionString">(c.add<OwnBundle>()); }},
    {"NSBundle havrinAppUserAgentString", [](Call& c) { (void)send<"havrinAppUserAgentString">(c.add<OwnBundle>()); }},
};

constexpr const char* kReads = "reads an associated value and returns it held";
constexpr const char* kNoObject = "takes no object, and neither does what it calls";
const std::map<std::string, const char*> kRunNoCodeOfTheProgram = {
    {"NSObject h_throttleTimestamps", kReads},
    {"UIResponder keyValueObservations", kReads},
    {"+NSString friendlyStringWithNumber:", kNoObject},
    {"+NSCharacterSet hexadecimalCharacterSet", kNoObject},
    {"+NSCharacterSet asciiAlphabetCharacterSet", kNoObject},
    {"+NSCharacterSet h_URLSchemeAllowedCharacterSet", kNoObject},
    {"+NSCharacterSet validSubhavrinNameCharacterSet", kNoObject},
    {"+NSDateFormatter hav_rfc1123Formatter", kNoObject},
    {"+NSUUID zero", kNoObject},
    {"+UIColor randomColor", kNoObject},
};

TEST(Holding, KeepsReceiverAndArgumentsOfEveryRowForTheCall) {
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
    const std::string cls(category->cls()->name());
    for (const MethodRow& row : category->rows) check(cls, row);
    for (const MethodRow& row : category->classRows) check('+' + cls, row);
  }
  EXPECT_EQ(rows, kCalls.size() + kRunNoCodeOfTheProgram.size()) << "the lists have rows that the image has not";
}

// Each allocation of each row fails once, the first time and when the library has what it keeps for good.
TEST(Holding, LeaksNothingWhenAnAllocationFails) {
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

class Twice : public Object<Twice, NSObject> {
 public:
  void run(const Block<void()>& action) {
    action();
    action();
  }
  using Members = List<HeldMethod<"run:", &Twice::run>>;
};

TEST(Holding, GivesTheMethodABlockThatTheCallersVariableNoLongerHolds) {
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
