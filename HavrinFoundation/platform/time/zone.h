// SPDX-License-Identifier: Apache-2.0
// Time zones: by name, and the one in which the user lives.
//
//   TimeZone::current().name()                                  "Europe/Paris"
//   TimeZone::named("Asia/Kolkata")->secondsFromGmt(Date())     19800
//   TimeZone::named("Asia/Atlantis")                            empty
//   TimeZone::gmt() == *TimeZone::named("Etc/UTC")              true: every name of UTC is GMT
//
// Offsets come from the system's zone files. A zone's rules are read once in a process; a zone lives until it ends.
//
// Left out: zones made from a bare offset, POSIX rules in TZ, TZDIR, localised names (a date format writes them).
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/time/date.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace havrin {
inline namespace platform {

class ZoneRules;

/// A region whose clocks show the same time. As small as a pointer.
class HAVRIN_EXPORT TimeZone {
 public:
  /// The user's zone: TZ where it is set, "Asia/Tokyo" or ":Asia/Tokyo" or the path of a zone file, else the system's,
  /// which is what /etc/localtime links to, or the rules in it where it is a file.
  /// Result: GMT where TZ is empty or names no zone file (POSIX rules such as "EST5EDT4" do not), and where the
  /// system has no zone. Cost: one pass over the environment; a look at /etc/localtime after each tick of the coarse
  /// clock (4 ms) while TZ is not set. Threads: any, as long as none changes the environment meanwhile.
  /// A damaged zone file counts as none. Where only its closing rule contradicts its own transitions, the zone library
  /// that reads it also writes a line to the standard error stream.
  [[nodiscard]] static TimeZone current();

  /// The zone of a name in the zone database, case and all. Every name of UTC (Etc/UTC, Zulu, Greenwich, ...) gives
  /// GMT. Empty when: there is no such zone file; the name is a path.
  [[nodiscard]] static std::optional<TimeZone> named(std::string_view name);

  [[nodiscard]] static TimeZone gmt();

  explicit TimeZone(const ZoneRules& rules) : rules_(&rules) {}

  /// The name in the zone database; "GMT" for UTC; empty for a file of rules without a name.
  [[nodiscard]] std::string_view name() const;

  /// Seconds that local time is ahead of GMT at `date`; 0 for not-a-number.
  [[nodiscard]] std::int64_t secondsFromGmt(Date date) const;

  /// Whether `date` falls into daylight saving time, as the zone file calls it; false for not-a-number.
  [[nodiscard]] bool isDaylightSavingTime(Date date) const;

  [[nodiscard]] const ZoneRules& rules() const { return *rules_; }

  /// Whether both are the same zone under the same name.
  friend bool operator==(const TimeZone&, const TimeZone&) = default;

 private:
  const ZoneRules* rules_;
};

/// Makes the next `TimeZone::current` look at the system's zone at once, and at zone files that were not there before.
HAVRIN_EXPORT void resetSystemTimeZone();

}  // namespace platform
}  // namespace havrin
