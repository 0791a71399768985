// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/observation/key_value_observation_messages.h>

#include <HavrinFoundation/frame/main_queue.h>
#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/observing/change_dictionary.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>

namespace havrin {

void* kKeyValueObservationContext = &kKeyValueObservationContext;

extern const ConstantString kKeyPathText;
constexpr ConstantString kKeyPathText("keyPath");
constinit NSString* const kKeyValueObservationKeyPath = kKeyPathText;

namespace {

// The change with the path that changed, immutable.
Strong<NSDictionary> changeAt(NSString* keyPath, const NSDictionary* change) {
  if (!change) return nullptr;
  if (const auto* own = cast<NSKeyValueChangeDictionary>(change); own && keyPath) {
    return own->adding(kKeyValueObservationKeyPath, keyPath);
  }
  const Strong<NSObject> copy = change->mutableCopy();
  checkedReference<NSMutableDictionary>(copy).set(kKeyValueObservationKeyPath, keyPath);
  return Strong<NSDictionary>(checkedCast<NSDictionary>(copy->copy()));
}

// True for a change whose old and new value are one object, or equal; both may be absent.
bool isUnchanged(const NSDictionary* change) {
  if (!change) return true;
  const Strong<NSObject> before = change->objectForKey(NSKeyValueChangeOldKey);
  const Strong<NSObject> after = change->objectForKey(NSKeyValueChangeNewKey);
  return before.get() == after.get() || (before && before->isEqual(after));
}

std::string textOf(const NSObject* object) { return object ? utf8(*object->description()) : "(null)"; }

std::string listOf(const NSArray* keyPaths) {
  std::string paths = keyPaths ? "" : "(null)";
  bool first = true;
  for (NSObject* path : each(keyPaths)) paths += (std::exchange(first, false) ? "" : ", ") + textOf(path);
  return paths;
}

// Under diagnosis: the changes that any observation was notified of, and the observation that this thread made last,
// with the number of changes by then. One that is gone a moment later, with no other and no change in between, was not
// kept beyond the statement that made it.
constinit std::atomic<std::uint64_t> changesSeen{0};
struct Newest {
  const NSObject* observation;
  std::uint64_t changes;
  double made;
};
constinit thread_local Newest newest [[gnu::tls_model("initial-exec")]]{};
constexpr double kMomentSeconds = 0.001;

bool isDiscarded(const NSObject& ending) {
  return std::exchange(newest.observation, nullptr) == &ending &&
         newest.changes == changesSeen.load(std::memory_order_relaxed) &&
         monotonicSeconds() - newest.made < kMomentSeconds;
}

// Whether an object was given and its destructors have run, in which the observation might still be released.
bool isGone(const Weak<NSObject>& observer) {
  const NSObject* object = observer.address();
  return object && headerOf(object).strong.load(std::memory_order_acquire) >= ObjectHeader::kDestroyed;
}

}  // namespace

Strong<KeyValueObservation> KeyValueObservation::init(NSObject* observer, NSObject* object, NSArray* keyPaths,
                                                      std::uint64_t options, const Action& action) {
  send<"setObserver:">(*this, observer);
  send<"setObject:">(*this, object);
  send<"setKeyPaths:">(*this, keyPaths);
  send<"setOptions:">(*this, options);
  send<"setAction:">(*this, action);
  if (object) {
    constexpr std::uint64_t kBoth = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;
    for (NSObject* path : each(keyPaths)) {
      send<"addObserver:forKeyPath:options:context:">(object, this, checkedCast<NSString>(path), kBoth,
                                                      kKeyValueObservationContext);
    }
  }
  if (!(options & KeyValueObservationOptionSkipInitial)) {
    action(observer, object, make<NSKeyValueChangeDictionary>(NSKeyValueChangeDictionary::Values{}));
  }
  if (diagnosing() && object && keyPaths && keyPaths->count()) {
    newest = {this, changesSeen.load(std::memory_order_relaxed), monotonicSeconds()};
  }
  return Strong<KeyValueObservation>(this);
}

KeyValueObservation::~KeyValueObservation() {
  if (!object_) return;
  try {
    if (diagnosing() && isDiscarded(*this)) {
      report(Finding::discardedToken, {classOf(*object_).name(), listOf(keyPaths_)});
    }
    for (NSObject* element : each(keyPaths_)) {
      NSString* const path = cast<NSString>(element);
      if (!path) continue;  // creation failed at this element
      try {
        send<"removeObserver:forKeyPath:context:">(object_, this, path, kKeyValueObservationContext);
      } catch (const NSException&) {
        // Never made, since creation failed on the way, or made for another object or other paths.
      }
    }
  } catch (...) {
    // A collection or an observed object of the program's own that throws: nothing more can be removed.
  }
}

void KeyValueObservation::copyKeyPaths(NSArray* keyPaths) {
  keyPaths_ = keyPaths ? Strong<NSArray>(checkedCast<NSArray>(keyPaths->copy())) : nullptr;
}

void KeyValueObservation::copyAction(const Action& action) {
  if (!action) throwNullArgument(*this, "setAction:", "action");
  action_ = action;
}

void KeyValueObservation::observe(NSString* keyPath, NSObject* object, NSDictionary* change, void* context) {
  if (context != kKeyValueObservationContext) return;
  if (diagnosing()) {
    changesSeen.fetch_add(1, std::memory_order_relaxed);
    if (object_ && isGone(observer_)) {
      report(Finding::outlivedObserver, {classOf(*object_).name(), listOf(keyPaths_)});
    }
  }
  const Strong<NSObject> observer = observer_.lock();
  if (!object || !observer) return;
  if ((options_ & KeyValueObservationOptionSkipUnchanged) && isUnchanged(change)) return;
  GuaranteeMainQueue([self = Strong<KeyValueObservation>(this), observer, object = Strong<NSObject>(object),
                      delivered = changeAt(keyPath, change)] { send<"action">(self)(observer, object, delivered); });
}

Strong<NSString> KeyValueObservation::debugDescription() const { return send<"debugDescription">(*this); }

Strong<NSString> KeyValueObservation::describe() {
  return makeString(textOf(NSObject::debugDescription()) + "\n  observer: " + textOf(observer()) +
                    "\n  object: " + textOf(object_) + "\n  keypaths: [" + listOf(keyPaths_) + "]");
}

template ClassObject* buildClass<KeyValueObservation>();

}  // namespace havrin
