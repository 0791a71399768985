// SPDX-License-Identifier: Apache-2.0
#include "../objects.h"
#include <HavrinFoundation/platform/foundation/set.h>
#include <HavrinFoundation/runtime/casts_messages.h>

using namespace havrin;

namespace {

struct Playable : Protocol<Playable> {};
struct Recordable : Protocol<Recordable, Playable> {};

struct Station : Object<Station, NSObject> {
  using Protocols = List<Recordable>;
};
class Relay : public Object<Relay, Station> {};

// Claims to be a Station, and notes the classes that it is asked about.
struct Chameleon : Object<Chameleon, NSObject> {
  bool isKindOfClass(Class cls) const override {
    asked.emplace_back(cls.name());
    return cls == classOf<Station>() || cls == classOf<NSObject>();
  }
  bool conformsToProtocol(const AnyProtocol&) const override { return true; }
  mutable std::vector<std::string> asked;
};

TEST(Casts, ReturnTheObjectOrNull) {
  const auto relay = make<Relay>();
  const Strong<Station> station = send<"ifInstance:">(classOf<Station>(), relay);
  EXPECT_EQ(station.get(), relay.get());
  EXPECT_FALSE(send<"ifInstance:">(classOf<Relay>(), make<Station>()));
  EXPECT_FALSE(send<"ifInstance:">(classOf<NSString>(), relay));
  EXPECT_FALSE(send<"ifInstance:">(classOf<NSString>(), nullptr));
  EXPECT_EQ(send<"ifConformance:">(relay, protocolOf<Playable>()).get(), relay.get());
  EXPECT_FALSE(send<"ifConformance:">(makeString("x"), protocolOf<Playable>()));
  EXPECT_FALSE(send<"ifConformance:">(Strong<Relay>(), protocolOf<Playable>()));
  const Strong<NSObject> cls = send<"ifConformance:">(classOf<Relay>(), protocolOf<Playable>());
  EXPECT_EQ(cls.get(), static_cast<NSObject*>(classOf<Relay>())) << "a class object is not a Relay";
}

TEST(Casts, UseTheOverridesOfTheObject) {
  const auto chameleon = make<Chameleon>();
  const Strong<Station> claimed = send<"ifInstance:">(classOf<Station>(), chameleon);
  EXPECT_EQ(static_cast<void*>(claimed.get()), static_cast<void*>(chameleon.get())) << "it says that it is a Station";
  EXPECT_TRUE(send<"ifConformance:">(chameleon, protocolOf<Playable>()));
  chameleon->asked.clear();
  const auto classes = makeArray({classOf<NSString>(), classOf<Station>(), classOf<NSNumber>()});
  EXPECT_TRUE(send<"isAnyKindOfClass:">(chameleon, classes));
  EXPECT_EQ(chameleon->asked, (std::vector<std::string>{"NSString", "Station"})) << "up to the first match";
}

TEST(Casts, FindTheClassInAnyCollection) {
  const auto relay = make<Relay>();
  EXPECT_TRUE(send<"isAnyKindOfClass:">(relay, makeArray({classOf<NSString>(), classOf<Station>()})));
  EXPECT_TRUE(send<"isAnyKindOfClass:">(relay, makeSet({classOf<NSString>(), classOf<Station>()})));
  EXPECT_FALSE(send<"isAnyKindOfClass:">(make<Station>(), makeArray({classOf<Relay>()})));
  EXPECT_FALSE(send<"isAnyKindOfClass:">(relay, nullptr));
  EXPECT_EQ(nameOf([&] { (void)send<"isAnyKindOfClass:">(relay, letters("a")); }), NSInvalidArgumentException);
}

}  // namespace
