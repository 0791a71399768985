// SPDX-License-Identifier: Apache-2.0
// One change of one key on its way to the observers: values read and observers notified before it, and after it.
#pragma once

#include <HavrinFoundation/platform/foundation/index_set.h>
#include <HavrinFoundation/platform/observing/change_dictionary.h>
#include <HavrinFoundation/platform/observing/watch_table.h>

#include <array>
#include <span>
#include <vector>

namespace havrin {
inline namespace platform {

/// Runs `apply`, which sets the value under the key of `setter`, between the two halves of a change.
void notifyChange(NSObject* object, const SelectorConstant& setter, void (*apply)(void*), void* context);

/// Notifies one registration of a change, unless it has ended; ends it when its observer is gone.
void tell(Registration& registration, NSObject* object, NSDictionary* change);

/// Runs `apply`, which inserts, removes or replaces objects of the array under `key`, between the two halves of a
/// change.
void changeArray(NSObject& object, const NSString& key, NSKeyValueChange kind, NSIndexSet* indexes,
                 BlockView<void()> apply);

/// Constructed before the change, finished after it. The object, the key and the watchers have to outlive it, the watch
/// only the construction.
/// Throws: what getters and observers throw; observers that were not notified by then are not notified.
class Change {
 public:
  /// Reads the old values that observers asked for, then notifies the observers that asked for Prior.
  Change(NSObject& object, const Watch& watch, NSString& key, std::span<const Watcher> watchers, NSKeyValueChange kind,
         NSIndexSet* indexes);
  /// Moves paths to their new objects, reads the new values, notifies every observer.
  void finish();

 private:
  // A watcher whose path ends elsewhere, or whose value only depends on the key.
  struct Indirect {
    const Watcher* watcher;
    Strong<NSObject> root;
    KeyedValue old;
  };

  void readOld();
  void tellPrior();
  [[nodiscard]] NSKeyValueChange kindFor(const Watcher& watcher) const {
    return watcher.isEnd ? kind_ : NSKeyValueChange::setting;
  }
  [[nodiscard]] KeyedValue read(NSObject& from, NSString& path, NSKeyValueChange kind) const;
  [[nodiscard]] KeyedValue oldValue(NSObject& from, NSString& path, NSKeyValueChange kind) const;
  [[nodiscard]] KeyedValue newValue(NSObject& from, NSString& path, NSKeyValueChange kind) const;
  NSDictionary* directChange(std::uint64_t options);

  NSObject& object_;
  NSString& key_;
  const KnownRows* const rows_;  // of the key in the object's class
  const std::span<const Watcher> watchers_;
  const NSKeyValueChange kind_;
  const Strong<NSIndexSet> indexes_;
  KeyedValue old_;  // under the key itself, when somebody asks for it
  KeyedValue new_;
  bool hasPrior_ = false;
  std::array<Strong<NSDictionary>, 4> direct_;  // the dictionaries of simple registrations, by New and Old
  std::vector<Indirect> indirect_;
};

}  // namespace platform
}  // namespace havrin
