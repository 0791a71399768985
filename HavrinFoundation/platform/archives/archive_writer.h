// SPDX-License-Identifier: Apache-2.0
// The encoder of a keyed archive; keyed_archive.h describes the format. Internal to archives/.
#pragma once

#include <HavrinFoundation/platform/archives/archive_limits.h>
#include <HavrinFoundation/platform/archives/archived_classes.h>
#include <HavrinFoundation/platform/archives/keyed_archiver.h>
#include <HavrinFoundation/platform/documents/binary_property_list_writer.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace havrin {
inline namespace platform {

class ArchiveWriter {
 public:
  using Number = BinaryPropertyListWriter::Number;

  explicit ArchiveWriter(NSKeyedArchiver& coder);
  ArchiveWriter(const ArchiveWriter&) = delete;
  ArchiveWriter& operator=(const ArchiveWriter&) = delete;

  // Values are added to the object that is being encoded; to "$top" if there is none.

  /// The list under construction, for values.
  [[nodiscard]] BinaryPropertyListWriter& list() { return list_; }
  /// Adds a value under `key`, and its work to the extent. A failure when: the key has a value already.
  void add(std::string_view key, Number value, std::uint64_t work = 0);
  /// Adds a reference to `object` and encodes the object if it is new.
  void addObject(std::string_view key, const NSObject* object);
  /// Adds an array of references.
  void addObjects(std::string_view key, std::span<const Strong<NSObject>> objects);
  /// Adds the cost of hashing and comparing set members or keys; `partSize` is the memory for each part of a key.
  void addSearch(std::span<const Strong<NSObject>> parts, std::uint64_t partSize = 0);

  // The costs that the reader will count, so that an archive that it would refuse is not written.

  /// The expansion of a part that has been added.
  [[nodiscard]] std::uint64_t workOf(const NSObject* part) const { return written_[uids_.at(part)].extent.expansion; }
  /// Adds to the extent of the object that is being encoded.
  void addExtent(std::uint64_t work);
  /// Adds to the memory and the work of decoding the archive.
  void charge(std::uint64_t bytes) { room_ += bytes; }
  void chargeWork(std::uint64_t parts) { work_ += parts; }

  /// Stores the object as the plain `value` instead of a dictionary.
  void setPlain(Number value, const ArchivedExtent& extent = {});

  /// Whether an object is being encoded, possibly by code of the application.
  [[nodiscard]] bool isWriting() const { return depth_ > 0; }
  void fail(std::string_view reason);
  [[nodiscard]] bool hasFailed() const { return coder_.hasFailed(); }

  /// The archive of the values added so far. Check hasFailed() afterwards: exceeding the budget is a failure.
  [[nodiscard]] std::vector<std::byte> finish();

 private:
  struct Written {
    Strong<NSObject> object;  // retained, so that its address is not reused while it is a key of uids_
    Number number = 0;
    ArchivedExtent extent;
    bool isOpen = false;   // its values are being added
    bool isPlain = false;  // `number` is the object itself
  };
  struct Frame {
    std::uint64_t uid = 0;
    std::vector<Number> keys = {};
    std::vector<Number> values = {};
    ArchivedExtent extent = {};
    bool isBounded = false;                // false for "$top" and objects of the application
    std::unordered_set<Number> many = {};  // the keys again, if there are many

    // Whether the key has a value. If not, the caller adds one.
    [[nodiscard]] bool has(Number key);
  };
  // How objects of a class are encoded.
  struct Plan {
    const ArchivedForm* form = nullptr;  // null for classes of the application
    std::string name;
    std::string refusal;         // the error, if they cannot be encoded
    std::uint64_t classUid = 0;  // 0 until the record is written
  };
  class Nested;

  [[nodiscard]] std::uint64_t uidOf(const NSObject* object);
  void write(std::uint64_t uid, const NSObject& object);
  void encode(const NSObject& object, const Plan& plan);
  [[nodiscard]] Plan& planFor(ClassObject* cls);
  [[nodiscard]] Plan makePlan(ClassObject* cls) const;
  [[nodiscard]] std::uint64_t classUid(Plan& plan, ClassObject* cls);
  [[nodiscard]] Number reference(std::uint64_t uid) { return list_.uid(uid); }

  NSKeyedArchiver& coder_;
  BinaryPropertyListWriter list_;
  Frame frame_;
  std::size_t depth_ = 0;
  std::uint64_t room_ = 0;
  std::uint64_t work_ = 0;
  Number root_;
  Number objects_;  // of all UIDs
  Number top_;
  std::vector<Written> written_;  // by UID
  std::unordered_map<const NSObject*, std::uint64_t> uids_;
  std::unordered_map<const ClassObject*, Plan> plans_;
};

}  // namespace platform
}  // namespace havrin
