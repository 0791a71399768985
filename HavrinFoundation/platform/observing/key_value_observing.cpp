// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/observing/change.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>
#include <HavrinFoundation/platform/observing/observable.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

// Between `willChangeValueForKey` and its `didChangeValueForKey`, which may never come: nothing in the table is kept
// from going meanwhile.
struct ManualChange {
  Weak<NSObject> object;
  Strong<NSString> key;
  std::unique_ptr<WatcherList> list;
  Change change;

  ManualChange(NSObject& of, const Watch& watch, NSKeyValueChange kind, NSIndexSet* indexes)
      : object(&of),
        key(watch.key),
        list(WatcherList::copy(watch.list(), static_cast<std::uint32_t>(watch.list().watchers().size()))),
        change(of, watch, *key, list->watchers(), kind, indexes) {}
};

// The changes of this thread that have been announced and not yet made.
std::vector<std::unique_ptr<ManualChange>>& announced() {
  thread_local std::vector<std::unique_ptr<ManualChange>> changes;
  return changes;
}

void announce(NSObject& object, NSKeyValueChange kind, NSIndexSet* indexes, NSString& key) {
  if (!dispatchClass(&object)->isNotifying()) return;
  const Pin pin(&object);
  const Watch* watch = pin.find(key);
  if (!watch) return;
  const Strong<NSObject> hold(&object);
  auto change = std::make_unique<ManualChange>(object, *watch, kind, indexes);
  announced().push_back(std::move(change));
}

void finish(NSObject& object, const NSString& key) {
  auto& changes = announced();
  const auto last = std::find_if(changes.rbegin(), changes.rend(), [&](const std::unique_ptr<ManualChange>& one) {
    return one->object.address() == &object && one->key->isEqual(&key);
  });
  if (last == changes.rend()) return;
  const Strong<NSObject> hold(&object);
  const std::unique_ptr<ManualChange> change = std::move(*last);
  changes.erase(std::next(last).base());
  change->change.finish();
}

void end(const NSObject& object, const NSObject* observer, NSString* keyPath, std::optional<void*> context) {
  const std::string selector = context ? "removeObserver:forKeyPath:context:" : "removeObserver:forKeyPath:";
  requireKey(object, keyPath, selector);
  const KeyPath path(*keyPath);
  const Strong<Registration> registration = endRegistration(object, observer, path, context);
  if (!registration) {
    throw NSException(NSRangeException, "-[" + std::string(classOf(object).name()) + " " + selector +
                                            "]: the observer is not registered for \"" + utf8(path.text()) + "\"" +
                                            (context ? " with this context" : ""));
  }
  if (!registration->isSimple) registration->letGo();
}

void tellInitially(Registration& registration, NSObject& object) {
  NSKeyValueChangeDictionary::Values values;
  if (registration.wants(NSKeyValueObservingOptionNew)) {
    values.newValue = readPath(object, registration.path.text());
    if (!values.newValue) values.newValue = NSNull::null();
  }
  tell(registration, &object, make<NSKeyValueChangeDictionary>(std::move(values)));
}

void addObserver(NSObject& self, NSObject* watcher, NSString* keyPath, std::uint64_t options, void* context) {
  constexpr std::string_view kSelector = "addObserver:forKeyPath:options:context:";
  requireObservable(self);
  requireKey(self, keyPath, kSelector);
  if (!watcher) throwNullArgument(self, kSelector, "observer");
  const Strong<NSObject> hold(&self);
  const auto registration = make<Registration>(&self, watcher, KeyPath(*keyPath), options, context);
  registration->enter(self);
  if (!registration->wants(NSKeyValueObservingOptionInitial)) return;
  try {
    tellInitially(*registration, self);
  } catch (...) {
    static_cast<void>(registration->leave());
    throw;
  }
}

void removeObserverForContext(NSObject& self, NSObject* watcher, NSString* keyPath, void* context) {
  end(self, watcher, keyPath, context);
}

void removeObserver(NSObject& self, NSObject* watcher, NSString* keyPath) { end(self, watcher, keyPath, std::nullopt); }

void observeValue(NSObject& self, NSString* keyPath, NSObject*, NSDictionary*, void*) {
  throw NSException(NSInternalInconsistencyException,
                    methodReason(self, "observeValueForKeyPath:ofObject:change:context:",
                                 "not overridden, but called for \"" + (keyPath ? utf8(*keyPath) : "(null)") + "\""));
}

void willChangeValue(NSObject& self, NSString* key) {
  requireKey(self, key, "willChangeValueForKey:");
  announce(self, NSKeyValueChange::setting, nullptr, *key);
}

void didChangeValue(NSObject& self, NSString* key) {
  requireKey(self, key, "didChangeValueForKey:");
  finish(self, *key);
}

void willChangeValuesAtIndexes(NSObject& self, NSKeyValueChange kind, NSIndexSet* indexes, NSString* key) {
  requireKey(self, key, "willChange:valuesAtIndexes:forKey:");
  announce(self, kind, indexes, *key);
}

void didChangeValuesAtIndexes(NSObject& self, NSKeyValueChange, NSIndexSet*, NSString* key) {
  requireKey(self, key, "didChange:valuesAtIndexes:forKey:");
  finish(self, *key);
}

constexpr MethodRow kObservingRows[] = {
    unheldRow<NSObject, "addObserver:forKeyPath:options:context:", addObserver>(),
    unheldRow<NSObject, "removeObserver:forKeyPath:context:", removeObserverForContext>(),
    unheldRow<NSObject, "removeObserver:forKeyPath:", removeObserver>(),
    unheldRow<NSObject, "observeValueForKeyPath:ofObject:change:context:", observeValue>(),
    unheldRow<NSObject, "willChangeValueForKey:", willChangeValue>(),
    unheldRow<NSObject, "didChangeValueForKey:", didChangeValue>(),
    unheldRow<NSObject, "willChange:valuesAtIndexes:forKey:", willChangeValuesAtIndexes>(),
    unheldRow<NSObject, "didChange:valuesAtIndexes:forKey:", didChangeValuesAtIndexes>(),
};

}  // namespace

void requireObservable(const NSObject& object) {
  const bool isCollection = isKind<NSArray>(&object) || isKind<NSSet>(&object) || isKind<NSOrderedSet>(&object);
  if (!isCollection && !Class::from(&object)) return;
  throw NSException(
      NSInvalidArgumentException,
      methodReason(object, "addObserver:forKeyPath:options:context:", "collections and classes are not observable"));
}

extern constinit const Category kKeyValueObserving{classObject<NSObject>, "KeyValueObserving", kObservingRows, {}};

}  // namespace platform
}  // namespace havrin
