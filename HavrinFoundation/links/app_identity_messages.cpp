// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/links/app_identity_messages.h>

#include <HavrinFoundation/links/app_identity.h>

namespace havrin {
namespace {

Strong<NSString> version(NSBundle& self) { return makeString(appVersionString(self)); }
Strong<NSString> buildNumberString(NSBundle& self) { return makeString(appBuildNumberString(self)); }
std::int64_t buildNumber(NSBundle& self) { return appBuildNumber(self); }
Strong<NSString> versionAndBuild(NSBundle& self) { return makeString(appAndBuildVersionString(self)); }
Strong<NSString> userAgent(NSBundle& self) { return makeString(havrinAppUserAgentString(self)); }

constexpr MethodRow kRows[] = {
    row<NSBundle, "appVersionString", version>(), row<NSBundle, "appBuildNumberString", buildNumberString>(),
    row<NSBundle, "appBuildNumber", buildNumber>(), row<NSBundle, "appAndBuildVersionString", versionAndBuild>(),
    row<NSBundle, "havrinAppUserAgentString", userAgent>()};

}  // namespace

extern constinit const Category kAppIdentity{classObject<NSBundle>, "HavrinFoundation", kRows, {}};

}  // namespace havrin
