// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/observing/key_facts.h>

#include <HavrinFoundation/platform/base/diagnosis.h>
#include <HavrinFoundation/platform/object/category.h>
#include <HavrinFoundation/platform/object/suggestion.h>
#include <HavrinFoundation/platform/observing/class_key_cache.h>
#include <HavrinFoundation/platform/observing/key_rows.h>
#include <HavrinFoundation/platform/observing/key_value_observing.h>

#include <string>

namespace havrin {
inline namespace platform {

namespace {

// The answer of the class method <name><Key>; null when the class has none.
Strong<NSObject> askForKey(ClassOf<NSObject> self, const char* name, const NSString& key) {
  ClassObject* meta = dispatchClass(self.object());
  const std::string selector = withText(key, [name](std::string_view text) { return name + capitalised(text); });
  const MethodRow* row = callableRow(*meta, selector, 0);
  return row ? row->signature->call(meta->implementation(*row), self, nullptr) : nullptr;
}

bool automatically(ClassOf<NSObject> self, NSString* key) {
  const Strong<NSObject> answer = askForKey(self, "automaticallyNotifiesObserversOf", *key);
  return !answer || unboxBoolean(answer);
}

Strong<NSSet> affecting(ClassOf<NSObject> self, NSString* key) {
  return checkedCast<NSSet>(askForKey(self, "keyPathsForValuesAffecting", *key));
}

constexpr MethodRow kClassRows[] = {
    classRow<NSObject, "automaticallyNotifiesObserversForKey:", automatically>(),
    classRow<NSObject, "keyPathsForValuesAffectingValueForKey:", affecting>(),
};
KeyFacts ask(const ClassObject& shown, NSString& key) {
  const ClassOf<NSObject> cls(&shown);
  KeyFacts facts{};
  facts.setter = withText(key, [](std::string_view text) { return Selector::known(setterName(text)); });
  facts.isAutomatic = send<"automaticallyNotifiesObserversForKey:">(cls, &key);
  if (const Strong<NSSet> paths = send<"keyPathsForValuesAffectingValueForKey:">(cls, &key); paths && paths->count()) {
    auto all = std::make_shared<KeyFacts::Paths>();
    for (NSObject* path : each(paths)) all->emplace_back(checkedReference<NSString>(path));
    facts.affecting = std::move(all);
  }
  return facts;
}

// A class that answers keys itself, as dictionaries do, may have any.
bool answersKeysItself(const ClassObject& shown) {
  const ClassObject* root = classObject<NSObject>();
  for (const Selector selector : {Selector(selector<"valueForKey:">), Selector(selector<"valueForUndefinedKey:">)}) {
    if (shown.row(selector) != root->row(selector)) return true;
  }
  return false;
}

// Never destroyed.
ClassKeyCache<KeyFacts>& cache() {
  static auto* const kCache = new ClassKeyCache<KeyFacts>;
  return *kCache;
}

}  // namespace

extern constinit const Category kDependentKeys{classObject<NSObject>, "DependentKeys", {}, kClassRows};

KeyFacts factsForKey(const ClassObject& shown, NSString& key) {
  return withText(key, [&](std::string_view text) {
    const std::uint64_t changes = methodChanges();
    if (const auto known = cache().find(shown, text, changes)) return known->value();
    KeyFacts facts = ask(shown, key);
    const KeyRows rows = rowsForKey(shown, text);
    if (rows.getter || rows.setter) {
      cache().keep(shown, text, changes, facts);
    } else if (diagnosing() && unboxableRowsForKey(shown, text) == KeyRows() && !answersKeysItself(shown)) {
      report(Finding::unknownKey, {shown.name(), text, suggestion(shown, text)});
    }
    return facts;
  });
}

}  // namespace platform
}  // namespace havrin
