// SPDX-License-Identifier: Apache-2.0
// The decoder of a keyed archive. Objects are made when they are first decoded. Internal to archives/.
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

  // Values of the object that is being decoded; of "$top" if there is none. After a failure all values are absent.

  [[nodiscard]] bool contains(std::string_view key);
  /// The raw value under `key`. Empty when: there is none, or it cannot be read, which is a failure.
  [[nodiscard]] std::optional<BinaryObject> value(std::string_view key);
  /// The value under `key`, which must be of `kind`. Empty when: there is none. A failure when: it is of another kind.
  [[nodiscard]] std::optional<BinaryObject> value(std::string_view key, BinaryObject::Kind kind);
  /// The object that the value under `key` refers to, owned by the reader. Null when: there is none.
  [[nodiscard]] NSObject* object(std::string_view key);
  [[nodiscard]] NSObject* objectOfClasses(std::string_view key, const AllowedClasses& allowed);
  /// The same, allowing the layer's own classes in addition to the classes allowed now.
  [[nodiscard]] NSObject* objectOfLayersOwn(std::string_view key) {
    return objectOfClasses(key, allowedAndLayersOwn());
  }
  /// The object under `key` as a Type. A failure when: it is missing, null, or of another class.
  template <class Type>
  [[nodiscard]] Type* object(std::string_view key) {
    NSObject* const found = objectOfClasses(key, {.cls = classOf<Type>()});
    Type* const typed = cast<Type>(found);
    if (!typed) failWithValue(key, typeName<Type>(), found ? classOf(*found).name() : "no object");
    return typed;
  }

  // Arrays of objects, for collections: archive_rows.cpp.

  using Objects = std::vector<NSObject*>;
  /// The use of a row, which determines its cost: keys are copied; members and keys are hashed and compared.
  enum class Use { inOrder, members, keys };
  /// Appends the objects that the array under `key` refers to. Result: false after a failure; null elements are one.
  [[nodiscard]] bool objects(std::string_view key, Use use, Objects& row);
  /// The same for set members stored under the keys "<prefix>0", "<prefix>1" and so on.
  [[nodiscard]] bool numberedObjects(std::string_view prefix, Objects& row);

  struct Part {
    NSObject* object;
    std::uint64_t work;  // the cost of comparing it
  };
  /// The elements of a decoded array. Empty when: the array was replaced by an object of the application.
  [[nodiscard]] std::vector<Part> partsOf(std::string_view key);

  /// Counts `bytes` of memory. Result: false, with a failure, if that exceeds the budget of the archive.
  bool charge(std::uint64_t bytes) { return isWithinBounds(budget_.takeRoom(bytes)); }
  /// Counts `parts` that are hashed or compared, likewise.
  bool chargeWork(std::uint64_t parts) { return isWithinBounds(budget_.takeWork(parts)); }
  /// Adds to the extent of the object that is being decoded. Result: false, with a failure, if that exceeds the limit.
  bool addExtent(std::uint64_t work) { return !frame_->isBounded || isWithinBounds(frame_->extent.add(work)); }
  [[nodiscard]] bool hasFailed() const { return coder_.hasFailed(); }
  /// Whether an object is being decoded, so that the reader must not be destroyed.
  [[nodiscard]] bool isInside() const { return depth_ != 0; }
  /// Records a failure of the object that is being decoded. Only the first failure is kept.
  void fail(std::string_view reason);
  /// "expected <wanted>, got <got> (key "<key>")"
  void failWithValue(std::string_view key, std::string_view wanted, std::string_view got);

 private:
  using Slot = ArchiveObjects::Slot;
  using ArchivedClassEntry = ArchiveObjects::ClassEntry;
  static constexpr std::uint8_t kOthers = ArchiveObjects::kOthers;

  /// An untrusted name in quotes, cut to 80 bytes.
  [[nodiscard]] static std::string quoted(std::string_view name);

  // The object that is being decoded.
  struct Frame {
    BinaryObject values;     // a dictionary
    std::uint64_t uid = 0;   // 0: the top
    std::uint64_t next = 0;  // where the search for the next key begins: keys are mostly decoded in their order
    // "$top" and objects of the application count as one part: the cost of comparing them is up to the application.
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
  // Secure coding, the check of allowed classes: archive_permissions.cpp.
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
  std::vector<AllowedClasses> allowedBefore_;  // by number; their sets are owned by allowedSets_
  std::vector<Strong<NSSet>> allowedSets_;
  ArchiveObjects objects_;
  ArchiveBudget budget_;
};

}  // namespace platform
}  // namespace havrin
