// SPDX-License-Identifier: Apache-2.0
// What the examples of headers call a station, and the board that shows it. Comes after the header of the example.
#pragma once

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/object/members.h>
#include <HavrinFoundation/platform/object/string.h>
#include <HavrinFoundation/platform/observing/key_value_coding.h>

namespace havrin {

class Host : public Object<Host, NSObject> {
  Strong<NSString> name_ = makeString("Ada");

 public:
  using Members = List<Property<"name", &Host::name_>>;
};

class Station : public Object<Station, NSObject> {
  Strong<NSString> title_;
  std::int64_t listeners_ = 0;
  Strong<Host> host_;
  Strong<NSArray> songs_ = makeArray({});

 public:
  explicit Station(std::string_view title = "Nord") : title_(makeString(title)) {}
  Strong<NSString> title() const { return title_; }
  bool isOnAir() const { return listeners_ > 0; }
  using Members = List<Property<"title", &Station::title_>, Property<"listeners", &Station::listeners_>,
                       Property<"host", &Station::host_>, Property<"songs", &Station::songs_>>;
};

class Board : public Object<Board, NSObject> {
 public:
  void redraw(const Station&) {}
};

}  // namespace havrin
