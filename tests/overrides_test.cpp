// SPDX-License-Identifier: Apache-2.0
// Overrides that go on to the method they override: one for every message that the library itself sends.
#include "objects.h"
#include <HavrinFoundation/HavrinFoundation.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/testkit/main_bundle.h>

using namespace havrin;

namespace {

// The selectors of the overrides that ran, each once, in the order in which they first did.
std::vector<std::string> ran;
void note(std::string_view selector) {
  if (std::find(ran.begin(), ran.end(), selector) == ran.end()) ran.emplace_back(selector);
}

// Overrides the messages S of Base with methods that go on to the inherited ones.
template <class Me, class Base, Text... S>
class Onward : public Object<Me, Base> {
  template <Text One, class F>
  struct Override;
  template <Text One, class R, class... A>
  struct Override<One, R(A...)> {
    using Row = Method<One, &Onward::template goOn<One, R, A...>>;
  };

 public:
  using Object<Me, Base>::Object;
  template <Text One, class R, class... A>
  R goOn(A... arguments) {
    note(One.view());
    return sendSuper<One>(static_cast<Me&>(*this), std::forward<A>(arguments)...);
  }
  using Members = List<typename Override<S, typename detail::MessageOf<Base, S>::Type>::Row...>;
};
// The same for messages to the class.
template <class Me, class Base, Text... S>
class ClassOnward : public Object<Me, Base> {
  template <Text One, class F>
  struct Override;
  template <Text One, class R, class... A>
  struct Override<One, R(A...)> {
    using Row = ClassMethod<One, &ClassOnward::template goOn<One, R, A...>>;
  };

 public:
  template <Text One, class R, class... A>
  static R goOn(ClassOf<Me> self, A... arguments) {
    note(One.view());
    return sendSuper<One>(self, std::forward<A>(arguments)...);
  }
  using ClassMembers = List<typename Override<S, typename detail::ClassMessageOf<Base, S>::Type>::Row...>;
};

class MyArray : public Onward<MyArray, NSMutableArray, "select:", "reject:", "map:", "compactMap:",
                              "asyncMapAux:block:currentResult:result:", "removeObjectsFromIndex:"> {
 public:
  std::uint64_t count() const override { return items.size(); }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return items.at(index); }
  void insertObject(NSObject* object, std::uint64_t index) override {
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(index), object);
  }
  void removeObjectAtIndex(std::uint64_t index) override {
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
  }
  Strong<NSObject> mutableCopy() const override { return Strong<NSObject>(const_cast<MyArray*>(this)); }
  std::vector<Strong<NSObject>> items{s("a"), s("b")};
};
class MySet : public ClassOnward<MySet, NSSet, "setWithSet:"> {
 public:
  Strong<NSArray> allObjects() const override { return make<MyArray>(); }
};
class MyOrderedSet : public ClassOnward<MyOrderedSet, NSOrderedSet, "orderedSetWithArray:"> {
 public:
  Strong<NSArray> array() const override { return make<MyArray>(); }
};
class MyString : public Onward<MyString, NSString, "containsAnyCharactersInSet:"> {};
class MyText
    : public Onward<MyText, NSAttributedString, "initWithOptionalString:", "initWithOptionalString:attributes:"> {};
class MyColour : public Onward<MyColour, UIColor, "isEqualToColor:withTolerance:"> {};
class MyDate : public Onward<MyDate, NSDate, "initWithMillisecondsSince1970:"> {};
class MyBundle : public Onward<MyBundle, NSBundle, "appVersionString", "appBuildNumberString"> {
 public:
  Strong<NSObject> objectForInfoDictionaryKey(const NSString*) const override { return s("7"); }
};
class Searcher : public Onward<Searcher, NSObject, "h_throttleTimestamps", "setH_throttleTimestamps:"> {};
class Board : public Onward<Board, UIResponder, "observeModel:forKeyPaths:options:action:", "keyValueObservations",
                            "setKeyValueObservations:"> {};
class Token : public Onward<Token, KeyValueObservation, "initWithObserver:object:keyPaths:options:action:",
                            "setObserver:", "setObject:", "setKeyPaths:", "setOptions:", "setAction:", "action",
                            "observeValueForKeyPath:ofObject:change:context:", "debugDescription"> {};

class Model : public ClassOnward<Model, NSObject,
                                 "automaticallyNotifiesObserversForKey:", "keyPathsForValuesAffectingValueForKey:"> {
  Strong<NSString> title_;

 public:
  using Members = List<Property<"title", &Model::title_>>;
};

class Note : public Object<Note, NSObject> {
 public:
  Strong<NSString> text;
  void encode(NSCoder* coder) { coder->encodeObject(text, "text"); }
  Strong<NSObject> decode(NSCoder* coder) {
    text = cast<NSString>(coder->decodeObjectOfClass(classOf<NSString>(), "text").get());
    return Strong<NSObject>(this);
  }
  Strong<NSObject> awake(NSCoder*) { return Strong<NSObject>(this); }
  using Protocols = List<NSCoding>;
  using Members = List<Method<"encodeWithCoder:", &Note::encode>, Method<"initWithCoder:", &Note::decode>,
                       Method<"awakeAfterUsingCoder:", &Note::awake>>;
};
class MyNote : public Onward<MyNote, Note, "encodeWithCoder:", "initWithCoder:", "awakeAfterUsingCoder:"> {};
const ArchivedClass<MyNote> kArchivedMyNote("MyNote");

