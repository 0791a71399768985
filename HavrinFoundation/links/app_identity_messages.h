// SPDX-License-Identifier: Apache-2.0
// NSBundle(HavrinFoundation): app_identity.h as messages; read-only properties, by key too.
#pragma once

#include <HavrinFoundation/image.h>
#include <HavrinFoundation/platform/application/bundle.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdint>

namespace havrin {
inline namespace platform {

/// As the typed forms of these names; never null.
template <>
struct Message<NSBundle, "appVersionString"> : Signature<Strong<NSString>()> {};
template <>
struct Message<NSBundle, "appBuildNumberString"> : Signature<Strong<NSString>()> {};
template <>
struct Message<NSBundle, "appBuildNumber"> : Signature<std::int64_t()> {};
template <>
struct Message<NSBundle, "appAndBuildVersionString"> : Signature<Strong<NSString>()> {};
template <>
struct Message<NSBundle, "havrinAppUserAgentString"> : Signature<Strong<NSString>()> {};

}  // namespace platform
}  // namespace havrin
