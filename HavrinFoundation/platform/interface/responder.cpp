// SPDX-License-Identifier: Apache-2.0
#include <HavrinFoundation/platform/interface/responder.h>

namespace havrin {
inline namespace platform {

UIResponder::~UIResponder() = default;

template ClassObject* buildClass<UIResponder>();

}  // namespace platform
}  // namespace havrin
