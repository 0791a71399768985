// SPDX-License-Identifier: Apache-2.0
// Which observers watch which key of which object: one table for the process, read without a lock.
//
//   const Pin pin(object);                          what the table holds for the object keeps its memory from here on
//   const Watch* watch = pin.find(setter);          null when nobody watches the key that this setter sets
//   for (const Watcher& watcher : watch->watchers()) ...
//
// The table is buckets chosen by the object's address, in pages made at first use. Each bucket chains one `Watch` per
// watched key of an object, and each of those has a list of watchers. Writers take the bucket's lock; readers only
// count themselves in (`Pin`), walk what they find, and count themselves out. What a writer takes out of a chain or a
// list is retired, and freed by the first that finds no reader in the bucket: the writer, or the last reader to leave.
// So a reader never waits, never sees freed memory, and pays two counts, and any code may run while it is inside.
//
// Order of locks: a registration's lock, then a bucket's. Nothing foreign runs, and no object of the program is
// released, under either.
//
// An object that is destroyed leaves the table before its destructors run, and one that is being destroyed does not
// enter it: under a bucket's lock, every object in its chain has a header that may be read.
#pragma once

#include <HavrinFoundation/platform/object/selector.h>
#include <HavrinFoundation/platform/observing/registration.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>

namespace havrin {
inline namespace platform {

struct WatchBucket;

/// What leaves the table while readers may still look at it.
struct Retired {
  Retired* nextRetired = nullptr;
  virtual ~Retired() = default;
};

/// A registration's place in a list.
struct Watcher {
  Strong<Registration> registration;
  bool moves;                        // as in WatchedKey
  bool isEnd;                        //
  mutable std::atomic<bool> isLive;  // false: taken out; the place stays until the list is copied
  Watcher(Registration& of, bool movesPath, bool end) : registration(&of), moves(movesPath), isEnd(end), isLive(true) {}

  [[nodiscard]] bool counts() const {
    return isLive.load(std::memory_order_acquire) && registration->isActive.load(std::memory_order_acquire);
  }
};

/// Grows at its end while readers walk it; anything else makes a new list.
class WatcherList final : public Retired {
 public:
  /// Room for at least `capacity` watchers.
  static WatcherList* allocate(std::uint32_t capacity);
  /// The watchers of `source` that count, with room for more.
  static WatcherList* copy(const WatcherList& source, std::uint32_t capacity);
  ~WatcherList() override;
  // NOLINTNEXTLINE(misc-new-delete-overloads): allocate() makes room for the watchers behind the list
  static void operator delete(void* memory);

  /// The watchers in the list now.
  [[nodiscard]] std::span<const Watcher> watchers() const { return {slots(), count_.load(std::memory_order_acquire)}; }
  /// True when some watcher asks for more than a notification of this very key: values, or Prior.
  [[nodiscard]] bool asksForMore() const { return asksForMore_.load(std::memory_order_acquire); }

  /// False when the list is full. For one writer at a time.
  bool append(Registration& registration, bool moves, bool isEnd);

 private:
  explicit WatcherList(std::uint32_t capacity) : capacity_(capacity) {}
  [[nodiscard]] Watcher* slots() const { return reinterpret_cast<Watcher*>(const_cast<WatcherList*>(this) + 1); }

  const std::uint32_t capacity_;
  std::atomic<std::uint32_t> count_{0};
  std::atomic<bool> asksForMore_{false};
};

/// One watched key of one object.
class Watch final : public Retired {
 public:
  Watch(const NSObject* of, Strong<NSString> name, const KeyFacts& facts);
  ~Watch() override;

  const NSObject* const object;
  const Strong<NSString> key;
  const bool isAutomatic;        // the key's setter notifies
  Watch* nextDropped = nullptr;  // among those that go with their object

  /// The rows of the key in the object's class; null when it has none. Looked up when they are first asked for, and when
  /// methods have changed since.
  [[nodiscard]] const KnownRows* rows() const;
  [[nodiscard]] const WatcherList& list() const { return *list_.load(std::memory_order_seq_cst); }
  [[nodiscard]] bool isSetBy(const SelectorConstant& setter, std::uint32_t number) const {
    return setterNumber_ != 0 ? setterNumber_ == number : isSetByName(setter);
  }

 private:
  friend struct WatchBucket;
  [[nodiscard]] bool isSetByName(const SelectorConstant& setter) const;

  const std::uint32_t setterNumber_;
  std::atomic<Watch*> next_{nullptr};
  std::atomic<WatcherList*> list_;
  mutable std::atomic<const KnownRows*> rows_{nullptr};
  std::uint32_t live_ = 0;  // watchers that are live; under the bucket's lock
};

/// A reader of one object's bucket, while it exists. Threads: belongs to one.
class Pin {
 public:
  explicit Pin(const NSObject* object);
  Pin(const Pin&) = delete;
  Pin& operator=(const Pin&) = delete;
  ~Pin();

  /// The watch of the key that this setter sets; null when nobody watches it.
  [[nodiscard]] const Watch* find(const SelectorConstant& setter) const;
  [[nodiscard]] const Watch* find(const NSString& key) const;

 private:
  const NSObject* object_;
  WatchBucket& bucket_;
};

/// Adds a watcher to a key of `object`, whose class becomes the notifying one. Does nothing for an object that is being
/// destroyed.
void watchKey(NSObject& object, NSString& key, const KeyFacts& facts, Registration& registration, bool moves,
              bool isEnd);
/// Takes a watcher out, and the object's class back when nobody watches it any more. Nothing happens for an object that
/// has been destroyed, or has no such watcher.
void unwatchKey(const WatchedKey& watched, const Registration& registration) noexcept;

/// Ends every observation of an object whose last strong reference has gone, before its destructors run.
void dropObservations(NSObject* object) noexcept;

/// Ends one active registration on `object` that has this observer, path and context (any, when there is none), and
/// returns it: a simple one is out of the table, another still has to leave its watched keys. Null when there is none.
[[nodiscard]] Strong<Registration> endRegistration(const NSObject& object, const NSObject* observer,
                                                   const KeyPath& path, std::optional<void*> context);

}  // namespace platform
}  // namespace havrin
