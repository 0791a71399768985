// SPDX-License-Identifier: Apache-2.0
// The library that is opened at run time. A version script hides everything but the one plain function.
#include "greeting.h"

using namespace havrin;

namespace {

Strong<NSString> greet(NSObject& self, NSString* word) {
  return makeString(utf8(*word) + ", " + std::string(classOf(self).name()));
}

Strong<NSString> firstOwner(NSObject&) { return makeString("first in the list of host"); }
Strong<NSString> owner(NSObject&) { return makeString("host"); }

constexpr MethodRow kFirstRows[] = {row<NSObject, "img_owner", firstOwner>()};
constexpr MethodRow kRows[] = {row<NSObject, "img_greet:", greet>(), row<NSObject, "img_owner", owner>()};
constinit const Category kFirst{classObject<NSObject>, "First", kFirstRows, {}};
constinit const Category kGreeting{classObject<NSObject>, "Greeting", kRows, {}};
const Category* const kCategories[] = {&kFirst, &kGreeting};
const Image kImage{
    .name = "host", .identification = nullptr, .strings = {}, .categories = kCategories, .initialisers = {}};
const Loader kLoader{kImage};

// Named like a class of the other library, and another class all the same.
class Private : public Object<Private, NSObject> {};

}  // namespace

extern "C" __attribute__((visibility("default"))) NSObject* host_makeGuest() { return make<Guest>().detach(); }
extern "C" __attribute__((visibility("default"))) NSObject* host_privateClass() { return classOf<Private>(); }
