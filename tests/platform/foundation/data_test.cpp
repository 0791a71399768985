// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include <HavrinFoundation/platform/foundation/data.h>

using namespace havrin;

namespace {

std::string text(const NSData& data) {
  return {reinterpret_cast<const char*>(data.bytes().data()), static_cast<std::size_t>(data.length())};
}

// Has its bytes from elsewhere.
class BorrowedData : public Object<BorrowedData, NSData> {
 public:
  std::string source = "abc";
  std::span<const std::byte> bytes() const override { return std::as_bytes(std::span(source)); }
};

TEST(Data, IsEqualByteByByte) {
  const auto data = makeData("abc");
  EXPECT_EQ(data->length(), 3u);
  expectEquality(data, {makeData("abc"), data->mutableCopy(), make<BorrowedData>()},
                 {makeData("abd"), makeData("ab"), s("abc")});
  EXPECT_TRUE(make<NSData>()->isEqual(makeData("")));
}

TEST(Data, CopiesDoNotFollowAMutableOne) {
  const auto changing = make<NSMutableData>(makeData("abc")->bytes());
  const Strong<NSObject> copy = changing->copy();
  changing->append(changing->bytes());
  EXPECT_EQ(text(*changing), "abcabc");
  EXPECT_EQ(text(*cast<NSData>(copy)), "abc");
  EXPECT_FALSE(cast<NSMutableData>(copy));
  EXPECT_EQ(copy->copy(), copy) << "an immutable one is its own copy";
  changing->setData(changing->bytes().subspan(1, 2));
  EXPECT_EQ(text(*changing), "bc");
}

TEST(Data, DescribesItsLengthAndFirstBytes) {
  EXPECT_EQ(utf8(*makeData("abc")->description()), "{length = 3, bytes = 0x616263}");
  EXPECT_EQ(utf8(*makeData("")->description()), "{length = 0, bytes = 0x}");
  EXPECT_EQ(utf8(*makeData(std::string(25, '\xFF'))->description()),
            "{length = 25, bytes = 0x" + std::string(48, 'f') + "...}");
}

}  // namespace
