// SPDX-License-Identifier: Apache-2.0
// The application's version, build number and user agent, from its main bundle. As messages:
// app_identity_messages.h.
//
// With "2024.10.0" and "612345" in the main bundle's Info.plist:
//
//   appVersionString(*NSBundle::mainBundle())             "2024.10.0"
//   appBuildNumber(*NSBundle::mainBundle())               612345
//   appAndBuildVersionString(*NSBundle::mainBundle())     "2024.10.0.612345"
//   havrinAppUserAgentString(*NSBundle::mainBundle())     "Havrin/Version 2024.10.0/Build 612345/iOS Debian GNU/Linux 12"
//
// Only the main bundle answers: another one, as its own `isEqual` says, gives the empty text and 0. Nothing is cached.
// The composed answers send `appVersionString` and `appBuildNumberString` to the bundle, so that a subclass's are
// taken.
#pragma once

#include <HavrinFoundation/platform/application/bundle.h>
#include <HavrinFoundation/platform/export.h>

#include <cstdint>
#include <string>

namespace havrin {

/// What Info.plist says under "CFBundleShortVersionString".
/// Result: the empty text where it has no value there, or one that is not a string.
[[nodiscard]] HAVRIN_EXPORT std::string appVersionString(const NSBundle& bundle);

/// As appVersionString, under "CFBundleVersion".
[[nodiscard]] HAVRIN_EXPORT std::string appBuildNumberString(const NSBundle& bundle);

/// The build number as an integer: an optional "+" or "-", then decimal digits and nothing else.
/// Result: 0 where it is not such a number, or does not fit in 64 bits.
[[nodiscard]] HAVRIN_EXPORT std::int64_t appBuildNumber(const NSBundle& bundle);

/// Version, ".", build; "." alone where both are missing.
[[nodiscard]] HAVRIN_EXPORT std::string appAndBuildVersionString(const NSBundle& bundle);

/// "Havrin/Version ", version, "/Build ", build, "/iOS " and the system's own description (NSProcessInfo), each as it
/// is.
[[nodiscard]] HAVRIN_EXPORT std::string havrinAppUserAgentString(const NSBundle& bundle);

}  // namespace havrin
