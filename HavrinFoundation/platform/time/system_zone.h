// SPDX-License-Identifier: Apache-2.0
// Where zones are found: the zone files, the link to the system's zone, and the answer to TZ. Internal.
#pragma once

#include <HavrinFoundation/platform/time/zone_rules.h>

#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// The places that hold zones. Tests put their own in place of the system's.
struct ZonePaths {
  std::string zones = "/usr/share/zoneinfo";
  std::string systemLink = "/etc/localtime";
};

/// Replaces the places and forgets what was found in the former ones, except rules that are in somebody's hands.
/// Result: the former places.
ZonePaths setZonePaths(ZonePaths paths);

[[nodiscard]] const ZoneRules& gmtRules();

/// The rules of a zone of the database; null when there is none of that name.
[[nodiscard]] const ZoneRules* rulesNamed(std::string_view name);

/// The rules that the value of TZ asks for, or the system's for null.
[[nodiscard]] const ZoneRules& currentRules(const char* zoneVariable);

/// See resetSystemTimeZone.
void forgetSystemZone();

}  // namespace platform
}  // namespace havrin
