// SPDX-License-Identifier: Apache-2.0
// The whole language of date patterns, by ICU, with offsets from the system's zone files. Internal.
#pragma once

#include <HavrinFoundation/platform/time/calendar.h>
#include <HavrinFoundation/platform/time/locale.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// ICU's name for a locale with a calendar.
[[nodiscard]] std::string icuLocaleName(const Locale& locale, CalendarIdentifier calendar);

/// ICU's formatter for a pattern. One of ICU's serves one caller at a time, so callers at the same time get one each.
class IcuFormat {
 public:
  IcuFormat(std::string_view pattern, const Locale& locale, const Calendar& calendar);
  ~IcuFormat();
  IcuFormat(const IcuFormat&) = delete;
  IcuFormat& operator=(const IcuFormat&) = delete;

  /// The text of the instant `milliseconds` after 1970; empty where the pattern has no meaning.
  [[nodiscard]] std::string string(std::int64_t milliseconds) const;

  /// See DateFormat::date.
  [[nodiscard]] std::optional<Date> date(std::string_view text) const;

 private:
  class Pool;
  const std::unique_ptr<Pool> pool_;
};

}  // namespace platform
}  // namespace havrin
