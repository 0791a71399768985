// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/time/environment.h>

#include <string_view>
#include <unistd.h>

namespace havrin {
inline namespace platform {
namespace {

/// Stores the value of `variable` when its name is `name` and no earlier variable had that name.
void take(const char* variable, std::string_view nameAndSign, const char*& value) {
  if (value == nullptr && __builtin_strncmp(variable, nameAndSign.data(), nameAndSign.size()) == 0) {
    value = variable + nameAndSign.size();
  }
}

bool isPresent(const char* value) { return value != nullptr && *value != '\0'; }

}  // namespace

const char* TimeEnvironment::locale() const {
  if (isPresent(allLocale)) return allLocale;
  if (isPresent(timeLocale)) return timeLocale;
  return isPresent(language) ? language : "";
}

TimeEnvironment readTimeEnvironment() {
  TimeEnvironment found;
  if (environ == nullptr) return found;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const char* text = *variable;
    if (text[0] == 'T') {
      take(text, "TZ=", found.zone);
    } else if (text[0] == 'L') {
      take(text, "LC_ALL=", found.allLocale);
      take(text, "LC_TIME=", found.timeLocale);
      take(text, "LANG=", found.language);
    }
  }
  return found;
}

}  // namespace platform
}  // namespace havrin
