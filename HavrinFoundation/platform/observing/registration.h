// SPDX-License-Identifier: Apache-2.0
// One call of `addObserver`, until it is removed.
#pragma once

#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/observing/key_facts.h>

#include <atomic>
#include <cstdint>
#include <vector>

namespace havrin {
inline namespace platform {

/// A key of an object whose change concerns a registration.
struct WatchedKey {
  Weak<NSObject> object;
  Strong<NSString> key;
  bool moves;  // the value is an object on the way, so that a change leads elsewhere
  bool isEnd;  // the value is the one that the registration's path ends in

  [[nodiscard]] bool isSame(const WatchedKey& other) const {
    return object.address() == other.object.address() && moves == other.moves && isEnd == other.isEnd &&
           key->isEqual(other.key);
  }
};

struct WalkedKey;

/// Objects of the runtime only for their counts: nobody outside sees one.
class Registration final : public Object<Registration, NSObject> {
 public:
  Registration(NSObject* observedObject, NSObject* watcher, KeyPath keyPath, std::uint64_t asked, void* given);
  ~Registration() override;

  // Constant from the start.
  const Weak<NSObject> root;
  const Weak<NSObject> observer;
  const KeyPath path;
  const std::uint64_t options;
  void* const context;
  const KeyFacts firstKey;
  /// One key that nothing else affects: its own change is all there is, and `watched` stays empty.
  const bool isSimple;

  /// False once removed: nothing is reported any more. The thread that changes it to false takes the registration out
  /// of the table.
  std::atomic<bool> isActive{true};
  /// An object on the way has gone: what lies beyond must be looked at again before it counts.
  std::atomic<bool> isStale{false};

  [[nodiscard]] bool wants(std::uint64_t option) const { return (options & option) != 0; }

  /// True when the observer's destructors have run. Until then it may yet remove its registrations itself.
  [[nodiscard]] bool isOrphaned() const {
    return headerOf(observer.address()).strong.load(std::memory_order_acquire) >= ObjectHeader::kDestroyed;
  }

  /// Puts the registration into the table; `object` is its root. Throws: what the getters on the way throw; nothing is
  /// registered then.
  void enter(NSObject& object);
  /// Ends it; nothing is reported from here on. Returns false when it had already ended.
  bool leave() noexcept;
  /// Takes an ended registration out of the table.
  void letGo() noexcept;
  /// Follows the path anew and watches the objects that it leads over now. Throws: what the getters throw, after what
  /// could be reached is watched.
  void follow();

 private:
  // Watches these keys in place of those so far; false when they are the same, or the registration has been removed.
  bool install(const std::vector<WalkedKey>& walked);

  os_unfair_lock lock_;
  std::vector<WatchedKey> watched_ HAVRIN_THREAD_SAFETY(guarded_by(lock_));
};

}  // namespace platform
}  // namespace havrin
