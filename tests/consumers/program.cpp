// SPDX-License-Identifier: Apache-2.0
// The program that every consumer builds: both surfaces, a class of its own that overrides a message, and the exported
// data. Says what went wrong, and ends with 1.
#include <HavrinFoundation/HavrinFoundation.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/object/string.h>

#include <cstdio>
#include <string_view>

using namespace havrin;

namespace {

// An array whose select: keeps every element.
class Playlist : public Object<Playlist, NSArray> {
 public:
  std::uint64_t count() const override { return 3; }
  Strong<NSObject> objectAtIndex(std::uint64_t index) const override { return makeNumber(index); }
  Strong<NSArray> select(ElementPredicate) { return Strong<NSArray>(this); }
  using Members = List<Method<"select:", &Playlist::select>>;
};

int failures = 0;

void expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what);
  ++failures;
}

}  // namespace

int main() {
  expect(friendlyNumber(12'345) == "12.3k", "a typed form");

  const auto playlist = make<Playlist>();
  expect(send<"map:">(playlist, [](NSNumber* n) { return makeNumber(n->integerValue() + 1); })->count() == 3,
         "the messages of the library reach a class of the program");
  const auto odd = [](NSNumber* n) { return n->integerValue() % 2 == 1; };
  const auto kept = send<"select:">(makeArray({makeNumber(0), makeNumber(1), makeNumber(2)}), odd);
  expect(kept->count() == 1, "select: is the library's");
  expect(send<"select:">(static_cast<NSArray*>(playlist), odd)->count() == 3, "an override of the program is called");

  kHLogSubsystem = "org.example.player";
  expect(os_log_subsystem(hlog_create_with_category("network")) == std::string_view("org.example.player"),
         "kHLogSubsystem is one variable for the program and the library");
  expect(HavrinFoundationVersionNumber == 1.0, "the version can be read");
  return failures == 0 ? 0 : 1;
}
