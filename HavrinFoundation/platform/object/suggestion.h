// SPDX-License-Identifier: Apache-2.0
// What a misspelt name was meant to be. Internal to the layer and the rooms, for diagnosis.
#pragma once

#include <HavrinFoundation/platform/object/class.h>

#include <string>
#include <string_view>

namespace havrin {
inline namespace platform {

/// The end of a line about a name that the class does not have: "; did you mean \"search\"?" with the selector of a method
/// of the class or a superclass that differs least, by two letters at most. Empty when none is that near.
/// Cost: linear in the methods of the class and its superclasses.
[[nodiscard]] std::string suggestion(const ClassObject& cls, std::string_view name);

}  // namespace platform
}  // namespace havrin
