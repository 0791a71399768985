// SPDX-License-Identifier: Apache-2.0
// Marks text that is not passed through localisation.
//
//   NotLocalizedString(empty)        the very same object; null for null
//
// Internal to the library.
#pragma once

namespace havrin {

inline namespace platform {
class NSString;
}

/// The argument itself. Nothing is looked up.
[[nodiscard]] inline NSString* NotLocalizedString(NSString* string) { return string; }

}  // namespace havrin
