// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/character_set_object.h>

using namespace havrin;

namespace {

// A set whose members are decided when they are asked for.
class LateSet : public Object<LateSet, NSCharacterSet> {
 public:
  CharacterSet characterSet() const override { return CharacterSet("xyz"); }
};

// A string whose units are made up.
class Countdown : public Object<Countdown, NSString> {
 public:
  std::uint64_t length() const override { return 10; }
  char16_t characterAtIndex(std::uint64_t index) const override { return static_cast<char16_t>(u'9' - index); }
};

TEST(CharacterSetObject, IsEqualByMembership) {
  const auto set = makeCharacterSet(CharacterSet("abc"));
  const Strong<NSMutableCharacterSet> changing = cast<NSMutableCharacterSet>(set->mutableCopy());
  expectEquality(set, {makeCharacterSet(CharacterSet("cba")), changing, set->invertedSet()->invertedSet()},
                 {set->invertedSet(), s("abc")});
  expectEquality(make<LateSet>(), {makeCharacterSet(CharacterSet("xyz"))}, {set});
  EXPECT_TRUE(make<LateSet>()->invertedSet()->longCharacterIsMember(U'a'));

  const Strong<NSObject> copy = changing->copy();
  changing->setCharacterSet(CharacterSet("z"));
  EXPECT_TRUE(copy->isEqual(set)) << "a copy does not follow";
  EXPECT_TRUE(changing->longCharacterIsMember(U'z'));
}

TEST(CharacterSetObject, IsFoundInStringsScalarByScalar) {
  const auto thumb = makeCharacterSet(CharacterSet("👍"));
  for (const auto& [text, set, range, why] : Rows<std::u16string_view, Strong<NSCharacterSet>, NSRange, const char*>{
           {u"123abc", makeCharacterSet(CharacterSet::letters()), {3, 1}, "in narrow text"},
           {u"a👎b", thumb, {kNotFound, 0}, "half a pair is not a match"},
           {u"👍\xD83D", thumb->invertedSet(), {2, 1}, "a lone surrogate is U+FFFD"},
           {u"az", make<LateSet>(), {1, 1}, "a subclass's members"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(makeString(text)->rangeOfCharacterFromSet(set->characterSet()), range);
    EXPECT_EQ(make<NSMutableString>(text)->rangeOfCharacterFromSet(set->characterSet()), range);
  }
  EXPECT_EQ(make<Countdown>()->rangeOfCharacterFromSet(CharacterSet("5")), (NSRange{4, 1}));
}

}  // namespace
