// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/watch_table.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/object/observed.h>
#include <HavrinFoundation/platform/observing/change.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

constexpr Notifications kNotifications{.change = notifyChange, .drop = dropObservations};

constexpr std::uint32_t kFirstCapacity = 2;

std::uint32_t numberOf(const SelectorConstant& setter) {
  const std::uint32_t number = setter.number.load(std::memory_order_acquire);
  return number ? number : Selector(setter).number();
}

// Whether the last reference to an object has gone. Without taking a share, whose end might destroy it here.
bool isGoing(const NSObject& object) {
  const std::uint32_t strong = headerOf(&object).strong.load(std::memory_order_acquire);
  return strong == 0 || strong >= ObjectHeader::kDestroying;
}

}  // namespace

// Readers count themselves in and then load; writers unlink and then read the count. The loads and stores on both sides
// are sequentially consistent, so that a writer that reads 0 has no reader that could still find what was unlinked.
struct alignas(32) WatchBucket {
  // What no reader can find any more. Declared before the guard of the lock, so that it is freed after it.
  struct Unreachable {
    Retired* first = nullptr;
    ~Unreachable() {
      while (first) delete std::exchange(first, first->nextRetired);
    }
  };

  std::atomic<std::uint32_t> readers{0};
  os_unfair_lock lock;
  std::atomic<Watch*> first{nullptr};
  std::atomic<Retired*> retired{nullptr};  // written under the lock

  static WatchBucket& of(const NSObject* object);

  void retire(Retired* item) {
    item->nextRetired = retired.load(std::memory_order_relaxed);
    retired.store(item, std::memory_order_release);
  }

  // Frees what was retired when nobody reads. To be called without the lock.
  void reclaim() {
    if (!retired.load(std::memory_order_acquire)) return;
    Unreachable items;
    const UnfairLockGuard guard(lock);
    reclaim(items);
  }

  // The rest needs the lock.

  // Hands out what was retired when nobody reads.
  void reclaim(Unreachable& items) {
    if (!retired.load(std::memory_order_relaxed) || readers.load(std::memory_order_seq_cst) != 0) return;
    items.first = retired.exchange(nullptr, std::memory_order_acq_rel);
  }

  Watch* find(const NSObject* object, const NSString& key) const {
    for (Watch* watch = first.load(std::memory_order_relaxed); watch; watch = next(*watch)) {
      if (watch->object == object && (watch->key.get() == &key || watch->key->isEqual(&key))) return watch;
    }
    return nullptr;
  }
  bool watchesAnyKey(const NSObject* object) const {
    for (Watch* watch = first.load(std::memory_order_relaxed); watch; watch = next(*watch)) {
      if (watch->object == object) return true;
    }
    return false;
  }
  static Watch* next(const Watch& watch) { return watch.next_.load(std::memory_order_relaxed); }
  /// The next watch, for readers.
  static const Watch* follow(const Watch& watch) { return watch.next_.load(std::memory_order_seq_cst); }

  void link(Watch* watch) {
    watch->next_.store(first.load(std::memory_order_relaxed), std::memory_order_relaxed);
    first.store(watch, std::memory_order_seq_cst);
  }
  void unlink(Watch* watch) {
    std::atomic<Watch*>* link = &first;
    while (link->load(std::memory_order_relaxed) != watch) link = &link->load(std::memory_order_relaxed)->next_;
    link->store(next(*watch), std::memory_order_seq_cst);
    retire(watch);
  }

  void add(Watch& watch, Registration& registration, bool moves, bool isEnd) {
    WatcherList* list = watch.list_.load(std::memory_order_relaxed);
    if (!list->append(registration, moves, isEnd)) {
      // Those that were taken out, or whose observer has gone, leave room.
      std::uint32_t live = 0;
      for (const Watcher& watcher : list->watchers()) {
        if (!watcher.isLive.load(std::memory_order_relaxed)) continue;
        if (watcher.registration->isSimple && watcher.registration->isOrphaned()) {
          watcher.registration->isActive.store(false, std::memory_order_release);
          watcher.isLive.store(false, std::memory_order_release);
        } else {
          ++live;
        }
      }
      WatcherList* longer = WatcherList::copy(*list, live * 2 < kFirstCapacity ? kFirstCapacity : live * 2);
      watch.live_ = live;
      static_cast<void>(longer->append(registration, moves, isEnd));
      watch.list_.store(longer, std::memory_order_seq_cst);
      retire(list);
    }
    ++watch.live_;
  }

  // The object goes back to its own class with its last watched key.
  void remove(Watch& watch, const Watcher& watcher) {
    watcher.isLive.store(false, std::memory_order_release);
    if (--watch.live_ != 0) return;
    const NSObject* object = watch.object;
    unlink(&watch);
    if (watchesAnyKey(object)) return;
    headerOf(object).cls.store(dispatchClass(object)->shown(), std::memory_order_release);
  }
};

