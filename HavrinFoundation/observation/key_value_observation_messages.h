// SPDX-License-Identifier: Apache-2.0
// KeyValueObservation: one registration of key-value observing, as an object. Making it registers, letting go of it ends
// that. Each change reaches an action on the main queue. Messages only; responders own theirs by
// responder_observations_messages.h.
//
//   const Strong<KeyValueObservation> token = send<"initWithObserver:object:keyPaths:options:action:">(
//       alloc<KeyValueObservation>(), board, station, makeArray({makeString("title")}), 0,
//       [](Board& board, Station& station, NSDictionary* change) { board.redraw(station); });
//           the action has run once by now, with {kind = 1}
//   send<"setTitle:">(station, title);
//           the action runs on the main queue, with {kind = 1; new = ...; old = ...; keyPath = "title"}
//   utf8(*token->debugDescription())
//           "<KeyValueObservation: 0x...>\n  observer: ...\n  object: ...\n  keypaths: [title]"
//
// A subclass takes part in every step by overriding its message, in its list of members; the C++ functions that send these
// messages cannot be overridden.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/block.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <cstdint>

namespace havrin {

/// Options of an observation, added up; other bits have no effect.
inline constexpr std::uint64_t KeyValueObservationOptionSkipInitial = 2;    // no call of the action at creation
inline constexpr std::uint64_t KeyValueObservationOptionSkipUnchanged = 4;  // none for a value equal to the old one

/// The context of every registration that an observation makes: a pointer that holds its own address. Exported under
/// this unadorned name, as is the next.
extern HAVRIN_EXPORT void* kKeyValueObservationContext __asm__("kKeyValueObservationContext");
/// The key under which the change that an action receives holds the key path that changed: "keyPath".
extern HAVRIN_EXPORT NSString* const kKeyValueObservationKeyPath __asm__("kKeyValueObservationKeyPath");

/// Keeps the observed object alive, and the observer not: once that is gone, changes are dropped. Deliveries that are
/// queued keep observation, observer and object alive until the action has run, and call the action of that moment.
/// `object` and `keyPaths` are not to be set after creation: what they hold at the end is what is unregistered.
/// Threads: made and changed by one thread at a time; changes may be made on any, and those of one thread are delivered
/// in their order.
class HAVRIN_EXPORT KeyValueObservation : public Object<KeyValueObservation, NSObject> {
 public:
  /// Called with the observer, the observed object and the change.
  using Action = Block<void(NSObject* observer, NSObject* object, NSDictionary* change)>;

  /// Observes nothing, until it is initialised.
  KeyValueObservation() noexcept = default;
  /// Removes the registration of each key path, in order; one that is missing is passed over.
  ~KeyValueObservation() override;

  [[nodiscard]] Strong<NSObject> observer() const { return observer_.lock(); }
  [[nodiscard]] Strong<NSObject> object() const { return object_; }
  [[nodiscard]] Strong<NSArray> keyPaths() const { return keyPaths_; }
  [[nodiscard]] std::uint64_t options() const { return options_; }
  [[nodiscard]] Action action() const { return action_; }
  void setObserver(NSObject* observer) { set<"observer">(observer); }
  void setObject(NSObject* object) { set<"object">(object); }
  /// Keeps a copy.
  void setKeyPaths(NSArray* keyPaths) { set<"keyPaths">(keyPaths); }
  void setOptions(std::uint64_t options) { set<"options">(options); }
  /// Throws: NSException (InvalidArgument) for null.
  void setAction(const Action& action) { set<"action">(action); }

  /// The superclass's text, and a line each for the observer, the object and the key paths.
  [[nodiscard]] Strong<NSString> debugDescription() const final;

 private:
  Strong<KeyValueObservation> init(NSObject* observer, NSObject* object, NSArray* keyPaths, std::uint64_t options,
                                   const Action& action);
  void copyKeyPaths(NSArray* keyPaths);
  void copyAction(const Action& action);
  // What key-value observing sends, on the thread that made the change. Does nothing for another context, a null object
  // or an observer that is gone.
  void observe(NSString* keyPath, NSObject* object, NSDictionary* change, void* context);
  Strong<NSString> describe();

  Weak<NSObject> observer_;
  Strong<NSObject> object_;
  Strong<NSArray> keyPaths_;
  std::uint64_t options_ = 0;
  Action action_;

 public:
  using Members =
      List<HeldMethod<"initWithObserver:object:keyPaths:options:action:", &KeyValueObservation::init>,
           HeldMethod<"observeValueForKeyPath:ofObject:change:context:", &KeyValueObservation::observe>,
           HeldMethod<"debugDescription", &KeyValueObservation::describe>,
           Property<"observer", &KeyValueObservation::observer_>, Property<"object", &KeyValueObservation::object_>,
           Method<"keyPaths", &KeyValueObservation::keyPaths>,
           HeldMethod<"setKeyPaths:", &KeyValueObservation::copyKeyPaths>,
           Property<"options", &KeyValueObservation::options_>, Method<"action", &KeyValueObservation::action>,
           Method<"setAction:", &KeyValueObservation::copyAction>>;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<KeyValueObservation>();

/// Sets the five properties through their setters, in this order, registers for each key path with old and new values,
/// and, unless the options skip it, calls the action once on this thread: with the observer as given, null or not, and a
/// change that holds the kind 1 alone.
/// Result: the receiver. Nil: a null object or null key paths register nothing.
/// Throws: NSException (InvalidArgument) for a null action, before anything is registered; what `addObserver` throws for
/// the object or a key path, with nothing left registered; what the action throws.
template <>
struct platform::Message<KeyValueObservation, "initWithObserver:object:keyPaths:options:action:">
    : Signature<Strong<Self>(NSObject*, NSObject*, NSArray*, std::uint64_t, const KeyValueObservation::Action&)> {};

}  // namespace havrin
