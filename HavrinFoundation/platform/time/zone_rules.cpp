// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/zone_rules.h>

#include <HavrinFoundation/platform/base/ascii.h>

#include <cctz/time_zone.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace havrin {
inline namespace platform {
namespace {

/// No zone is further from Greenwich: RFC 9636 bounds offsets to between -25 h and +26 h.
constexpr std::int64_t kMaxOffset = 26 * 3600;

/// Before and after every instant that is asked for, with room for an offset.
constexpr std::int64_t kBeforeAll = -(std::int64_t{1} << 60);
constexpr std::int64_t kAfterAll = std::int64_t{1} << 60;

/// The Gregorian calendar repeats, weekdays included, after 400 years.
constexpr std::int64_t kCycle = detail::kGregorianCycleDays * kSecondsPerDay;

constexpr std::size_t kMaxSpans = std::numeric_limits<std::uint16_t>::max();

std::uint32_t bigEndian(const unsigned char* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
         static_cast<std::uint32_t>(bytes[2]) << 8 | bytes[3];
}

/// Reads a footer from its first character on: the name of a time, an offset, and rules of the year.
class FooterReader {
 public:
  explicit FooterReader(std::string_view text) : text_(text) {}

  /// Whether the whole text is a footer: nothing, "CET-1", or "CET-1CEST,M3.5.0,M10.5.0/3". Source: RFC 9636, section
  /// 3.3.1.
  [[nodiscard]] bool isFooter(bool& hasRules) {
    hasRules = false;
    if (text_.empty()) return true;
    if (!name() || !time(24)) return false;
    if (text_.empty()) return true;
    hasRules = true;
    return name() && (text_.starts_with(',') || time(24)) && rule() && rule() && text_.empty();
  }

 private:
  bool take(char expected) {
    if (!text_.starts_with(expected)) return false;
    text_.remove_prefix(1);
    return true;
  }

  bool name() {
    const bool quoted = take('<');
    std::size_t length = 0;
    while (length < text_.size() &&
           (isAsciiLetter(text_[length]) ||
            (quoted && (isAsciiDigit(text_[length]) || text_[length] == '+' || text_[length] == '-'))))
      ++length;
    text_.remove_prefix(length);
    return length >= 3 && (!quoted || take('>'));
  }

  bool number(int least, int most) {
    int value = 0;
    std::size_t digits = 0;
    for (; digits < text_.size() && digits < 4 && isAsciiDigit(text_[digits]); ++digits)
      value = 10 * value + text_[digits] - '0';
    text_.remove_prefix(digits);
    return digits != 0 && value >= least && value <= most;
  }

  bool time(int mostHours) {
    if (!take('-')) take('+');
    return number(0, mostHours) && (!take(':') || (number(0, 59) && (!take(':') || number(0, 59))));
  }

  bool rule() {
    if (!take(',')) return false;
    const bool day = take('M')   ? number(1, 12) && take('.') && number(1, 5) && take('.') && number(0, 6)
                     : take('J') ? number(1, 365)
                                 : number(0, 365);
    return day && (!take('/') || time(167));
  }

  std::string_view text_;
};

/// Whether what follows the second block of data is a footer. With rules of the year, at least two `transitions` must
/// precede it. The reader behind us writes to the standard error stream otherwise.
bool endsInFooter(int file, off_t position, off_t transitions) {
  char bytes[256];
  const ssize_t size = pread(file, bytes, sizeof bytes, position);
  if (size < 2 || bytes[0] != '\n') return false;
  std::string_view text(bytes + 1, static_cast<std::size_t>(size) - 1);
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return false;
  bool hasRules = false;
  return FooterReader(text.substr(0, end)).isFooter(hasRules) && (!hasRules || transitions >= 2);
}

/// Whether the file starts as a zone file does and holds as much as its first header counts: the reader behind us takes
/// the counts on trust and would reserve whatever they say, and reports a malformed footer on the standard error
/// stream. Source: RFC 9636, section 3.1.
bool looksLikeZoneFile(const std::string& path) {
  constexpr off_t kHeaderSize = 44;
  constexpr off_t kMaxFileSize = 1 << 18;
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return false;
  struct stat status {};
  bool plausible = fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= kMaxFileSize;
  // A header counts isut, isstd, leap seconds, transitions, types and name characters; times take `width` bytes.
  off_t position = 0;
  for (const off_t width : {4, 8}) {
    unsigned char header[kHeaderSize];
    if (!plausible || pread(file, header, kHeaderSize, position) != kHeaderSize ||
        std::string_view(reinterpret_cast<const char*>(header), 4) != "TZif") {
      plausible = false;
      break;
    }
    const auto count = [&header](int field) -> off_t { return bigEndian(header + 20 + 4 * field); };
    const off_t indicators = count(0) + count(1);
    position += kHeaderSize + indicators + count(2) * (width + 4) + count(3) * (width + 1) + count(4) * 6 + count(5);
    plausible = position <= status.st_size;
    if (header[4] == '\0') break;  // the first version has neither a second header nor a footer
    if (plausible && width == 8) plausible = endsInFooter(file, position, count(3));
  }
  close(file);
  return plausible;
}

cctz::time_point<cctz::seconds> pointAt(std::int64_t second) {
  return cctz::time_point<cctz::seconds>(cctz::seconds(second));
}

ZoneRules::Span spanFrom(std::int64_t start, const cctz::time_zone& zone, std::int64_t inside) {
  const auto found = zone.lookup(pointAt(inside));
  return {start, found.offset, found.is_dst};
}

/// Every span of the zone, in order, without the sentinel; empty when the zone is none that the table can hold.
std::vector<ZoneRules::Span> spansOf(const cctz::time_zone& zone) {
  std::vector<ZoneRules::Span> spans;
  auto point = cctz::time_point<cctz::seconds>::min();
  cctz::time_zone::civil_transition transition;
  spans.push_back(spanFrom(kBeforeAll, zone, kBeforeAll));
  while (zone.next_transition(point, &transition)) {
    point = zone.lookup(transition.to).trans;
    const std::int64_t start = point.time_since_epoch().count();
    if (start <= spans.back().start || start >= kAfterAll || spans.size() == kMaxSpans - 1) return {};
    spans.push_back(spanFrom(start, zone, start));
  }
  const bool tooFar = std::any_of(spans.begin(), spans.end(), [](const ZoneRules::Span& span) {
    return span.offset > kMaxOffset || span.offset < -kMaxOffset;
  });
  if (tooFar) return {};
  return spans;
}

}  // namespace

ZoneRules::ZoneRules() : ZoneRules("GMT", {Span{kBeforeAll, 0, false}}) {}

ZoneRules::ZoneRules(std::string name, std::vector<Span> spans) : name_(std::move(name)), spans_(std::move(spans)) {
  recurring_ = spans_.back().start >= kWindowStart + kWindowSize;
  spans_.push_back({kAfterAll, spans_.back().offset, spans_.back().daylight});
  std::size_t index = 0;
  for (std::size_t bucket = 0; bucket < kBuckets; ++bucket) {
    const std::int64_t start = kWindowStart + (static_cast<std::int64_t>(bucket) << kBucketShift);
    while (spans_[index + 1].start <= start) ++index;
    buckets_[bucket] = static_cast<std::uint16_t>(index);
  }
}

std::unique_ptr<const ZoneRules> ZoneRules::read(const std::string& path, std::string name) {
  cctz::time_zone zone;
  if (!looksLikeZoneFile(path) || !cctz::load_time_zone(path, &zone)) return nullptr;
  std::vector<Span> spans = spansOf(zone);
  if (spans.empty()) return nullptr;
  return std::unique_ptr<const ZoneRules>(new ZoneRules(std::move(name), std::move(spans)));
}

/// How many times 400 years have to be taken from `second` to bring it into the table.
std::int64_t ZoneRules::cyclesBeyondTable(std::int64_t second) const {
  const std::int64_t end = spans_[spans_.size() - 2].start;
  return recurring_ && second >= end ? (second - end) / kCycle + 1 : 0;
}

const ZoneRules::Span& ZoneRules::distantSpanAt(std::int64_t second) const {
  second -= cyclesBeyondTable(second) * kCycle;
  const auto after = std::upper_bound(spans_.begin(), spans_.end() - 1, second,
                                      [](std::int64_t value, const Span& span) { return value < span.start; });
  return after == spans_.begin() ? *after : *(after - 1);
}

WallTime ZoneRules::wallTime(std::int64_t local) const {
  const std::int64_t beyond = cyclesBeyondTable(local - kMaxOffset) * kCycle;
  local -= beyond;
  WallTime found{WallTime::Kind::skipped, 0, 0, 0};
  bool seen = false;
  for (const Span* span = &spanAt(local - kMaxOffset); span->start <= local + kMaxOffset; ++span) {
    const std::int64_t instant = local - span->offset + beyond;
    if (local - span->offset >= span[1].start) continue;  // this span ends before the reading
    if (local - span->offset >= span->start) {
      found = seen ? WallTime{WallTime::Kind::repeated, found.early, instant, instant}
                   : WallTime{WallTime::Kind::unique, instant, instant, instant};
      seen = true;
    } else if (!seen && local - span[-1].offset >= span->start) {  // between the end of the last span and this one
      found = {WallTime::Kind::skipped, instant, local - span[-1].offset + beyond, span->start + beyond};
    }
  }
  return found;
}

std::int64_t ZoneRules::startOfDay(std::int64_t second) const {
  const WallTime midnight = wallTime(dayNumberAt(second) * kSecondsPerDay);
  return midnight.kind == WallTime::Kind::skipped ? midnight.jump : midnight.early;
}

std::int64_t ZoneRules::addDays(std::int64_t second, std::int64_t days) const {
  if (days == 0) return second;
  const std::int64_t offset = offsetAt(second);
  const std::int64_t target = second + days * kSecondsPerDay;
  const std::int64_t targetOffset = offsetAt(target);
  if (targetOffset == offset) return target;
  const std::int64_t corrected = target + offset - targetOffset;
  if (offsetAt(corrected) == targetOffset) return corrected;
  const WallTime wall = wallTime(target + offset);
  return days < 0 && wall.late >= second ? wall.early : wall.late;
}

}  // namespace platform
}  // namespace havrin
