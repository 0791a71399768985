// SPDX-License-Identifier: Apache-2.0
// The images whose categories are attached, and what diagnosis reports about them. Internal to the layer.
#pragma once

#include <HavrinFoundation/platform/object/category.h>

#include <string_view>

namespace havrin {
inline namespace platform {

/// Notes an image before its categories are attached. Diagnosis reports the methods that another image has added to the
/// same class, and those that have been sent already.
void noteImage(const Image& image);

/// Reports a message that no method answers, and notes it for an image that is loaded later.
void diagnoseUnanswered(const ClassObject& cls, std::string_view selector);

}  // namespace platform
}  // namespace havrin
