// The model that the observation tests watch.
#pragma once

#include <cstdint>
#include <string>

#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/foundation/string.h>
#include <HavrinFoundation/platform/object/exception.h>
#include <HavrinFoundation/platform/object/members.h>

#include "../exception_name.h"

namespace havrin_test {

using namespace havrin;

class Host : public Object<Host, NSObject> {
  Strong<NSString> name_;

 public:
  using Members = List<Property<"name", &Host::name_>>;
};

class Station : public Object<Station, NSObject> {
  Strong<NSString> title_;
  std::int64_t listeners_ = 0;
  Strong<Host> host_;
  Weak<Host> guest_;
  Strong<NSArray> songs_ = makeArray({});

 public:
  using Members =
      List<Property<"title", &Station::title_>, Property<"listeners", &Station::listeners_>,
           Property<"host", &Station::host_>, Property<"guest", &Station::guest_>, Property<"songs", &Station::songs_>>;
  /// True when nobody is registered with the object.
  [[nodiscard]] bool isUnobserved() const { return !dispatchClass(this)->isNotifying(); }
};

inline Strong<NSString> text(const char* ascii) { return makeString(ascii); }
inline std::string shown(const NSObject* object) {
  if (!object) return "-";
  return object == NSNull::null() ? "null" : utf8(*object->description());
}
/// The entries of a change, in one line: "listeners 1 0>3".
inline std::string line(const NSDictionary* change) {
  if (!change) return "nothing";
  std::string line = shown(change->objectForKey(text("keyPath"))) + " " + shown(change->objectForKey(text("kind"))) +
                     " " + shown(change->objectForKey(text("old"))) + ">" + shown(change->objectForKey(text("new")));
  return line;
}

}  // namespace havrin_test
