// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archived_classes.h>

#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/base/shared_lock.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <map>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

// The registered classes. Never destroyed, because threads may decode archives until the process ends.
struct NamedClasses {
  struct Named {
    Class cls;
    std::uint64_t order;  // a class is encoded under the name with its lowest order
  };
  SharedLock lock;
  std::map<std::string, Named, std::less<>> byName HAVRIN_THREAD_SAFETY(guarded_by(lock));
  std::uint64_t count HAVRIN_THREAD_SAFETY(guarded_by(lock)) = 0;

  static NamedClasses& shared() {
    static NamedClasses* const kNamed = new NamedClasses;
    return *kNamed;
  }
};

}  // namespace

void NSKeyedUnarchiver::setClass(Class cls, std::string_view name) {
  if (name.empty())
    throw NSException(NSInvalidArgumentException, "+[NSKeyedUnarchiver setClass:forClassName:]: the name is empty");
  NamedClasses& named = NamedClasses::shared();
  const WriterGuard guard(named.lock);
  const auto found = named.byName.find(name);
  if (found != named.byName.end() && found->second.cls == cls) return;
  if (found != named.byName.end()) named.byName.erase(found);
  if (cls) named.byName.emplace(name, NamedClasses::Named{cls, ++named.count});
}

Class NSKeyedUnarchiver::classForName(std::string_view name) {
  NamedClasses& named = NamedClasses::shared();
  {
    const ReaderGuard guard(named.lock);
    if (const auto found = named.byName.find(name); found != named.byName.end()) return found->second.cls;
  }
  const ArchivedForm* const form = archivedFormForName(name);
  return form ? Class(form->cls()) : Class();
}

std::optional<std::string> archivedNameForClass(Class cls) {
  NamedClasses& named = NamedClasses::shared();
  const ReaderGuard guard(named.lock);
  const std::pair<const std::string, NamedClasses::Named>* first = nullptr;
  for (const auto& entry : named.byName) {
    if (entry.second.cls == cls && (!first || entry.second.order < first->second.order)) first = &entry;
  }
  return first ? std::optional(first->first) : std::nullopt;
}

Decoded<void> checkReadable(const ClassObject& cls) {
  if (!cls.adopts(protocolOf<NSCoding>())) return DecodingError::dataCorrupted("does not adopt NSCoding");
  if (!cls.row(selector<"initWithCoder:">)) return DecodingError::dataCorrupted("does not respond to initWithCoder:");
  return {};
}

bool AllowedClasses::permits(const ClassObject* given) const {
  if (cls && given->inheritsFrom(cls.object())) return true;
  if (layersOwn && archivedFormForClass(given)) return true;
  if (!classes) return false;
  for (NSObject* one : each(classes)) {
    const Class allowed = Class::from(one);
    if (allowed && given->inheritsFrom(allowed.object())) return true;
  }
  return false;
}

}  // namespace platform
}  // namespace havrin
