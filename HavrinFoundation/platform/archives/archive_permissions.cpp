// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/archives/archive_reader.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/attributed_string.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/ordered_set.h>
#include <HavrinFoundation/platform/object/coding_protocols.h>

#include <utility>

// The check of classes under secure coding. An object is made once but may be decoded again with other classes allowed,
// so it is checked again then.

namespace havrin {
inline namespace platform {

// Sets the allowed classes for its lifetime.
class ArchiveReader::Allowing {
 public:
  Allowing(ArchiveReader& reader, const AllowedClasses& allowed)
      : reader_(reader),
        number_(std::exchange(reader.allowedNumber_, reader.numberOf(allowed))),
        allowed_(std::exchange(reader.allowed_, allowed)) {}
  Allowing(const Allowing&) = delete;
  Allowing& operator=(const Allowing&) = delete;
  ~Allowing() {
    reader_.allowed_ = allowed_;
    reader_.allowedNumber_ = number_;
  }

 private:
  ArchiveReader& reader_;
  std::uint8_t number_;
  AllowedClasses allowed_;
};

NSObject* ArchiveReader::objectOfClasses(std::string_view key, const AllowedClasses& allowed) {
  if (!coder_.requiresSecureCoding()) return object(key);
  const Allowing allowing(*this, allowed);
  return object(key);
}

bool ArchiveReader::permits(const ClassObject* cls) {
  if (!coder_.requiresSecureCoding()) return true;
  if (!allowed_.permits(cls)) {
    fail("class " + quoted(cls->name()) + " is not among the allowed classes");
  } else if (!cls->adopts(protocolOf<NSSecureCoding>())) {
    fail("class " + quoted(cls->name()) + " does not adopt NSSecureCoding");
  }
  return !hasFailed();
}

// The number of a set of allowed classes, which a slot stores so that decoding again with the same set skips the check.
std::uint8_t ArchiveReader::numberOf(const AllowedClasses& allowed) {
  for (std::size_t i = 0; i < allowedBefore_.size(); ++i) {
    const AllowedClasses& before = allowedBefore_[i];
    if (before.cls != allowed.cls || before.layersOwn != allowed.layersOwn) continue;
    if (before.classes ? before.classes->isEqual(allowed.classes) : !allowed.classes)
      return static_cast<std::uint8_t>(i);
  }
  if (allowedBefore_.size() == kOthers) return kOthers;
  AllowedClasses kept = allowed;
  if (allowed.classes) kept.classes = allowedSets_.emplace_back(cast<NSSet>(allowed.classes->copy())).get();
  allowedBefore_.push_back(kept);
  return static_cast<std::uint8_t>(allowedBefore_.size() - 1);
}

bool ArchiveReader::permitsAgain(const Slot& slot) {
  if (!coder_.requiresSecureCoding() || !slot.object) return true;
  if (!permits(dispatchClass(slot.object)->shown())) return false;
  if (slot.extent.height == 0 || (slot.allowed == allowedNumber_ && slot.allowed != kOthers)) return true;
  return permitsParts(slot.object, 0);
}

bool ArchiveReader::permitsParts(NSObject* object, std::size_t depth) {
  const auto all = [this, depth](const NSFastEnumeration* parts) {
    for (NSObject* const part : each(parts)) {
      if (!chargeWork(1) || !permits(dispatchClass(part)->shown()) || !permitsParts(part, depth + 1)) return false;
    }
    return true;
  };
  if (depth > NSKeyedUnarchiver::kDeepestNesting) {
    fail("objects are nested deeper than 1024 levels");
    return false;
  }
  if (const NSArray* const array = cast<NSArray>(object)) return all(array);
  if (const NSSet* const set = cast<NSSet>(object)) return all(set);
  if (const NSOrderedSet* const set = cast<NSOrderedSet>(object)) return all(set);
  if (const NSAttributedString* const text = cast<NSAttributedString>(object)) return permitsAttributes(*text, depth);
  const NSDictionary* const dictionary = cast<NSDictionary>(object);
  return !dictionary || (all(dictionary->allKeys()) && all(dictionary->allValues()));
}

// In attributes the layer's own classes are allowed, too.
bool ArchiveReader::permitsAttributes(const NSAttributedString& text, std::size_t depth) {
  const Allowing allowing(*this, allowedAndLayersOwn());
  for (std::uint64_t at = 0; at < text.length();) {
    const NSAttributedString::Run run = text.attributesAtIndex(at);
    if (!chargeWork(1) || !permitsParts(run.attributes, depth + 1)) return false;
    at = run.range.location + run.range.length;
  }
  return true;
}

}  // namespace platform
}  // namespace havrin
