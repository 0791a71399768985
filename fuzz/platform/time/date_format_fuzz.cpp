// SPDX-License-Identifier: Apache-2.0
// Two lines, a pattern and a text: what our own steps write is what ICU writes, and what is read is an instant that the
// format writes to a text that reads as the same instant, whenever the pattern has all that an instant needs.
#include <HavrinFoundation/platform/time/civil.h>
#include <HavrinFoundation/platform/time/date_format.h>
#include <HavrinFoundation/platform/time/icu_format.h>
#include <HavrinFoundation/platform/time/pattern_writer.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string_view>

using namespace havrin;

namespace {

void require(bool law) {
  if (!law) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 512) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view pattern = input.substr(0, input.find('\n'));
  const std::string_view text = input.substr(std::min(pattern.size() + 1, input.size()));
  const Calendar gmt(CalendarIdentifier::gregorian, TimeZone::gmt());
  const Locale locale("en_GB");

  const IcuFormat icu(pattern, locale, gmt);
  if (const auto writer = PatternWriter::compile(pattern, locale, gmt)) {
    constexpr std::int64_t kRange = 100'000'000'000'000;  // a good three thousand years each way
    const std::int64_t milliseconds =
        static_cast<std::int64_t>(std::hash<std::string_view>()(text) % (2 * kRange)) - kRange;
    const std::int64_t second = floorDivide(milliseconds, 1000);
    require(writer->string(second, static_cast<int>(milliseconds - second * 1000)) == icu.string(milliseconds));
  }

  const std::optional<Date> read = icu.date(text);
  if (!read) return 0;
  require(*read == *read);
  const DateFormat http("EEE',' dd MMM yyyy HH':'mm':'ss z", Locale::posix(), gmt);
  const std::string written = http.string(*read);
  if (*read < Date::fromTimeIntervalSince1970(-62'135'769'600)) return 0;  // the pattern has no era
  require(http.date(written).has_value() && http.string(*http.date(written)) == written);
  return 0;
}