namespace {

// In pages, each made when an object that belongs there is first watched: a program that observes nothing has none.
constexpr std::uint64_t kPageBits = 8;
constexpr std::uint64_t kBucketBits = 6;
using Page = std::array<WatchBucket, (1U << kBucketBits)>;
constinit std::array<std::atomic<Page*>, (1U << kPageBits)> pages{};

std::string nameOf(const NSObject* object) {
  char address[32];
  std::snprintf(address, sizeof address, " %p", static_cast<const void*>(object));
  return std::string(dispatchClass(object)->shown()->name()).append(address);
}

std::string lineOf(const Watch& watch) {
  std::string line = "  " + nameOf(watch.object) + " " + utf8(*watch.key);
  const char* before = ": ";
  for (const Watcher& watcher : watch.list().watchers()) {
    if (!watcher.counts()) continue;
    const Registration& registration = *watcher.registration;
    line.append(std::exchange(before, ", ")).append(nameOf(registration.observer.address()));
    if (registration.isOrphaned()) line += " (gone)";
    if (!registration.isSimple) line.append(" by \"").append(utf8(registration.path.text())).append("\"");
  }
  return line + "\n";
}

// Headers may be read under a bucket's lock, and those of observers while their registrations are.
void describeObservers(std::string& text) {
  std::vector<std::string> lines;
  for (const std::atomic<Page*>& place : pages) {
    Page* page = place.load(std::memory_order_acquire);
    if (page == nullptr) continue;
    for (WatchBucket& bucket : *page) {
      const UnfairLockGuard guard(bucket.lock);
      for (Watch* watch = bucket.first.load(std::memory_order_relaxed); watch; watch = WatchBucket::next(*watch)) {
        lines.push_back(lineOf(*watch));
      }
    }
  }
  std::sort(lines.begin(), lines.end());
  for (const std::string& line : lines) text += line;
}

}  // namespace

extern const DiagnosticsSection kObserversSection;
constinit const DiagnosticsSection kObserversSection{"observers", describeObservers};

WatchBucket& WatchBucket::of(const NSObject* object) {
  const std::uint64_t spread = reinterpret_cast<std::uintptr_t>(object) * 0x9E37'79B9'7F4A'7C15U;
  std::atomic<Page*>& place = pages[spread >> (64 - kPageBits)];
  Page* page = place.load(std::memory_order_acquire);
  if (page == nullptr) [[unlikely]] {
    auto made = std::make_unique<Page>();
    if (place.compare_exchange_strong(page, made.get(), std::memory_order_acq_rel)) page = made.release();
  }
  return (*page)[spread << kPageBits >> (64 - kBucketBits)];
}

WatcherList* WatcherList::allocate(std::uint32_t capacity) {
  void* memory = std::malloc(sizeof(WatcherList) + capacity * sizeof(Watcher));
  if (!memory) throw std::bad_alloc();
  return ::new (memory) WatcherList(capacity);
}

WatcherList* WatcherList::copy(const WatcherList& source, std::uint32_t capacity) {
  WatcherList* list = allocate(capacity);
  for (const Watcher& watcher : source.watchers()) {
    if (watcher.isLive.load(std::memory_order_acquire)) {
      static_cast<void>(list->append(*watcher.registration, watcher.moves, watcher.isEnd));
    }
  }
  return list;
}

WatcherList::~WatcherList() {
  for (const Watcher& watcher : watchers()) watcher.~Watcher();
}

// NOLINTNEXTLINE(misc-new-delete-overloads): see its declaration
void WatcherList::operator delete(void* memory) { std::free(memory); }

// The count last, so that readers see whole watchers.
bool WatcherList::append(Registration& registration, bool moves, bool isEnd) {
  const std::uint32_t count = count_.load(std::memory_order_relaxed);
  if (count == capacity_) return false;
  ::new (static_cast<void*>(slots() + count)) Watcher(registration, moves, isEnd);
  constexpr std::uint64_t kMore =
      NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld | NSKeyValueObservingOptionPrior;
  if (!registration.isSimple || registration.wants(kMore)) asksForMore_.store(true, std::memory_order_release);
  count_.store(count + 1, std::memory_order_release);
  return true;
}

Watch::Watch(const NSObject* of, Strong<NSString> name, const KeyFacts& facts)
    : object(of),
      key(std::move(name)),
      isAutomatic(facts.isAutomatic),
      setterNumber_(facts.setter.number()),
      list_(WatcherList::allocate(kFirstCapacity)) {}

Watch::~Watch() { delete list_.load(std::memory_order_relaxed); }

