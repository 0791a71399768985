// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/observation/responder_observations_messages.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/association.h>
#include <HavrinFoundation/platform/object/category.h>

namespace havrin {

namespace {

using Action = KeyValueObservation::Action;

void observeKeyPaths(UIResponder& self, NSObject* model, NSArray* keyPaths, std::uint64_t options,
                     const Action& action) {
  send<"observeModel:forKeyPaths:options:action:">(self, model, keyPaths, options, action);
}

void observeKeyPath(UIResponder& self, NSObject* model, NSString* keyPath, std::uint64_t options,
                    const Action& action) {
  if (!keyPath) throwNullArgument(self, "observeModel:forKeyPath:options:action:", "key path");
  observeKeyPaths(self, model, makeArray({keyPath}), options, action);
}

void observeModelForKeyPath(UIResponder& self, NSObject* model, NSString* keyPath, const Action& action) {
  observeKeyPath(self, model, keyPath, 0, action);
}

void observeModelForKeyPaths(UIResponder& self, NSObject* model, NSArray* keyPaths, const Action& action) {
  observeKeyPaths(self, model, keyPaths, 0, action);
}

void observeModel(UIResponder& self, NSObject* model, NSArray* keyPaths, std::uint64_t options, const Action& action) {
  const Strong<KeyValueObservation> token = send<"initWithObserver:object:keyPaths:options:action:">(
      alloc<KeyValueObservation>(), &self, model, keyPaths, options, action);
  const Strong<NSArray> standing = send<"keyValueObservations">(self);
  // A new list, since the old one may be in use.
  const Strong<NSObject> copy = standing ? standing->mutableCopy() : make<NSMutableArray>();
  auto& longer = checkedReference<NSMutableArray>(copy);
  longer.addObject(token);
  send<"setKeyValueObservations:">(self, &longer);
}

Strong<NSArray> keyValueObservations(UIResponder& self) {
  const Strong<NSObject> list = associatedValue(self, selector<"keyValueObservations">);
  return Strong<NSArray>(static_cast<NSArray*>(list.get()));
}

void setKeyValueObservations(UIResponder& self, NSArray* observations) {
  setAssociatedValue(self, selector<"keyValueObservations">, observations);
}

constexpr MethodRow kRows[] = {
    row<UIResponder, "observeModel:forKeyPath:action:", observeModelForKeyPath>(),
    row<UIResponder, "observeModel:forKeyPaths:action:", observeModelForKeyPaths>(),
    row<UIResponder, "observeModel:forKeyPath:options:action:", observeKeyPath>(),
    row<UIResponder, "observeModel:forKeyPaths:options:action:", observeModel>(),
    row<UIResponder, "keyValueObservations", keyValueObservations>(),
    row<UIResponder, "setKeyValueObservations:", setKeyValueObservations>(),
};

}  // namespace

extern constinit const Category kResponderObservations;
constinit const Category kResponderObservations{classObject<UIResponder>, "KeyValueObservation", kRows, {}};

}  // namespace havrin
