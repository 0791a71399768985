// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/application/process_info.h>

#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdlib>
#include <fstream>
#include <sys/utsname.h>
#include <unistd.h>

namespace havrin {
inline namespace platform {

namespace {

// The name that the system gives itself for people. Source: os-release(5).
std::string prettyName() {
  constexpr std::string_view kKey = "PRETTY_NAME=";
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
      if (!line.starts_with(kKey)) continue;
      std::string value = line.substr(kKey.size());
      if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
        value = value.substr(1, value.size() - 2);
      }
      if (!value.empty()) return value;
    }
  }
  utsname system{};
  if (uname(&system) == 0) return std::string(system.sysname) + " " + system.release;
  return "Linux";
}

}  // namespace

NSProcessInfo* NSProcessInfo::processInfo() {
  static NSProcessInfo* const kProcess = make<NSProcessInfo>().detach();
  return kProcess;
}

Strong<NSDictionary> NSProcessInfo::environment() const {
  const auto variables = make<NSMutableDictionary>();
  for (char** entry = environ; entry && *entry; ++entry) {
    const std::string_view text = *entry;
    const std::size_t sign = text.find('=');
    if (sign == std::string_view::npos) continue;
    const Strong<NSString> name = makeString(text.substr(0, sign));
    // Of two entries of one name the first counts, as it does for the system's own look-up.
    if (!variables->objectForKey(name)) variables->setObject(makeString(text.substr(sign + 1)), name);
  }
  return Strong<NSDictionary>::adopt(static_cast<NSDictionary*>(variables->copy().detach()));
}

std::optional<std::string> NSProcessInfo::environmentValue(const char* name) const {
  if (classOf(*this) != classOf<NSProcessInfo>()) {
    const Strong<NSDictionary> variables = environment();
    const Strong<NSObject> value = variables ? variables->objectForKey(makeString(name)) : nullptr;
    const NSString* text = cast<NSString>(static_cast<const NSObject*>(value.get()));
    return text ? std::optional(utf8(*text)) : std::nullopt;
  }
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the header forbids changing the environment meanwhile
  const char* value = std::getenv(name);
  return value ? std::optional<std::string>(value) : std::nullopt;
}

Strong<NSString> NSProcessInfo::operatingSystemVersionString() const {
  static const std::string* const kName = new std::string(prettyName());
  return makeString(*kName);
}

template ClassObject* buildClass<NSProcessInfo>();

}  // namespace platform
}  // namespace havrin
