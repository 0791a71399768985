// SPDX-License-Identifier: Apache-2.0
// What the README's examples take for granted.
#pragma once

#include <HavrinFoundation/HavrinFoundation.h>
#include <HavrinFoundation/platform/object/string.h>

#include <vector>

class Station : public havrin::Object<Station, havrin::NSObject> {
  havrin::Strong<havrin::NSString> title_ = havrin::makeString("Nachtflug");
  std::int64_t listeners_ = 1200;

 public:
  [[nodiscard]] havrin::Strong<havrin::NSString> title() const { return title_; }
  [[nodiscard]] std::int64_t listeners() const { return listeners_; }
};

inline const havrin::Strong<havrin::NSArray> stations = havrin::makeArray({havrin::make<Station>()});
inline const havrin::Date lastHeard = havrin::Date::now();
