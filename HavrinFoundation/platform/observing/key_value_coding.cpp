// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/key_value_coding.h>

#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/object.h>
#include <HavrinFoundation/platform/observing/key_rows.h>

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

namespace {

// The receiver as the getters and setters take it.
NSObject* receiver(const NSObject* self) { return const_cast<NSObject*>(self); }

ClassObject* classAsIs(const NSObject* self) { return dispatchClass(self); }

KeyRows rowsOf(const NSObject* self, const NSString& key) {
  const ClassObject* shown = classAsIs(self)->shown();
  return withText(key, [shown](std::string_view text) { return rowsForKey(*shown, text); });
}

std::string nameOfType(const std::type_info& type) {
  const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, nullptr),
                                                    std::free);
  return name ? name.get() : type.name();
}

[[noreturn]] void throwUndefined(const NSObject& self, const NSString* key, const char* selector,
                                 const MethodRow* KeyRows::*method) {
  const Class cls = classOf(self);
  const MethodRow* unboxable = key ? unboxableRowsForKey(*cls.object(), utf8(*key)).*method : nullptr;
  throw NSException(NSUndefinedKeyException,
                    "-[" + std::string(cls.name()) + " " + selector + "]: " +
                        (unboxable ? "the method \"" + std::string(unboxable->selector->name) +
                                         "\" has a type that cannot be boxed, " +
                                         nameOfType(*unboxable->signature->type) + ", for the key "
                                   : "the class has no method for the key ") +
                        (key ? "\"" + utf8(*key) + "\"" : "(null)"));
}

bool isOneKey(const NSString& path) {
  if (path.isPlain() && !path.isWide()) return path.narrow().find('.') == std::string_view::npos;
  return utf16(path).find(u'.') == std::u16string::npos;
}

}  // namespace

Strong<NSObject> NSObject::valueForKey(NSString* key) const {
  requireKey(*this, key, "valueForKey:");
  const MethodRow* row = rowsOf(this, *key).getter;
  if (!row) return valueForUndefinedKey(key);
  const Strong<NSObject> hold(receiver(this));
  return row->signature->call(classAsIs(this)->implementation(*row), receiver(this), nullptr);
}

void NSObject::setValueForKey(NSObject* value, NSString* key) {
  requireKey(*this, key, "setValue:forKey:");
  const MethodRow* row = rowsOf(this, *key).setter;
  if (!row) return setValueForUndefinedKey(value, key);
  if (!value && !row->signature->takesNull) return setNilValueForKey(key);
  const Strong<NSObject> hold(this);
  const Strong<NSObject> holdValue(value);
  row->signature->call(classAsIs(this)->implementation(*row), this, &value);
}

Strong<NSObject> NSObject::valueForKeyPath(NSString* path) const {
  requireKey(*this, path, "valueForKeyPath:");
  if (isOneKey(*path)) return valueForKey(path);
  Strong<NSObject> value(receiver(this));
  for (const Strong<NSString>& key : keysOfPath(*path)) {
    if (!value) return nullptr;
    value = value->valueForKey(key);
  }
  return value;
}

void NSObject::setValueForKeyPath(NSObject* value, NSString* path) {
  requireKey(*this, path, "setValue:forKeyPath:");
  const std::vector<Strong<NSString>> keys = keysOfPath(*path);
  Strong<NSObject> target(this);
  for (std::size_t i = 0; target && i + 1 < keys.size(); ++i) target = target->valueForKey(keys[i]);
  if (target) target->setValueForKey(value, keys.back());
}

Strong<NSObject> NSObject::valueForUndefinedKey(NSString* key) const {
  throwUndefined(*this, key, "valueForUndefinedKey:", &KeyRows::getter);
}

void NSObject::setValueForUndefinedKey(NSObject*, NSString* key) {
  throwUndefined(*this, key, "setValue:forUndefinedKey:", &KeyRows::setter);
}

void NSObject::setNilValueForKey(NSString* key) {
  throw NSException(NSInvalidArgumentException, "-[" + std::string(classOf(*this).name()) +
                                                    " setNilValueForKey:]: null for the number under the key " +
                                                    (key ? "\"" + utf8(*key) + "\"" : "(null)"));
}

}  // namespace platform
}  // namespace havrin
