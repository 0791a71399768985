// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/key_value_coding.h>

#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>
#include <HavrinFoundation/platform/observing/mutable_array_proxy.h>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

KeyRows rowsOf(const NSObject& self, const NSString& key) {
  const ClassObject* shown = dispatchClass(&self)->shown();
  return withText(key, [shown](std::string_view text) { return rowsForKey(*shown, text); });
}

// Calls the row with what the receiver's class has for it. The method may drop the last reference to the receiver.
Strong<NSObject> call(const MethodRow& row, NSObject& self, NSObject* const* arguments) {
  const Strong<NSObject> hold(&self);
  return row.signature->call(dispatchClass(&self)->implementation(row), &self, arguments);
}

std::string nameOfType(const std::type_info& type) {
  const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr),
                                                    std::free);
  return name ? name.get() : type.name();
}

[[noreturn]] void throwUndefined(const NSObject& self, const NSString* key, const char* selector,
                                 const MethodRow* KeyRows::*method) {
  const MethodRow* unboxable = key ? unboxableRowsForKey(*classOf(self).object(), utf8(*key)).*method : nullptr;
  throw NSException(NSUndefinedKeyException,
                    methodReason(self, selector,
                                 (unboxable ? "the method \"" + std::string(unboxable->selector->name) +
                                                  "\" has a type that cannot be boxed, " +
                                                  nameOfType(*unboxable->signature->type) + ", for the key "
                                            : "the class has no method for the key ") +
                                     (key ? "\"" + utf8(*key) + "\"" : "(null)")));
}

Strong<NSObject> valueForKey(NSObject& self, NSString* key) {
  requireKey(self, key, "valueForKey:");
  const MethodRow* row = rowsOf(self, *key).getter;
  return row ? call(*row, self, nullptr) : send<"valueForUndefinedKey:">(self, key);
}

// What observers' values are read by; a KeyPath would count its text.
bool isOneKey(const NSString& path) {
  return path.isPlain() && !path.isWide() && path.narrow().find('.') == std::string_view::npos;
}

void setValueForKey(NSObject& self, NSObject* value, NSString* key) {
  requireKey(self, key, "setValue:forKey:");
  const MethodRow* row = rowsOf(self, *key).setter;
  if (!row) return send<"setValue:forUndefinedKey:">(self, value, key);
  if (!value && !row->signature->takesNull) return send<"setNilValueForKey:">(self, key);
  // A number has been read before the setter runs.
  const Strong<NSObject> holdValue(row->signature->takesNull ? value : nullptr);
  call(*row, self, &value);
}

Strong<NSObject> valueForKeyPath(NSObject& self, NSString* path) {
  requireKey(self, path, "valueForKeyPath:");
  if (isOneKey(*path)) return send<"valueForKey:">(self, path);
  const KeyPath steps(*path);
  Strong<NSObject> value(&self);
  for (const Strong<NSString>& key : steps.keys()) value = send<"valueForKey:">(value, key);
  return value;
}

void setValueForKeyPath(NSObject& self, NSObject* value, NSString* path) {
  requireKey(self, path, "setValue:forKeyPath:");
  const KeyPath steps(*path);
  const auto keys = steps.keys();
  Strong<NSObject> target(&self);
  for (const Strong<NSString>& key : keys.first(keys.size() - 1)) target = send<"valueForKey:">(target, key);
  send<"setValue:forKey:">(target, value, keys.back());
}

Strong<NSObject> valueForUndefinedKey(NSObject& self, NSString* key) {
  throwUndefined(self, key, "valueForUndefinedKey:", &KeyRows::getter);
}

void setValueForUndefinedKey(NSObject& self, NSObject*, NSString* key) {
  throwUndefined(self, key, "setValue:forUndefinedKey:", &KeyRows::setter);
}

void setNilValueForKey(NSObject& self, NSString* key) {
  throw NSException(NSInvalidArgumentException,
                    methodReason(self, "setNilValueForKey:",
                                 "null for the number under the key " + (key ? "\"" + utf8(*key) + "\"" : "(null)")));
}

constexpr MethodRow kCodingRows[] = {
    unheldRow<NSObject, "valueForKey:", valueForKey>(),
    unheldRow<NSObject, "valueForKeyPath:", valueForKeyPath>(),
    unheldRow<NSObject, "setValue:forKey:", setValueForKey>(),
    unheldRow<NSObject, "setValue:forKeyPath:", setValueForKeyPath>(),
    unheldRow<NSObject, "mutableArrayValueForKey:", mutableArrayValueForKey>(),
    unheldRow<NSObject, "valueForUndefinedKey:", valueForUndefinedKey>(),
    unheldRow<NSObject, "setValue:forUndefinedKey:", setValueForUndefinedKey>(),
    unheldRow<NSObject, "setNilValueForKey:", setNilValueForKey>(),
};

Strong<NSObject> entry(NSDictionary& self, NSString* key) { return self.objectForKey(key); }

void setEntry(NSMutableDictionary& self, NSObject* value, NSString* key) {
  requireKey(self, key, "setValue:forKey:");
  send<"willChangeValueForKey:">(self, key);
  self.set(key, value);
  send<"didChangeValueForKey:">(self, key);
}

constexpr MethodRow kDictionaryRows[] = {unheldRow<NSDictionary, "valueForKey:", entry>()};
constexpr MethodRow kMutableDictionaryRows[] = {row<NSMutableDictionary, "setValue:forKey:", setEntry>()};

}  // namespace

extern constinit const Category kKeyValueCoding{classObject<NSObject>, "KeyValueCoding", kCodingRows, {}};
extern constinit const Category kDictionaryKeys{classObject<NSDictionary>, "KeyValueCoding", kDictionaryRows, {}};
extern constinit const Category kMutableDictionaryKeys{
    classObject<NSMutableDictionary>, "KeyValueCoding", kMutableDictionaryRows, {}};

}  // namespace platform
}  // namespace havrin
