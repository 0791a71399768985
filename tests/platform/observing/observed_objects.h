// SPDX-License-Identifier: Apache-2.0
// What the tests of key-value observing watch, and with what.
#pragma once

#include "../../objects.h"
#include <HavrinFoundation/platform/observing/key_value_coding.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

namespace havrin_test {

using namespace havrin;

inline constexpr std::uint64_t kNew = NSKeyValueObservingOptionNew;
inline constexpr std::uint64_t kOld = NSKeyValueObservingOptionOld;
inline constexpr std::uint64_t kBoth = kNew | kOld;
inline constexpr std::uint64_t kInitial = NSKeyValueObservingOptionInitial;
inline constexpr std::uint64_t kPrior = NSKeyValueObservingOptionPrior;

inline std::string shown(NSObject* object) {
  if (!object) return "-";
  return object == NSNull::null() ? "null" : utf8(*object->description());
}

/// What a change holds, in one line: "listeners 1 0>3".
inline std::string shown(NSString* path, const NSDictionary* change) {
  const auto entry = [change](NSString* key) { return shown(change->objectForKey(key)); };
  std::string line = shown(path) + " " + entry(NSKeyValueChangeKindKey) + " " + entry(NSKeyValueChangeOldKey) + ">" +
                     entry(NSKeyValueChangeNewKey);
  if (const Strong<NSIndexSet> at = cast<NSIndexSet>(change->objectForKey(NSKeyValueChangeIndexesKey))) {
    line += " at " + std::to_string(at->firstIndex());
  }
  return line + (change->objectForKey(NSKeyValueChangeNotificationIsPriorKey) ? " prior" : "");
}

inline void addObserver(NSObject* object, NSObject* observer, std::string_view path, std::uint64_t options = kBoth,
                        void* context = nullptr) {
  send<"addObserver:forKeyPath:options:context:">(object, observer, s(path), options, context);
}
inline void removeObserver(NSObject* object, NSObject* observer, std::string_view path) {
  send<"removeObserver:forKeyPath:">(object, observer, s(path));
}

class Host : public Object<Host, NSObject> {
  Strong<NSString> name_;
  Strong<Host> deputy_;

 public:
  static inline int destroyed = 0;
  ~Host() override { ++destroyed; }
  using Members = List<Property<"name", &Host::name_>, Property<"deputy", &Host::deputy_>>;
};

inline Strong<Host> host(const char* name) {
  auto host = make<Host>();
  send<"setName:">(host, s(name));
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

  /// True when nobody is registered with the object.
  [[nodiscard]] bool isUnobserved() const { return !dispatchClass(this)->isNotifying(); }
  std::int64_t handValue() { return hand; }
  void setHand(std::int64_t value) { hand = value; }
  std::int64_t quietValue() { return quiet; }
  void setQuiet(std::int64_t value) {
    if (value == quiet) return;
    send<"willChangeValueForKey:">(*this, keyPath<Station, "quiet">);
    quiet = value;
    send<"didChangeValueForKey:">(*this, keyPath<Station, "quiet">);
  }
  void refuse(NSString*) { throw NSException(NSGenericException, "refused"); }
  Strong<NSString> refused() { return nullptr; }
  Strong<NSString> banner() {
    return makeString(shown(title_) + "/" + shown(host_ ? send<"name">(host_) : Strong<NSString>()));
  }
  Strong<NSString> longBanner() { return makeString("<" + utf8(*banner()) + ">"); }
  static Strong<NSSet> bannerNeeds(ClassOf<Station>) { return makeSet({s("title"), s("host.name")}); }
  static Strong<NSSet> longBannerNeeds(ClassOf<Station>) { return makeSet({s("banner")}); }
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
  std::string log;
  std::function<void(NSObject*)> during;
  Strong<NSDictionary> last;

  void observe(NSString* path, NSObject* object, NSDictionary* change, void*) {
    last = change;
    log += (log.empty() ? "" : ", ") + shown(path, change);
    if (during) during(object);
  }
  std::string take() { return std::exchange(log, ""); }
  using Members = List<Method<"observeValueForKeyPath:ofObject:change:context:", &Watcher::observe>>;
};

struct Observed : testing::Test {
  Strong<Station> station = make<Station>();
  Strong<Watcher> watcher = make<Watcher>();

  void watch(const char* path, std::uint64_t options = kBoth, void* context = nullptr) {
    addObserver(station, watcher, path, options, context);
  }
  void unwatch(const char* path) { removeObserver(station, watcher, path); }
};

}  // namespace havrin_test
