// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/links/app_identity.h>

#include <HavrinFoundation/links/app_identity_messages.h>
#include <HavrinFoundation/platform/application/process_info.h>

#include <charconv>
#include <string_view>
#include <system_error>

namespace havrin {
namespace {

bool isMainBundle(const NSBundle& bundle) { return bundle.isEqual(NSBundle::mainBundle()); }

std::string textOf(const NSObject* object) {
  const auto* string = cast<NSString>(object);
  return string ? utf8(*string) : std::string();
}

std::string informationText(const NSBundle& bundle, std::string_view key) {
  if (!isMainBundle(bundle)) return {};
  return textOf(bundle.objectForInfoDictionaryKey(makeString(key)));
}

std::string sentVersion(const NSBundle& bundle) { return textOf(send<"appVersionString">(bundle)); }
std::string sentBuildNumber(const NSBundle& bundle) { return textOf(send<"appBuildNumberString">(bundle)); }

// The whole text, or 0.
std::int64_t decimalValue(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return 0;
  }
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, failed] = std::from_chars(text.data(), end, value);
  return failed == std::errc() && last == end ? value : 0;
}

}  // namespace

std::string appVersionString(const NSBundle& bundle) { return informationText(bundle, "CFBundleShortVersionString"); }

std::string appBuildNumberString(const NSBundle& bundle) { return informationText(bundle, "CFBundleVersion"); }

std::int64_t appBuildNumber(const NSBundle& bundle) {
  return isMainBundle(bundle) ? decimalValue(sentBuildNumber(bundle)) : 0;
}

std::string appAndBuildVersionString(const NSBundle& bundle) {
  if (!isMainBundle(bundle)) return {};
  const std::string version = sentVersion(bundle);
  return version + '.' + sentBuildNumber(bundle);
}

std::string havrinAppUserAgentString(const NSBundle& bundle) {
  if (!isMainBundle(bundle)) return {};
  std::string agent = "Havrin/Version " + sentVersion(bundle);
  agent += "/Build " + sentBuildNumber(bundle);
  agent += "/iOS " + textOf(NSProcessInfo::processInfo()->operatingSystemVersionString());
  return agent;
}

}  // namespace havrin