const KnownRows* Watch::rows() const {
  const KnownRows* known = rows_.load(std::memory_order_acquire);
  if (known && known->isGoodFor(methodChanges())) return known;
  known =
      withText(*key, [this](std::string_view text) { return knownRowsForKey(*dispatchClass(object)->shown(), text); });
  rows_.store(known, std::memory_order_release);
  return known;
}

bool Watch::isSetByName(const SelectorConstant& setter) const {
  return withText(*key, [&](std::string_view text) { return setterName(text) == setter.name; });
}

Pin::Pin(const NSObject* object) : object_(object), bucket_(WatchBucket::of(object)) {
  bucket_.readers.fetch_add(1, std::memory_order_seq_cst);
}

Pin::~Pin() {
  if (bucket_.readers.fetch_sub(1, std::memory_order_seq_cst) == 1) bucket_.reclaim();
}

const Watch* Pin::find(const SelectorConstant& setter) const {
  const std::uint32_t number = numberOf(setter);
  for (const Watch* watch = bucket_.first.load(std::memory_order_seq_cst); watch; watch = WatchBucket::follow(*watch)) {
    if (watch->object == object_ && watch->isSetBy(setter, number)) return watch;
  }
  return nullptr;
}

const Watch* Pin::find(const NSString& key) const {
  for (const Watch* watch = bucket_.first.load(std::memory_order_seq_cst); watch; watch = WatchBucket::follow(*watch)) {
    if (watch->object == object_ && watch->key->isEqual(&key)) return watch;
  }
  return nullptr;
}

void watchKey(NSObject& object, NSString& key, const KeyFacts& facts, Registration& registration, bool moves,
              bool isEnd) {
  ClassObject* notifying = dispatchClass(&object)->shown()->notifyingClass(kNotifications);
  WatchBucket& bucket = WatchBucket::of(&object);
  WatchBucket::Unreachable unreachable;
  const UnfairLockGuard guard(bucket.lock);
  if (isGoing(object)) return;  // its observations have been dropped already
  Watch* watch = bucket.find(&object, key);
  if (!watch) {
    watch = new Watch(&object, &key, facts);
    bucket.link(watch);
  }
  bucket.add(*watch, registration, moves, isEnd);
  headerOf(&object).cls.store(notifying, std::memory_order_release);
  bucket.reclaim(unreachable);
}

void unwatchKey(const WatchedKey& watched, const Registration& registration) noexcept {
  const NSObject* object = watched.object.address();
  WatchBucket& bucket = WatchBucket::of(object);
  WatchBucket::Unreachable unreachable;
  const UnfairLockGuard guard(bucket.lock);
  Watch* watch = bucket.find(object, *watched.key);
  if (!watch) return;
  for (const Watcher& watcher : watch->list().watchers()) {
    if (watcher.registration.get() == &registration && watcher.isLive.load(std::memory_order_relaxed)) {
      bucket.remove(*watch, watcher);
      break;
    }
  }
  bucket.reclaim(unreachable);
}

Strong<Registration> endRegistration(const NSObject& object, const NSObject* observer, const KeyPath& path,
                                     std::optional<void*> context) {
  WatchBucket& bucket = WatchBucket::of(&object);
  WatchBucket::Unreachable unreachable;
  const UnfairLockGuard guard(bucket.lock);
  Watch* watch = bucket.find(&object, *path.keys().front());
  if (!watch) return nullptr;
  for (const Watcher& watcher : watch->list().watchers()) {
    Registration& one = *watcher.registration;
    if (!watcher.isLive.load(std::memory_order_relaxed) || one.observer.address() != observer ||
        one.root.address() != &object || (context && one.context != *context) ||
        !one.path.text().isEqual(&path.text()) || !one.isActive.exchange(false, std::memory_order_acq_rel)) {
      continue;
    }
    Strong<Registration> ended(&one);
    if (one.isSimple) bucket.remove(*watch, watcher);
    bucket.reclaim(unreachable);
    return ended;
  }
  return nullptr;
}

void dropObservations(NSObject* object) noexcept {
  const Pin pin(object);  // keeps what is unlinked here until it has been looked at
  WatchBucket& bucket = WatchBucket::of(object);
  Watch* dropped = nullptr;
  {
    const UnfairLockGuard guard(bucket.lock);
    for (Watch* watch = bucket.first.load(std::memory_order_relaxed); watch;) {
      Watch* const next = WatchBucket::next(*watch);
      if (watch->object == object) {
        bucket.unlink(watch);
        watch->nextDropped = std::exchange(dropped, watch);
      }
      watch = next;
    }
  }
  for (; dropped; dropped = dropped->nextDropped) {
    for (const Watcher& watcher : dropped->list().watchers()) {
      Registration& registration = *watcher.registration;
      if (registration.root.address() == object) {
        static_cast<void>(registration.leave());
      } else {
        registration.isStale.store(true, std::memory_order_release);
      }
    }
  }
}

}  // namespace platform
}  // namespace havrin
