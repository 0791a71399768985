// A keyed archive that is being read: its objects by number, made when they are first asked for. Internal to archives/.
#pragma once

#include <HavrinFoundation/platform/archives/archive_limits.h>
#include <HavrinFoundation/platform/archives/archive_objects.h>
#include <HavrinFoundation/platform/archives/archived_classes.h>
#include <HavrinFoundation/platform/archives/keyed_archive.h>
#include <HavrinFoundation/platform/archives/keyed_unarchiver.h>
#include <HavrinFoundation/platform/foundation/set.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace havrin {
inline namespace platform {

class NSAttributedString;

class ArchiveReader {
 public:
  ArchiveReader(NSKeyedUnarchiver& coder, std::unique_ptr<KeyedArchive> archive);
  ArchiveReader(const ArchiveReader&) = delete;
  ArchiveReader& operator=(const ArchiveReader&) = delete;

  // Values of the object that is being read; outside of any, of the top. After a failure all are absent.

  [[nodiscard]] bool contains(std::string_view key);
  /// The value under `key`, as it stands. Empty when: there is none, or it cannot be read, which is a failure.
  [[nodiscard]] std::optional<BinaryObject> value(std::string_view key);
  /// The value of one kind. Empty when: there is none. A failure when: it is of another.
  [[nodiscard]] std::optional<BinaryObject> value(std::string_view key, BinaryObject::Kind kind);
  /// The object that the value under `key` refers to, borrowed from the reader. Null when: there is none.
  [[nodiscard]] NSObject* object(std::string_view key);
  [[nodiscard]] NSObject* objectOfClasses(std::string_view key, const AllowedClasses& allowed);
  /// The same, of the layer's own classes and those that may come anyway.
  [[nodiscard]] NSObject* objectOfLayersOwn(std::string_view key) {
    return objectOfClasses(key, allowedAndLayersOwn());
  }
  /// The object under `key` as a Type. A failure when: it is none, or null.
  template <class Type>
  [[nodiscard]] Type* object(std::string_view key) {
    Type* const found = cast<Type>(objectOfClasses(key, {.cls = classOf<Type>()}));
    if (!found) failWithValue(key, typeName<Type>());
    return found;
  }

  // Rows of objects: archive_rows.cpp.

  using Objects = std::vector<NSObject*>;
  /// What a row is for: keys are copied, and members and keys are found by equality.
  enum class Use { inOrder, members, keys };
  /// Appends the objects that the array under `key` refers to, and answers true; false after a failure, null among them
  /// included.
  [[nodiscard]] bool objects(std::string_view key, Use use, Objects& row);
  /// The same for members, one value each under "<prefix>0", "<prefix>1" and so on, up to a number that is not there.
  [[nodiscard]] bool numberedObjects(std::string_view prefix, Objects& row);

  struct Part {
    NSObject* object;
    std::uint64_t work;  // what comparing it takes
  };
  /// The parts of an array that has been made, from its own values. Empty when: an object of the application answered it.
  [[nodiscard]] std::vector<Part> partsOf(std::string_view key);

  /// Counts `bytes` of what is made. Result: false, and a failure, when that is out of all proportion to the archive.
  bool charge(std::uint64_t bytes) { return isWithinBounds(budget_.takeRoom(bytes)); }
  /// The same for work: parts that are hashed or compared.
  bool chargeWork(std::uint64_t parts) { return isWithinBounds(budget_.takeWork(parts)); }
  /// Adds to what walks over the object that is being read will take. Result: false, and a failure, when that is too much.
  bool addExtent(std::uint64_t work) { return !frame_->isBounded || isWithinBounds(frame_->extent.add(work)); }
  [[nodiscard]] bool hasFailed() const { return coder_.hasFailed(); }
  /// Whether an object is being read: the reader is needed still.
  [[nodiscard]] bool isInside() const { return depth_ != 0; }
  /// A failure of the object that is being read.
  void fail(std::string_view reason);
  void failWithValue(std::string_view key, std::string_view wanted);

 private:
  using Slot = ArchiveObjects::Slot;
  using ArchivedClassEntry = ArchiveObjects::ClassEntry;
  static constexpr std::uint8_t kOthers = ArchiveObjects::kOthers;

  /// A name from outside, as errors quote it.
  [[nodiscard]] static std::string quoted(std::string_view name);

  // The object that is being read.
  struct Frame {
    BinaryObject values;     // a dictionary
    std::uint64_t uid = 0;   // 0: the top
    std::uint64_t next = 0;  // where the search for the next key begins: mostly they are read in their order
    // The top and the objects of the application are one part: how they are compared is their own affair.
    ArchivedExtent extent;
    bool isBounded = false;
  };
  class Nested;

  [[nodiscard]] NSObject* objectWithUid(std::uint64_t uid);
  [[nodiscard]] bool makeObject(std::uint64_t uid);
  [[nodiscard]] Strong<NSObject> makePlain(const BinaryObject& object);
  [[nodiscard]] bool makeInstance(std::uint64_t uid, const BinaryObject& values);
  [[nodiscard]] Strong<NSObject> makeOwn(Slot& slot, const ArchivedClassEntry& entry);
  [[nodiscard]] const ArchivedClassEntry* classEntry(std::uint64_t uid);
  [[nodiscard]] std::optional<ArchivedClassEntry> resolve(const BinaryObject& record);
  [[nodiscard]] static std::optional<ArchivedClassEntry> entryForName(std::string_view name);
  // Which classes may come: archive_permissions.cpp.
  class Allowing;
  [[nodiscard]] AllowedClasses allowedAndLayersOwn() const {
    return {.cls = allowed_.cls, .classes = allowed_.classes, .layersOwn = true};
  }
  [[nodiscard]] bool permits(const ClassObject* cls);
  [[nodiscard]] bool permitsAgain(const Slot& slot);
  [[nodiscard]] bool permitsParts(NSObject* object, std::size_t depth);
  [[nodiscard]] bool permitsAttributes(const NSAttributedString& text, std::size_t depth);
  [[nodiscard]] std::uint8_t numberOf(const AllowedClasses& allowed);
  [[nodiscard]] bool isWithinBounds(const Decoded<void>& outcome) {
    if (outcome) [[likely]]
      return true;
    fail(outcome.error());
    return false;
  }
  [[gnu::cold]] void fail(const DecodingError& error) { fail(error.detail()); }

  [[nodiscard]] bool add(std::uint64_t number, Use use, Objects& row, std::vector<SoughtObject>& sought);
  [[nodiscard]] bool chargeSearch(std::vector<SoughtObject>& sought);

  NSKeyedUnarchiver& coder_;
  std::unique_ptr<KeyedArchive> archive_;
  Frame top_{.values = archive_->top(), .extent = {}};
  Frame* frame_ = &top_;
  std::size_t depth_ = 0;
  std::uint64_t nextClassKey_ = 0;
  AllowedClasses allowed_;
  std::uint8_t allowedNumber_ = kOthers;
  std::vector<AllowedClasses> allowedBefore_;  // what may have come for some object; the sets stand in the other
  std::vector<Strong<NSSet>> allowedSets_;
  ArchiveObjects objects_;
  ArchiveBudget budget_;
};

}  // namespace platform
}  // namespace havrin