std::string flag(bool value) { return value ? "yes" : "no"; }

}  // namespace

TEST(Overrides, GoOnToTheInheritedMethodOfEveryMessageThatTheLibrarySends) {
  const auto isB = [](NSString& letter) { return utf8(letter) == "b"; };
  const auto same = [](NSObject* object) { return Strong<NSObject>(object); };
  const struct {
    const char* overrides;
    std::function<std::string()> run;
    const char* result;
  } rows[] = {
      {"reject: select:", [&] { return text(send<"reject:">(make<MyArray>(), isB)); }, "(a)"},
      {"removeObjectsFromIndex:", [] { return text(send<"arrayByRemovingObjectsFromIndex:">(make<MyArray>(), 1)); },
       "(a)"},
      {"asyncMapAux:block:currentResult:result:",
       [] {
         std::string result;
         send<"asyncMap:result:">(
             make<MyArray>(), [](NSObject* element, const AsyncCompletion& done) { done(element); },
             [&](NSArray* values) { result = text(values); });
         return result;
       },
       "(a, b)"},
      {"map:", [&] { return text(send<"map:">(make<MySet>(), same)); }, "(a, b)"},
      {"compactMap:", [&] { return text(send<"compactMap:">(make<MySet>(), same)); }, "(a, b)"},
      {"setWithSet:",
       [&] {
         const Strong<MySet> passing = send<"select:">(make<MySet>(), isB);
         return flag(isKind<MySet>(passing));
       },
       "yes"},
      {"select: orderedSetWithArray:",
       [&] { return std::to_string(send<"select:">(make<MyOrderedSet>(), isB)->count()); }, "1"},
      {"containsAnyCharactersInSet:",
       [] { return flag(send<"containsOnlyCharactersInSet:">(make<MyString>(), makeCharacterSet(CharacterSet("a")))); },
       "yes"},
      {"initWithOptionalString:", [] { return text(fromOptionalString<MyText>("x")); }, "x{}"},
      {"initWithOptionalString:attributes:", [] { return text(fromOptionalString<MyText>("x", nullptr)); }, "x{}"},
      {"isEqualToColor:withTolerance:", [] { return flag(isApproximatelyWhite(*make<MyColour>())); }, "no"},
      {"initWithMillisecondsSince1970:",
       [] { return std::to_string(millisecondsSince1970(*fromMillisecondsSince1970<MyDate>(3000))); }, "3000"},
      {"appVersionString appBuildNumberString",
       [] {
         const auto bundle = make<MyBundle>();
         const TestMainBundle main(bundle.get());
         return appAndBuildVersionString(*bundle);
       },
       "7.7"},
      {"h_throttleTimestamps setH_throttleTimestamps:",
       [] {
         const auto field = make<Searcher>();
         send<"h_throttle:delay:">(field, selector<"h_throttleTimestamps">, 1);
         return std::to_string(send<"h_throttleTimestamps">(field)->count());
       },
       "1"},
      {"observeModel:forKeyPaths:options:action: automaticallyNotifiesObserversForKey: "
       "keyPathsForValuesAffectingValueForKey: keyValueObservations setKeyValueObservations:",
       [] {
         const auto model = make<Model>();
         const auto board = make<Board>();
         int calls = 0;
         send<"observeModel:forKeyPath:action:">(board, model, s("title"),
                                                 [&](NSObject*, NSObject*, NSDictionary*) { ++calls; });
         send<"setTitle:">(model, s("x"));
         return std::to_string(calls);
       },
       "2"},
      {"initWithObserver:object:keyPaths:options:action: setObserver: setObject: setKeyPaths: setOptions: setAction: "
       "observeValueForKeyPath:ofObject:change:context: action debugDescription",
       [] {
         const auto model = make<Model>();
         std::string calls;
         const auto token = alloc<Token>();
         const Strong<Token> made = send<"initWithObserver:object:keyPaths:options:action:">(
             token, model, model, makeArray({s("title")}), KeyValueObservationOptionSkipInitial,
             [&](NSObject*, NSObject*, NSDictionary* change) {
               calls += text(change->objectForKey(NSKeyValueChangeNewKey));
             });
         send<"setTitle:">(model, s("x"));
         static_cast<NSObject&>(*made).observeValueForKeyPath(s("title"), model, make<NSDictionary>(),
                                                              kKeyValueObservationContext);
         return calls + flag(utf8(*made->debugDescription()).find("keypaths: [title]") != std::string::npos);
       },
       "xnilyes"},
      {"encodeWithCoder: initWithCoder: awakeAfterUsingCoder:",
       [] {
         const auto note = make<MyNote>();
         note->text = s("x");
         const auto data = NSKeyedArchiver::archivedDataWithRootObject(note, false, nullptr);
         const auto back = send<"insecureUnarchivedObjectOfClass:fromData:error:">(classOf<NSKeyedUnarchiver>(),
                                                                                   classOf<MyNote>(), data, nullptr);
         return text(cast<MyNote>(back.get())->text);
       },
       "x"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.overrides);
    ran.clear();
    EXPECT_EQ(row.run(), row.result);
    std::string all;
    for (const std::string& one : ran) all += (all.empty() ? "" : " ") + one;
    EXPECT_EQ(all, row.overrides);
  }
}
