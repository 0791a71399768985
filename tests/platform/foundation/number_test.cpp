// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"

using namespace havrin;

TEST(Number, IsEqualByItsExactValueWhateverItsKind) {
  constexpr double kTwo64 = 0x1p64;
  const auto largest = makeNumber(~std::uint64_t{0});
  expectEquality(makeNumber(3), {makeNumber(3.0), makeNumber(std::uint64_t{3})},
                 {makeNumber(3.5), makeNumber(-3), s("3")});
  expectEquality(largest, {}, {makeNumber(-1), makeNumber(kTwo64)});
  expectEquality(makeNumber(kTwo64), {makeNumber(kTwo64)}, {largest, makeNumber(0)});
  expectEquality(makeNumber(-0x1p63), {makeNumber(std::numeric_limits<std::int64_t>::min())},
                 {makeNumber(std::uint64_t{1} << 63)});
  expectEquality(makeNumber(0.1), {makeNumber(0.1)}, {makeNumber(0.25), makeNumber(kNotANumber)});
  expectEquality(makeNumber(kNotANumber), {makeNumber(kNotANumber)}, {});
}
