// SPDX-License-Identifier: Apache-2.0
// The objects decoded from an archive so far, by UID. Internal to archives/.
#pragma once

#include <HavrinFoundation/platform/archives/archive_limits.h>
#include <HavrinFoundation/platform/archives/archived_classes.h>
#include <HavrinFoundation/platform/object/reference.h>

#include <cstdint>
#include <vector>

namespace havrin {
inline namespace platform {

class ArchiveObjects {
 public:
  static constexpr std::uint8_t kOthers = 255;  // any set of allowed classes beyond the first 255

  /// An object: unread until it is decoded for the first time, open while its values are being decoded.
  struct Slot {
    enum class State : std::uint8_t { unread, open, openToItself, made, classRecord };
    Strong<NSObject> object;
    ArchivedExtent extent;
    State state = State::unread;
    std::uint8_t allowed = kOthers;  // the number of the classes allowed when it was made
    std::uint32_t classIndex = 0;    // of a class record
  };
  /// The class named by a class record.
  struct ClassEntry {
    ClassObject* cls = nullptr;
    const ArchivedForm* form = nullptr;  // null for classes of the application
    bool awakes = false;
  };

  explicit ArchiveObjects(std::uint64_t count) : slots_(count) {}

  [[nodiscard]] std::uint64_t count() const { return slots_.size(); }
  [[nodiscard]] Slot& operator[](std::uint64_t uid) { return slots_[uid]; }

  /// The class of a class record. Null when: the slot is not a class record that has been read.
  [[nodiscard]] const ClassEntry* classIn(const Slot& slot) const {
    return slot.state == Slot::State::classRecord ? &classes_[slot.classIndex] : nullptr;
  }
  const ClassEntry* addClass(Slot& slot, const ClassEntry& entry) {
    slot.state = Slot::State::classRecord;
    slot.classIndex = static_cast<std::uint32_t>(classes_.size());
    return &classes_.emplace_back(entry);
  }

 private:
  std::vector<Slot> slots_;
  std::vector<ClassEntry> classes_;
};

}  // namespace platform
}  // namespace havrin
