// SPDX-License-Identifier: Apache-2.0
// The environment variables that decide zone and locale, read anew in one pass. Internal.
#pragma once

namespace havrin {
inline namespace platform {

/// Texts that live in the environment itself; null for an absent variable.
struct TimeEnvironment {
  const char* zone = nullptr;        // TZ
  const char* allLocale = nullptr;   // LC_ALL
  const char* timeLocale = nullptr;  // LC_TIME
  const char* language = nullptr;    // LANG

  /// The first of LC_ALL, LC_TIME and LANG that is present and not empty, else "".
  [[nodiscard]] const char* locale() const;
};

/// The variables as they are now.
/// Cost: one look at the first characters of every variable.
/// Threads: any, as long as no thread changes the environment at the same time, which is the C library's own rule.
[[nodiscard]] TimeEnvironment readTimeEnvironment();

}  // namespace platform
}  // namespace havrin
