// SPDX-License-Identifier: Apache-2.0
// UIResponder: what views and view controllers are. Here it is the class that observations are attached to.
//
//   class Board : public Object<Board, UIResponder> { ... };
//
// Left out: events, the responder chain, first responders, actions.
#pragma once

#include <HavrinFoundation/platform/export.h>
#include <HavrinFoundation/platform/object/members.h>

namespace havrin {
inline namespace platform {

class HAVRIN_EXPORT UIResponder : public Object<UIResponder, NSObject> {
 public:
  UIResponder() noexcept = default;
  ~UIResponder() override;
};

extern template HAVRIN_EXPORT ClassObject* buildClass<UIResponder>();

}  // namespace platform
}  // namespace havrin
