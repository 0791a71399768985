// SPDX-License-Identifier: Apache-2.0
// The library that sends: it knows the declaration and nothing of the library that implements it.
#include "caller.h"

#include "greeting.h"

using namespace havrin;

namespace {
class Private : public Object<Private, NSObject> {};

Strong<NSString> owner(NSObject&) { return makeString("caller"); }

constexpr MethodRow kRows[] = {row<NSObject, "img_owner", owner>()};
constinit const Category kOwner{classObject<NSObject>, "Caller", kRows, {}};
const Category* const kCategories[] = {&kOwner};
const Image kImage{
    .name = "caller", .identification = nullptr, .strings = {}, .categories = kCategories, .initialisers = {}};
const Loader kLoader{kImage};
}  // namespace

std::string greetFromCaller(NSObject* object) { return utf8(*send<"img_greet:">(object, makeString("Welcome"))); }
std::int64_t seatsFromCaller(NSObject* object) {
  Guest* guest = cast<Guest>(object);
  return guest ? send<"img_seats">(guest) : -1;
}
NSObject* privateClassOfCaller() { return classOf<Private>(); }
const void* selectorKeyFromCaller() { return Selector(selector<"img_greet:">).key(); }
