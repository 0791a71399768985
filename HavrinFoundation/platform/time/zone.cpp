// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/zone.h>

#include <HavrinFoundation/platform/time/environment.h>
#include <HavrinFoundation/platform/time/instant.h>
#include <HavrinFoundation/platform/time/system_zone.h>

namespace havrin {
inline namespace platform {

TimeZone TimeZone::current() { return TimeZone(currentRules(readTimeEnvironment().zone)); }

std::optional<TimeZone> TimeZone::named(std::string_view name) {
  const ZoneRules* rules = rulesNamed(name);
  if (rules == nullptr) return std::nullopt;
  return TimeZone(*rules);
}

TimeZone TimeZone::gmt() { return TimeZone(gmtRules()); }

std::string_view TimeZone::name() const { return rules_->name(); }

std::int64_t TimeZone::secondsFromGmt(Date date) const {
  return isNotANumber(date) ? 0 : rules_->offsetAt(instantOf(date).seconds);
}

bool TimeZone::isDaylightSavingTime(Date date) const {
  return !isNotANumber(date) && rules_->isDaylightAt(instantOf(date).seconds);
}

void resetSystemTimeZone() { forgetSystemZone(); }

}  // namespace platform
}  // namespace havrin
