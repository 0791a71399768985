// SPDX-License-Identifier: Apache-2.0
// Forward declarations of the layer's classes, for headers that name a class without the object runtime.
#pragma once

namespace havrin {
inline namespace platform {

class NSCharacterSet;
class NSString;

}  // namespace platform
}  // namespace havrin
