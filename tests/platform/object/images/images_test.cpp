// Messages between images: a program, a library it links, and one that it opens at run time with its symbols kept local.
#include <dlfcn.h>

#include <HavrinFoundation/platform/object/exception.h>
#include <gtest/gtest.h>

#include "caller.h"
#include "greeting.h"

using namespace havrin;

namespace {

template <class F>
F* symbol(void* library, const char* name) {
  return reinterpret_cast<F*>(dlsym(library, name));
}

TEST(Images, ReachOneAnotherBySelectorAndByType) {
  const auto mine = make<Guest>();
  EXPECT_THROW(greetFromCaller(mine), NSException) << "nobody implements it yet, and the miss is not remembered";

  void* host = dlopen(HOST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_TRUE(host) << dlerror();
  EXPECT_EQ(greetFromCaller(mine), "Welcome, Guest");
  EXPECT_EQ(utf8(*send<"img_greet:">(mine, makeString("Hello"))), "Hello, Guest");
  EXPECT_EQ(selectorKeyFromCaller(), Selector(selector<"img_greet:">).key());

  const auto theirs = Strong<NSObject>::adopt(symbol<NSObject*()>(host, "host_makeGuest")());
  EXPECT_TRUE(isKind<Guest>(theirs));
  EXPECT_EQ(classOf(*theirs), classOf(*mine)) << "one class object for one type, whoever built it";
  EXPECT_EQ(seatsFromCaller(theirs), 2);

  NSObject* const privateOfHost = symbol<NSObject*()>(host, "host_privateClass")();
  EXPECT_NE(privateOfHost, privateClassOfCaller()) << "classes in unnamed namespaces are each their own";

  dlclose(host);
  EXPECT_EQ(greetFromCaller(mine), "Welcome, Guest") << "methods outlive a close";
}

}  // namespace
