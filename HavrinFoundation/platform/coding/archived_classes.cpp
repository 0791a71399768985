#include <HavrinFoundation/platform/coding/archived_classes.h>

#include <HavrinFoundation/platform/coding/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <limits>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace havrin::inline platform {
namespace {

// The classes that programs have named. Never destroyed: threads may read archives until the process ends.
struct NamedClasses {
  std::shared_mutex lock;
  std::map<std::string, Class, std::less<>> byName;
  std::unordered_map<const ClassObject*, std::string> firstNames;

  static NamedClasses& shared() {
    static NamedClasses* const kNamed = new NamedClasses;
    return *kNamed;
  }
};

}  // namespace

void NSKeyedUnarchiver::setClass(Class cls, std::string_view name) {
  if (name.empty())
    throw NSException(NSInvalidArgumentException, "+[NSKeyedUnarchiver setClass:forClassName:]: no name");
  NamedClasses& named = NamedClasses::shared();
  const std::unique_lock guard(named.lock);
  if (cls) {
    named.byName.insert_or_assign(std::string(name), cls);
    named.firstNames.try_emplace(cls.object(), name);
  } else if (const auto found = named.byName.find(name); found != named.byName.end()) {
    const auto first = named.firstNames.find(found->second.object());
    if (first != named.firstNames.end() && first->second == name) named.firstNames.erase(first);
    named.byName.erase(found);
  }
}

Class NSKeyedUnarchiver::classForName(std::string_view name) {
  NamedClasses& named = NamedClasses::shared();
  {
    const std::shared_lock guard(named.lock);
    if (const auto found = named.byName.find(name); found != named.byName.end()) return found->second;
  }
  const ArchivedForm* const form = archivedFormForName(name);
  return form ? Class(form->cls()) : Class();
}

std::optional<std::string> archivedNameForClass(Class cls) {
  NamedClasses& named = NamedClasses::shared();
  const std::shared_lock guard(named.lock);
  const auto found = named.firstNames.find(cls.object());
  return found == named.firstNames.end() ? std::nullopt : std::optional(found->second);
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

std::string_view ArchivedExtent::add(const ArchivedExtent& part) noexcept {
  height = std::max<std::uint16_t>(height, static_cast<std::uint16_t>(part.height + 1));
  if (height > NSKeyedUnarchiver::kDeepestNesting) return "objects nest too deep";
  return add(part.expansion);
}

std::string_view ArchivedExtent::add(std::uint64_t work) noexcept {
  if (work > NSKeyedUnarchiver::kLargestExpansion - expansion) return "shared parts that stand for too much";
  expansion += static_cast<std::uint32_t>(work);
  return {};
}

ArchivedExtent ArchivedExtent::ofText(std::uint64_t units) noexcept {
  return {.expansion = static_cast<std::uint32_t>(std::min(1 + units / 8, NSKeyedUnarchiver::kLargestExpansion))};
}

ArchivedExtent ArchivedExtent::ofData(std::uint64_t bytes) noexcept { return ofText(bytes / 32); }

}  // namespace havrin::inline platform
