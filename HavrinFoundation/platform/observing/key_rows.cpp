// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/key_rows.h>

#include <HavrinFoundation/platform/object/argument_errors.h>
#include <HavrinFoundation/platform/object/boxing.h>
#include <HavrinFoundation/platform/object/protocol.h>
#include <HavrinFoundation/platform/observing/class_key_cache.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>

#include <array>
#include <span>
#include <utility>

namespace havrin {
inline namespace platform {

namespace {

// Never destroyed: late threads may still ask.
ClassKeyCache<KeyRows>& rowsCache() {
  static auto* const kCache = new ClassKeyCache<KeyRows>;
  return *kCache;
}

// The methods that may answer a key, the preferred one first.
std::array<std::string, 4> getterNames(std::string_view key) {
  const std::string name(key);
  const std::string capital = capitalised(key);
  return {"get" + capital, name, "is" + capital, "_" + name};
}
std::array<std::string, 2> setterNames(std::string_view key) { return {setterName(key), "_" + setterName(key)}; }

using ReadNumber = decltype(KeyRows::readNumber);

// The function that calls a getter of this type, if it is one that returns a number of the list.
template <class... Numbers>
ReadNumber readerOf(const std::type_info& type) {
  ReadNumber found = nullptr;
  const auto offer = [&](const std::type_info& candidate, ReadNumber read) {
    if (detail::isSameType(type, candidate)) found = read;
  };
  (offer(typeid(Numbers()),
         [](Implementation getter, NSObject* self) {
           return KeyedValue::number(reinterpret_cast<Numbers (*)(NSObject*)>(getter)(self));
         }),
   ...);
  return found;
}

bool isLeftToRoot(const ClassObject& cls, Selector selector) {
  return cls.row(selector) == classObject<NSObject>()->row(selector);
}

KeyRows findRows(const ClassObject& cls, std::string_view key) {
  KeyRows rows;
  for (const std::string& name : getterNames(key)) {
    rows.getter = callableRow(cls, name, 0);
    if (rows.getter) break;
  }
  for (const std::string& name : setterNames(key)) {
    rows.setter = callableRow(cls, name, 1);
    if (rows.setter) break;
  }
  if (rows.getter)
    rows.readNumber = readerOf<bool, int, std::int64_t, std::uint64_t, double>(*rows.getter->signature->type);
  rows.isLeftToRoot = isLeftToRoot(cls, selector<"valueForKey:">) && isLeftToRoot(cls, selector<"valueForKeyPath:">);
  return rows;
}

const MethodRow* unboxableRow(const ClassObject& cls, std::span<const std::string> names, std::size_t arguments) {
  for (const std::string& name : names) {
    const MethodRow* row = cls.row(Selector::known(name));
    if (row && !row->signature->call && row->signature->argumentCount == arguments) return row;
  }
  return nullptr;
}

}  // namespace

const MethodRow* callableRow(const ClassObject& cls, std::string_view name, std::size_t arguments) {
  const MethodRow* row = cls.row(Selector::known(name));
  if (!row || !row->signature->call || row->signature->argumentCount != arguments) return nullptr;
  return arguments == 0 && detail::isSameType(*row->signature->type, typeid(void())) ? nullptr : row;
}

std::string capitalised(std::string_view key) {
  std::string text(key);
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 32);
  return text;
}

std::string setterName(std::string_view key) { return "set" + capitalised(key) + ":"; }

const KnownRows* knownRowsForKey(const ClassObject& shown, std::string_view key) {
  const std::uint64_t changes = methodChanges();
  if (const KnownRows* known = rowsCache().find(shown, key, changes)) return known;
  const KeyRows rows = findRows(shown, key);
  return rows.getter || rows.setter ? rowsCache().keep(shown, key, changes, rows) : nullptr;
}

KeyedValue readPath(NSObject& self, NSString& path, const KnownRows* known) {
  const ClassObject& dispatch = *dispatchClass(&self);
  if (!known || !known->isGoodFor(methodChanges())) {
    known = withText(path, [&](std::string_view text) { return knownRowsForKey(*dispatch.shown(), text); });
  }
  if (!known || !known->value().getter || !known->value().isLeftToRoot) return send<"valueForKeyPath:">(self, &path);
  const KeyRows& rows = known->value();
  const Implementation getter = dispatch.implementation(*rows.getter);
  return rows.readNumber ? rows.readNumber(getter, &self) : rows.getter->signature->call(getter, &self, nullptr);
}

KeyRows unboxableRowsForKey(const ClassObject& shown, std::string_view key) {
  return {unboxableRow(shown, getterNames(key), 0), unboxableRow(shown, setterNames(key), 1)};
}

Strong<NSString> plainString(NSString& text) {
  if (classOf(text) == classOf<NSString>()) return &text;
  return makeString(utf16(text));
}

KeyPath::KeyPath(NSString& path) : text_(plainString(path)) {
  const auto split = [this](auto units) {
    if (units.find('.') == units.npos) return;
    for (std::size_t from = 0; from <= units.size();) {
      const std::size_t to = std::min(units.find('.', from), units.size());
      several_.push_back(makeString(units.substr(from, to - from)));
      from = to + 1;
    }
  };
  text_->isWide() ? split(text_->wide()) : split(text_->narrow());
}

void requireKey(const NSObject& self, const NSString* key, std::string_view selector) {
  if (!key) throwNullArgument(self, selector, "key");
}

}  // namespace platform
}  // namespace havrin
