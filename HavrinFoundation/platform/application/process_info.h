// What the process knows of itself and of the system it runs on.
//
//   NSProcessInfo::processInfo()->environmentValue("HOME")            "/home/listener"
//   NSProcessInfo::processInfo()->operatingSystemVersionString()      "Debian GNU/Linux 12 (bookworm)"
//
// Left out: arguments, host name, memory and processor counts, thermal and power states.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <HavrinFoundation/platform/object/members.h>

#include <optional>
#include <string>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT NSProcessInfo : public Object<NSProcessInfo, NSObject> {
 public:
  /// The one object for this process.
  [[nodiscard]] static NSProcessInfo* processInfo();

  /// A new dictionary of the environment as it is now: names to values, both strings, split at the first "=". Entries
  /// without "=" are dropped; text that is no UTF-8 is repaired.
  [[nodiscard]] virtual Strong<NSDictionary> environment() const;
  /// The value of the variable with this null-terminated name; empty when it is absent. Asks `environment` where a subclass has its own.
  [[nodiscard]] std::optional<std::string> environmentValue(const char* name) const;

  /// The system's name and version for people, never empty, never for parsing.
  [[nodiscard]] virtual Strong<NSString> operatingSystemVersionString() const;
};

}  // namespace platform
}  // namespace havrin
