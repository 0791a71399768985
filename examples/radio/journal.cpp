// SPDX-License-Identifier: Apache-2.0
#include "journal.h"

#include <HavrinFoundation/frame/log.h>

#include <cstddef>

namespace radio {

using namespace havrin;

void Journal::note(const char* category, std::string text) {
  constexpr std::size_t kLongest = 1000;
  if (!isOn_) return;
  const os_log_t log = hlog_create_with_category(category);
  const bool isHeld = held_.perform([&](Held& held) {
    if (held.isHolding && held.lines.size() < kLongest) held.lines.emplace_back(log, text);
    return held.isHolding;
  });
  if (!isHeld) os_log(log, text, os_log_type_t::info);
}

void Journal::hold() {
  held_.perform([](Held& held) { held.isHolding = true; });
}

void Journal::release() {
  const Held held = held_.perform([](Held& content) { return std::exchange(content, Held()); });
  for (const auto& [log, text] : held.lines) os_log(log, text, os_log_type_t::info);
}

}  // namespace radio
