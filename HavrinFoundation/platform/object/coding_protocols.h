// SPDX-License-Identifier: Apache-2.0
// What classes promise to archives, by adopting a protocol.
#pragma once

#include <HavrinFoundation/platform/object/protocol.h>

namespace havrin {
inline namespace platform {

/// Objects can be written to an archive and made again from it: the class answers `encodeWithCoder:` and
/// `initWithCoder:` (archives/coder.h).
struct NSCoding : Protocol<NSCoding> {};

/// The same, and `initWithCoder:` takes nothing on trust: it names the class of every object that it decodes.
struct NSSecureCoding : Protocol<NSSecureCoding, NSCoding> {};

}  // namespace platform
}  // namespace havrin
