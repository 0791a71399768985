// SPDX-License-Identifier: Apache-2.0
// What the two libraries and the program of this test share: messages, and a class that each of them sees through its own
// copy of this header.
#pragma once

#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>

template <>
struct havrin::Message<havrin::NSObject, "img_greet:"> : Signature<Strong<NSString>(NSString*)> {};
/// Every image has a category that answers it, with the image's name.
template <>
struct havrin::Message<havrin::NSObject, "img_owner"> : Signature<Strong<NSString>()> {};

class Guest : public havrin::Object<Guest, havrin::NSObject> {
 public:
  std::int64_t seats() { return 2; }
  using Members = havrin::List<havrin::Method<"img_seats", &Guest::seats>>;
};
