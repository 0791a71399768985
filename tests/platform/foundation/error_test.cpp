// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/error.h>

namespace {

using namespace havrin;

constexpr const char* kDefault = "Error 4864 of NSCocoaErrorDomain.";

// Has its details from elsewhere.
class LateError : public Object<LateError, NSError> {
 public:
  Strong<NSString> domain() const override { return makeString("late"); }
  std::int64_t code() const override { return 7; }
  Strong<NSDictionary> userInfo() const override {
    return makeDictionary({{NSLocalizedDescriptionKey, makeString("too late")}});
  }
};

TEST(Error, DescribesItselfForPeopleAndDevelopers) {
  const auto people = makeString("No such station");
  const auto developers = makeString("*** decode: root");
  const auto number = makeNumber(3);
  const auto inner = make<NSError>(makeString("d"), -1);
  const std::string start = "Error Domain=NSCocoaErrorDomain Code=4864 ";
  for (const auto& [userInfo, localized, description, why] :
       Rows<Strong<NSDictionary>, std::string, std::string, const char*>{
           {nullptr, kDefault, start + '"' + kDefault + '"', "no details"},
           {makeDictionary({}), kDefault, start + '"' + kDefault + '"', "empty details"},
           {makeDictionary({{NSLocalizedDescriptionKey, people}}), "No such station",
            start + "\"No such station\" UserInfo={NSLocalizedDescription=No such station}", "a text for people"},
           {makeDictionary({{NSDebugDescriptionErrorKey, developers}}), kDefault,
            start + "\"*** decode: root\" UserInfo={NSDebugDescription=*** decode: root}", "a text for developers"},
           {makeDictionary({{NSDebugDescriptionErrorKey, developers}, {NSLocalizedDescriptionKey, people}}),
            "No such station",
            start + "\"No such station\" UserInfo={NSDebugDescription=*** decode: root, "
                    "NSLocalizedDescription=No such station}",
            "both"},
           {makeDictionary({{NSLocalizedDescriptionKey, number}}), kDefault,
            start + '"' + kDefault + "\" UserInfo={NSLocalizedDescription=3}", "no text"},
           {makeDictionary({{NSUnderlyingErrorKey, inner}}), kDefault,
            start + '"' + kDefault + "\" UserInfo={NSUnderlyingError={Error Domain=d Code=-1 \"Error -1 of d.\"}}",
            "an error behind it"},
       }) {
    SCOPED_TRACE(why);
    const auto error = make<NSError>(NSCocoaErrorDomain, 4864, userInfo);
    EXPECT_EQ(utf8(*error->localizedDescription()), localized);
    EXPECT_EQ(utf8(*error->description()), description);
  }
  EXPECT_EQ(utf8(*make<LateError>()->description()),
            "Error Domain=late Code=7 \"too late\" UserInfo={NSLocalizedDescription=too late}");
}

TEST(Error, IsEqualByDomainCodeAndDetails) {
  const auto details = makeDictionary({{NSLocalizedDescriptionKey, s("too late")}});
  const auto error = make<NSError>(s("late"), 7, details);
  expectEquality(error, {make<NSError>(s("late"), 7, details), make<LateError>()},
                 {make<NSError>(s("Late"), 7, details), make<NSError>(s("late"), 8, details),
                  make<NSError>(s("late"), 7), details});
  EXPECT_EQ(error->copy(), error);
}

TEST(Error, CopiesItsDomainAndDetails) {
  const auto domain = make<NSMutableString>("a");
  const auto details = make<NSMutableDictionary>();
  const auto error = make<NSError>(domain, 1, details);
  domain->append("b");
  details->setObject(makeString("b"), NSLocalizedDescriptionKey);
  EXPECT_TRUE(error->isEqual(make<NSError>(makeString("a"), 1)));
  EXPECT_THROW(static_cast<void>(make<NSError>(nullptr, 1)), NSException);
}

}  // namespace
