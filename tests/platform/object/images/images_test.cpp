// SPDX-License-Identifier: Apache-2.0
// Messages between images: a program, a library it links, one that it links statically, and one that it opens at run time
// with its symbols kept local.
#include "caller.h"
#include "greeting.h"
#include "player_messages.h"
#include <HavrinFoundation/platform/object/exception.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

using namespace havrin;

namespace {

template <class F>
F* symbol(void* library, const char* name) {
  return reinterpret_cast<F*>(dlsym(library, name));
}

Strong<NSString> owner(NSObject&) { return makeString("program"); }

constexpr MethodRow kRows[] = {row<NSObject, "img_owner", owner>()};
constinit const Category kOwner{classObject<NSObject>, "Program", kRows, {}};
const Category* const kCategories[] = {&kOwner};
const Image kImage{
    .name = "program", .identification = nullptr, .strings = {}, .categories = kCategories, .initialisers = {}};
const Loader kLoader{kImage};

TEST(Images, ReachOneAnotherBySelectorAndByType) {
  const auto mine = make<Guest>();
  EXPECT_THROW(greetFromCaller(mine), NSException) << "nobody implements it yet, and the miss is not remembered";

  EXPECT_EQ(utf8(*send<"img_owner">(mine)), "program") << "attached after the library that it links";

  void* host = dlopen(HOST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_TRUE(host) << dlerror();
  EXPECT_EQ(greetFromCaller(mine), "Welcome, Guest");
  EXPECT_EQ(utf8(*send<"img_owner">(mine)), "host") << "attached last, and last in its image's list";
  EXPECT_EQ(utf8(*send<"img_greet:">(mine, makeString("Hello"))), "Hello, Guest");
  EXPECT_EQ(selectorKeyFromCaller(), Selector(selector<"img_greet:">).key());

  const auto theirs = Strong<NSObject>::adopt(symbol<NSObject*()>(host, "host_makeGuest")());
  EXPECT_TRUE(isKind<Guest>(theirs));
  EXPECT_EQ(classOf(*theirs), classOf(*mine)) << "one class object for one type, whoever built it";
  EXPECT_EQ(seatsFromCaller(theirs), 2);

  NSObject* const privateOfHost = symbol<NSObject*()>(host, "host_privateClass")();
  EXPECT_NE(privateOfHost, privateClassOfCaller()) << "classes in unnamed namespaces are each their own";

  dlclose(host);
  EXPECT_TRUE(dlopen(HOST_LIBRARY, RTLD_NOW | RTLD_NOLOAD)) << "an image that has attached categories stays";
  EXPECT_EQ(greetFromCaller(mine), "Welcome, Guest") << "methods outlive a close";
}

TEST(Images, OfStaticLibrariesAreKeptByTheHeaderOfTheirMessages) {
  EXPECT_EQ(utf8(*send<"img_play">(make<Guest>())), "playing");
}

}  // namespace
