// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/change.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <utility>

namespace havrin {
inline namespace platform {

namespace {

using Values = NSKeyValueChangeDictionary::Values;

KeyedValue orNull(KeyedValue value) { return value ? std::move(value) : KeyedValue(NSNull::null()); }

// Ends the registration of an observer that has been destroyed.
void leaveIfOrphaned(Registration& registration, const NSObject& object) {
  if (!registration.isOrphaned()) return;
  if (diagnosing()) report(Finding::goneObserver, {classOf(object).name(), utf8(registration.path.text())});
  static_cast<void>(registration.leave());
}

// Every observer receives the same, and asks for nothing that would have to be read.
void tellPlainly(NSObject* object, std::span<const Watcher> watchers) {
  Strong<NSObject> observer;  // held on to from one registration to the next
  for (const Watcher& watcher : watchers) {
    if (!watcher.counts()) continue;
    Registration& registration = *watcher.registration;
    if (!observer || registration.observer.address() != observer.get()) {
      observer = registration.observer.lock();
      if (!observer) {
        leaveIfOrphaned(registration, *object);
        continue;
      }
    }
    send<"observeValueForKeyPath:ofObject:change:context:">(
        observer, &registration.path.text(), object, NSKeyValueChangeDictionary::plainSetting(), registration.context);
  }
}

}  // namespace

void tell(Registration& registration, NSObject* object, NSDictionary* change) {
  // Looked at last, since another observer of this change may have removed this one.
  if (!registration.isActive.load(std::memory_order_acquire)) return;
  if (const Strong<NSObject> observer = registration.observer.lock()) {
    send<"observeValueForKeyPath:ofObject:change:context:">(observer, &registration.path.text(), object, change,
                                                            registration.context);
  } else {
    leaveIfOrphaned(registration, *object);
  }
}

void notifyChange(NSObject* object, const SelectorConstant& setter, void (*apply)(void*), void* context) {
  const Pin pin(object);
  const Watch* watch = pin.find(setter);
  if (!watch || !watch->isAutomatic) return apply(context);
  const Strong<NSObject> hold(object);
  const WatcherList& list = watch->list();
  const std::span<const Watcher> watchers = list.watchers();
  if (!list.asksForMore()) {
    apply(context);
    tellPlainly(object, watchers);
    return;
  }
  Change change(*object, *watch, *watch->key, watchers, NSKeyValueChange::setting, nullptr);
  apply(context);
  change.finish();
}

void changeArray(NSObject& object, const NSString& key, NSKeyValueChange kind, NSIndexSet* indexes,
                 BlockView<void()> apply) {
  const Pin pin(&object);
  const Watch* watch = pin.find(key);
  if (!watch || !watch->isAutomatic) return apply();
  const Strong<NSObject> hold(&object);
  Change change(object, *watch, *watch->key, watch->list().watchers(), kind, indexes);
  apply();
  change.finish();
}

Change::Change(NSObject& object, const Watch& watch, NSString& key, std::span<const Watcher> watchers,
               NSKeyValueChange kind, NSIndexSet* indexes)
    : object_(object), key_(key), rows_(watch.rows()), watchers_(watchers), kind_(kind), indexes_(indexes) {
  readOld();
  if (hasPrior_) tellPrior();
}

void Change::readOld() {
  for (const Watcher& watcher : watchers_) {
    if (!watcher.counts()) continue;
    Registration& registration = *watcher.registration;
    const bool wantsOld = registration.wants(NSKeyValueObservingOptionOld);
    hasPrior_ = hasPrior_ || registration.wants(NSKeyValueObservingOptionPrior);
    if (registration.isSimple) {
      if (wantsOld && !old_) old_ = oldValue(object_, key_, kind_);
      continue;
    }
    if (registration.isStale.load(std::memory_order_acquire)) {
      registration.follow();
      if (!watcher.counts()) continue;  // the way no longer leads over this object
    }
    Strong<NSObject> root = registration.root.lock();
    if (!root) continue;
    KeyedValue old = wantsOld ? oldValue(*root, registration.path.text(), kindFor(watcher)) : nullptr;
    indirect_.push_back({&watcher, std::move(root), std::move(old)});
  }
}

void Change::tellPrior() {
  const auto before = [&](const Watcher& watcher, NSObject& root, const KeyedValue& old) {
    Registration& registration = *watcher.registration;
    if (!registration.wants(NSKeyValueObservingOptionPrior) || !watcher.counts()) return;
    const NSKeyValueChange kind = kindFor(watcher);
    const bool wantsOld = registration.wants(NSKeyValueObservingOptionOld);
    tell(registration, &root,
         make<NSKeyValueChangeDictionary>(Values{.kind = kind,
                                                 .prior = true,
                                                 .newValue = nullptr,
                                                 .oldValue = wantsOld ? old : nullptr,
                                                 .indexes = kind == kind_ ? indexes_ : nullptr}));
  };
  for (const Watcher& watcher : watchers_) {
    if (watcher.registration->isSimple) before(watcher, object_, old_);
  }
  for (const Indirect& one : indirect_) before(*one.watcher, *one.root, one.old);
}

void Change::finish() {
  for (const Indirect& one : indirect_) {
    if (one.watcher->moves) one.watcher->registration->follow();
  }
  for (const Watcher& watcher : watchers_) {
    Registration& registration = *watcher.registration;
    if (registration.isSimple && watcher.counts()) tell(registration, &object_, directChange(registration.options));
  }
  for (const Indirect& one : indirect_) {
    Registration& registration = *one.watcher->registration;
    if (!registration.isActive.load(std::memory_order_acquire)) continue;
    const NSKeyValueChange kind = kindFor(*one.watcher);
    Values values{.kind = kind,
                  .prior = false,
                  .newValue = nullptr,
                  .oldValue = one.old,
                  .indexes = kind == kind_ ? indexes_ : nullptr};
    if (registration.wants(NSKeyValueObservingOptionNew)) {
      values.newValue = newValue(*one.root, registration.path.text(), kind);
    }
    tell(registration, one.root, make<NSKeyValueChangeDictionary>(std::move(values)));
  }
}

NSDictionary* Change::directChange(std::uint64_t options) {
  Strong<NSDictionary>& made = direct_[options & 3];
  if (made) return made;
  const bool wantsNew = (options & NSKeyValueObservingOptionNew) != 0;
  const bool wantsOld = (options & NSKeyValueObservingOptionOld) != 0;
  if (wantsNew && !new_) new_ = newValue(object_, key_, kind_);
  // A single dictionary takes the values; several share them.
  const auto give = [this](KeyedValue& value) { return watchers_.size() == 1 ? std::move(value) : value; };
  made = make<NSKeyValueChangeDictionary>(Values{.kind = kind_,
                                                 .prior = false,
                                                 .newValue = wantsNew ? give(new_) : nullptr,
                                                 .oldValue = wantsOld ? give(old_) : nullptr,
                                                 .indexes = indexes_});
  return made;
}

KeyedValue Change::read(NSObject& from, NSString& path, NSKeyValueChange kind) const {
  KeyedValue value = readPath(from, path, &from == &object_ && &path == &key_ ? rows_ : nullptr);
  if (kind == NSKeyValueChange::setting) return orNull(std::move(value));
  const Strong<NSObject> whole = value.object();
  const auto* array = cast<NSArray>(whole.get());
  return array && indexes_ ? KeyedValue(array->objectsAtIndexes(indexes_)) : nullptr;
}

KeyedValue Change::oldValue(NSObject& from, NSString& path, NSKeyValueChange kind) const {
  return kind == NSKeyValueChange::insertion ? nullptr : read(from, path, kind);
}

KeyedValue Change::newValue(NSObject& from, NSString& path, NSKeyValueChange kind) const {
  return kind == NSKeyValueChange::removal ? nullptr : read(from, path, kind);
}

}  // namespace platform
}  // namespace havrin
