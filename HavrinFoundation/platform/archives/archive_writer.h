// A keyed archive that is being written: archive_reader.h tells the form. Internal to archives/.
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

  // What is added goes to the object that is being written; outside of any, to the top.

  /// The list under construction, for values.
  [[nodiscard]] BinaryPropertyListWriter& list() { return list_; }
  /// Adds a value under `key`, and what walking over it takes. A failure when: there is one.
  void add(std::string_view key, Number value, std::uint64_t work = 0);
  /// Adds a reference to `object`, which is written when it has not been.
  void addObject(std::string_view key, const NSObject* object);
  /// Adds an array of references.
  void addObjects(std::string_view key, std::span<const Strong<NSObject>> objects);
  /// Adds what telling these parts apart takes, which stand in a set, or are keys, of whose parts each takes `partSize`.
  void addSearch(std::span<const Strong<NSObject>> parts, std::uint64_t partSize = 0);

  // Reading counts what it takes; what would be too much is not written.

  /// What walking over a part takes that has been added.
  [[nodiscard]] std::uint64_t workOf(const NSObject* part) const { return written_[uids_.at(part)].extent.expansion; }
  /// Adds to what walking over the object that is being written takes.
  void addExtent(std::uint64_t work);
  /// Adds to what reading the archive takes: memory, and work.
  void charge(std::uint64_t bytes) { room_ += bytes; }
  void chargeWork(std::uint64_t parts) { work_ += parts; }

  /// Says that the object is this value, and no dictionary.
  void setPlain(Number value, const ArchivedExtent& extent = {});

  /// Whether an object is being written: code of the application may be running in the middle of it.
  [[nodiscard]] bool isWriting() const { return depth_ > 0; }
  void fail(std::string_view reason);
  [[nodiscard]] bool hasFailed() const { return coder_.hasFailed(); }

  /// The archive of what has been added. Not to be used after a failure, which it may be itself.
  [[nodiscard]] std::vector<std::byte> finish();

 private:
  struct Written {
    Strong<NSObject> object;  // held, so that no other comes to its address
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
    bool isBounded = false;                // neither the top nor an object of the application
    std::unordered_set<Number> many = {};  // the keys again, when they are

    // Whether there is a value under the key, which is added next where there is none.
    [[nodiscard]] bool has(Number key);
  };
  // How objects of a class are written.
  struct Plan {
    const ArchivedForm* form = nullptr;  // null for classes of the application
    std::string name;
    std::string refusal;         // why they are not
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
