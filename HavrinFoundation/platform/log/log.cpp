// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/log/log.h>

#include <HavrinFoundation/platform/base/clock.h>
#include <HavrinFoundation/platform/base/unfair_lock_word.h>
#include <HavrinFoundation/platform/log/log_seam.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <time.h>
#include <unistd.h>
#include <utility>

namespace havrin {
inline namespace platform {

struct os_log_s {
  std::string subsystem;
  std::string category;
};

constinit std::atomic<void (*)(const char*, const char*)> logCreationSeen{nullptr};

namespace {

// Never destroyed: handles are used until the process ends.
struct Handles {
  os_unfair_lock lock;
  std::map<std::pair<std::string, std::string>, std::unique_ptr<os_log_s>> byTexts
      HAVRIN_THREAD_SAFETY(guarded_by(lock));
};

std::string_view levelText(os_log_type_t type) {
  switch (type) {
    case os_log_type_t::standard:
      return "";
    case os_log_type_t::info:
      return "info: ";
    case os_log_type_t::debug:
      return "debug: ";
    case os_log_type_t::error:
      return "error: ";
    case os_log_type_t::fault:
      return "fault: ";
  }
  return "";
}

std::string timeText() {
  const auto milliseconds = static_cast<std::int64_t>(std::floor(wallSecondsSince1970() * 1000));
  const std::int64_t sinceSecond = (milliseconds % 1000 + 1000) % 1000;
  const time_t second = (milliseconds - sinceSecond) / 1000;
  tm local{};
  localtime_r(&second, &local);
  char text[64];
  const std::size_t length = strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  std::snprintf(text + length, sizeof text - length, ".%03d ", static_cast<int>(sinceSecond));
  return text;
}

}  // namespace

os_log_t os_log_create(const char* subsystem, const char* category) {
  if (auto* seen = logCreationSeen.load(std::memory_order_relaxed)) seen(subsystem, category);
  if (!subsystem || !category) {
    throw NSException(NSInvalidArgumentException,
                      subsystem ? "os_log_create: the category is null" : "os_log_create: the subsystem is null");
  }
  static Handles* const kHandles = new Handles;
  const UnfairLockGuard guard(kHandles->lock);
  auto& handle = kHandles->byTexts[{subsystem, category}];
  if (!handle) handle = std::make_unique<os_log_s>(os_log_s{subsystem, category});
  return handle.get();
}

void os_log(os_log_t log, std::string_view text, os_log_type_t type) {
  std::string line = timeText() + log->subsystem + ":" + log->category + " ";
  line += levelText(type);
  line += text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  line += '\n';
  // The result is ignored: a failure to log cannot be reported anywhere.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

std::string_view os_log_subsystem(os_log_t log) { return log->subsystem; }

std::string_view os_log_category(os_log_t log) { return log->category; }

}  // namespace platform
}  // namespace havrin
