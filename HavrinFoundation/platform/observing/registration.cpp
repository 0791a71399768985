// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/registration.h>

#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>
#include <HavrinFoundation/platform/observing/observable.h>
#include <HavrinFoundation/platform/observing/watch_table.h>

#include <algorithm>
#include <span>
#include <string>
#include <utility>

namespace havrin {
inline namespace platform {

struct WalkedKey {
  Strong<NSObject> object;
  Strong<NSString> key;
  KeyFacts facts;
  bool moves;
  bool isEnd;

  [[nodiscard]] WatchedKey watched() const { return {object, key, moves, isEnd}; }
};

namespace {

// A bound, since getters that make a new object at each call lead on without end.
constexpr std::size_t kMostKeys = 100'000;
// After so many the path moves faster than it can be read; the next change reads it anew.
constexpr int kMostWalks = 8;

// One path to be walked from an object: the registration's own, or one that affects a key on it.
struct Route {
  Strong<NSObject> from;
  std::span<const Strong<NSString>> keys;
  bool isOwn;
  bool movesAtEnd;  // its last value decides where a path goes on
};

// Adds a key to what was walked over; null when it stood there already and this says nothing new.
const WalkedKey* note(std::vector<WalkedKey>& walked, NSObject& object, const Strong<NSString>& key, bool moves,
                      bool isEnd) {
  const auto known = std::find_if(walked.begin(), walked.end(), [&](const WalkedKey& one) {
    return one.object.get() == &object && one.key->isEqual(key);
  });
  if (known != walked.end()) {
    known->isEnd = known->isEnd || isEnd;
    if (known->moves || !moves) return nullptr;
    known->moves = true;
    return &*known;
  }
  if (walked.size() == kMostKeys) {
    throw NSException(NSInternalInconsistencyException, "the key paths that affect \"" + utf8(*key) + "\" never end");
  }
  requireObservable(object);
  walked.push_back({&object, key, factsForKey(*classOf(object).object(), *key), moves, isEnd});
  return &walked.back();
}

// All keys whose change concerns the registration, with the objects that the path leads over now.
void walk(const Registration& registration, std::vector<WalkedKey>& walked) {
  std::vector<Route> routes{{registration.root.lock(), registration.path.keys(), true, false}};
  while (!routes.empty()) {
    const Route route = std::move(routes.back());
    routes.pop_back();
    Strong<NSObject> object = route.from;
    for (std::size_t i = 0; object && i < route.keys.size(); ++i) {
      const Strong<NSString>& key = route.keys[i];
      const bool isLast = i + 1 == route.keys.size();
      const bool moves = !isLast || route.movesAtEnd;
      const WalkedKey* noted = note(walked, *object, key, moves, isLast && route.isOwn);
      if (noted && noted->facts.affecting) {
        for (const auto& path : *noted->facts.affecting) routes.push_back({object, path.keys(), false, moves});
      }
      if (!isLast) object = send<"valueForKey:">(object, key);
    }
  }
}

}  // namespace

Registration::Registration(NSObject* observedObject, NSObject* watcher, KeyPath keyPath, std::uint64_t asked,
                           void* given)
    : root(observedObject),
      observer(watcher),
      path(std::move(keyPath)),
      options(asked),
      context(given),
      firstKey(factsForKey(*classOf(*observedObject).object(), *path.keys().front())),
      isSimple(path.keys().size() == 1 && firstKey.isAlone()) {}

Registration::~Registration() = default;

void Registration::enter(NSObject& object) {
  if (isSimple) {
    watchKey(object, path.text(), firstKey, *this, false, true);
    return;
  }
  std::vector<WalkedKey> walked;
  walk(*this, walked);
  if (install(walked)) follow();
}

bool Registration::leave() noexcept {
  if (!isActive.exchange(false, std::memory_order_acq_rel)) return false;
  letGo();
  return true;
}

void Registration::letGo() noexcept {
  if (isSimple) {
    unwatchKey({root, &path.text(), false, true}, *this);
    return;
  }
  std::vector<WatchedKey> watched;
  {
    const UnfairLockGuard guard(lock_);
    watched.swap(watched_);
  }
  for (const WatchedKey& one : watched) unwatchKey(one, *this);
}

void Registration::follow() {
  if (isSimple) return;
  // Another thread may move the path while it is read: the value is good once it reads the same again.
  for (int i = 0; i < kMostWalks; ++i) {
    isStale.store(false, std::memory_order_release);
    std::vector<WalkedKey> walked;
    try {
      walk(*this, walked);
    } catch (...) {
      static_cast<void>(install(walked));
      throw;
    }
    if (!install(walked)) return;
  }
}

bool Registration::install(const std::vector<WalkedKey>& walked) {
  std::vector<WatchedKey> next;
  next.reserve(walked.size());
  for (const WalkedKey& one : walked) next.push_back(one.watched());
  const UnfairLockGuard guard(lock_);
  // Under the lock: a registration that has ended meanwhile must not enter keys that nobody would take out.
  if (!isActive.load(std::memory_order_acquire)) return false;
  const auto isIn = [](const std::vector<WatchedKey>& list, const WatchedKey& key) {
    return std::any_of(list.begin(), list.end(), [&](const WatchedKey& one) { return one.isSame(key); });
  };
  bool isNew = next.size() != watched_.size();
  for (std::size_t i = 0; i < next.size(); ++i) {
    if (isIn(watched_, next[i])) continue;
    watchKey(*walked[i].object, *next[i].key, walked[i].facts, *this, next[i].moves, next[i].isEnd);
    isNew = true;
  }
  for (const WatchedKey& one : watched_) {
    if (!isIn(next, one)) unwatchKey(one, *this);
  }
  watched_.swap(next);
  return isNew;
}

}  // namespace platform
}  // namespace havrin
