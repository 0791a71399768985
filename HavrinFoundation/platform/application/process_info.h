// SPDX-License-Identifier: Apache-2.0
// NSProcessInfo: the environment of the process and the version of the system.
//
//   NSProcessInfo::processInfo()->environmentValue("HOME")            "/home/listener"
//   NSProcessInfo::processInfo()->operatingSystemVersionString()      "Debian GNU/Linux 12 (bookworm)"
//
// Left out: arguments, host name, memory and processor counts, thermal and power states.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

#include <optional>
#include <string>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSProcessInfo : public Object<NSProcessInfo, NSObject> {
 public:
  /// The object for this process.
  [[nodiscard]] static NSProcessInfo* processInfo();

  /// A snapshot of the environment: names to values, both strings, split at the first "=". Entries without "=" are
  /// dropped; ill-formed UTF-8 becomes U+FFFD.
  [[nodiscard]] virtual Strong<NSDictionary> environment() const;
  /// The value of the variable with this null-terminated name. Empty when: it is not set. Uses `environment` if a
  /// subclass overrides it.
  /// Threads: any, as long as none changes the environment meanwhile.
  [[nodiscard]] std::optional<std::string> environmentValue(const char* name) const;

  /// The name and the version of the system for display, not for parsing. Never empty.
  [[nodiscard]] virtual Strong<NSString> operatingSystemVersionString() const;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<NSProcessInfo>();

}  // namespace platform
}  // namespace havrin
