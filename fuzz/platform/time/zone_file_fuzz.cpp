// SPDX-License-Identifier: Apache-2.0
// The bytes of a zone file: refused, or rules whose offsets stay within a day of Greenwich and whose wall clock leads
// back to the instant it was read at.
#include <HavrinFoundation/platform/time/instant.h>
#include <HavrinFoundation/platform/time/zone_rules.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace havrin;

namespace {

void require(bool law) {
  if (!law) std::abort();
}

/// A path that leads to `file` and that was never used before: the reader behind ours remembers paths.
std::string newPathTo(int file) {
  static std::uint64_t count = 0;
  std::string path;
  for (std::uint64_t bits = ++count; bits != 0; bits >>= 1) path += bits % 2 == 0 ? "/" : "/.";
  return path + "/proc/self/fd/" + std::to_string(file);
}

void requireLaws(const ZoneRules& rules, std::int64_t second) {
  const std::int64_t offset = rules.offsetAt(second);
  require(offset >= -26 * 3600 && offset <= 26 * 3600);
  const WallTime wall = rules.wallTime(second + offset);
  require(wall.kind != WallTime::Kind::skipped && wall.early <= second && second <= wall.late);
  require(rules.dayNumberAt(rules.startOfDay(second)) == rules.dayNumberAt(second));
  require(rules.addDays(second, 0) == second);
  const std::int64_t later = rules.addDays(second, 1);
  require(later > second - 3 * kSecondsPerDay && later < second + 4 * kSecondsPerDay);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const int file = memfd_create("zone", MFD_CLOEXEC);
  require(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
  const auto rules = ZoneRules::read(newPathTo(file), "");
  close(file);
  if (rules == nullptr) return 0;
  for (std::int64_t second = -8'000'000'000; second < 12'000'000'000; second += 99'999'991) requireLaws(*rules, second);
  for (std::int64_t second = kFirstSecond; second < kLastSecond; second += 9'999'999'999'973) {
    requireLaws(*rules, second);
  }
  return 0;
}
