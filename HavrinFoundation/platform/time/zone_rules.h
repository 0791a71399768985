// SPDX-License-Identifier: Apache-2.0
// The offsets of one zone as a sorted table: the arithmetic between instants and wall clocks. Internal.
//
//   offsetAt(0)                New York: -18000
//   wallTime(1710037800)       New York on 10 March 2024, 02:30: skipped; 01:30 EST and 03:30 EDT are nearest
//   startOfDay(1541354400)     Sao Paulo on 4 November 2018, noon: 1541300400, which is 01:00; there was no midnight
//
// A wall clock reading is counted as if it were UTC: `local` is the reading's seconds since 1970-01-01 00:00:00 of that
// wall clock. Instants and readings lie inside the calendars' range (see instant.h).
#pragma once

#include <HavrinFoundation/platform/time/civil.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace havrin {
inline namespace platform {

/// The instants at which a wall clock shows one reading.
struct WallTime {
  enum class Kind { unique, skipped, repeated };
  Kind kind;
  /// Repeated: the first of the two. Skipped: the reading taken by the clock as it is set after the gap.
  std::int64_t early;
  /// Repeated: the second. Skipped: the reading taken by the clock as it was before: moved forward by the gap.
  std::int64_t late;
  /// Skipped: the instant at which the clock jumped over the reading.
  std::int64_t jump;
};

class ZoneRules {
 public:
  /// A stretch of time with one offset, which reaches to the start of the next.
  struct Span {
    std::int64_t start;   // seconds since 1970
    std::int32_t offset;  // seconds east of Greenwich
    bool daylight;        // as the zone file has it: false in Dublin's summers, true in its winters
  };

  /// Greenwich, without a file.
  ZoneRules();

  /// The rules in the zone file at `path`, under the zone's name, which is empty for a file without one.
  /// Result: null when there is no such file, it is not a zone file, or an offset in it is over a day.
  [[nodiscard]] static std::unique_ptr<const ZoneRules> read(const std::string& path, std::string name);

  ZoneRules(const ZoneRules&) = delete;
  ZoneRules& operator=(const ZoneRules&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }

  /// Seconds east of Greenwich at `second`.
  /// Cost: two dependent loads between 1697 and 2242; a binary search elsewhere.
  [[nodiscard]] std::int64_t offsetAt(std::int64_t second) const { return spanAt(second).offset; }

  /// Whether the zone file calls the time at `second` daylight saving time.
  [[nodiscard]] bool isDaylightAt(std::int64_t second) const { return spanAt(second).daylight; }

  /// The number of the local day on which `second` falls, counted from 1970-01-01.
  [[nodiscard]] std::int64_t dayNumberAt(std::int64_t second) const {
    return floorDivide(second + offsetAt(second), kSecondsPerDay);
  }

  /// The instants at which the wall clock shows `local`.
  [[nodiscard]] WallTime wallTime(std::int64_t local) const;

  /// The first instant of the local day on which `second` falls.
  [[nodiscard]] std::int64_t startOfDay(std::int64_t second) const;

  /// The instant `days` later whose wall clock reading is that of `second`. A reading that occurs twice keeps the
  /// offset of `second` where it can; one that is skipped moves forward by the gap, or back by it where moving forward
  /// would undo the step (a skipped day, approached from behind).
  [[nodiscard]] std::int64_t addDays(std::int64_t second, std::int64_t days) const;

 private:
  // A window of 2^34 seconds is cut into buckets of 2^23 seconds (97 days); each knows the span at its start.
  static constexpr std::int64_t kWindowStart = -(std::int64_t{1} << 33);
  static constexpr std::int64_t kWindowSize = std::int64_t{1} << 34;
  static constexpr int kBucketShift = 23;
  static constexpr std::size_t kBuckets = kWindowSize >> kBucketShift;

  ZoneRules(std::string name, std::vector<Span> spans);

  [[nodiscard]] const Span& spanAt(std::int64_t second) const {
    const std::uint64_t inWindow = static_cast<std::uint64_t>(second - kWindowStart);
    if (inWindow >= kWindowSize) return distantSpanAt(second);
    std::size_t index = buckets_[inWindow >> kBucketShift];
    while (spans_[index + 1].start <= second) ++index;
    return spans_[index];
  }

  [[nodiscard]] const Span& distantSpanAt(std::int64_t second) const;
  [[nodiscard]] std::int64_t cyclesBeyondTable(std::int64_t second) const;

  std::string name_;
  std::vector<Span> spans_;  // the last one is a sentinel after every instant
  bool recurring_ = false;   // the table's last 400 years repeat
  std::array<std::uint16_t, kBuckets> buckets_{};
};

}  // namespace platform
}  // namespace havrin
