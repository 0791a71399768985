// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/colours/hex_codes.h>
#include <HavrinFoundation/colours/hex_codes_messages.h>
#include <HavrinFoundation/platform/base/random.h>
#include <HavrinFoundation/platform/object/exception.h>

#include <cmath>

using namespace havrin;

namespace {

constexpr double kHuge = std::numeric_limits<double>::max();

struct MyColour : Object<MyColour, UIColor> {
  static inline int initialised = 0;
  Strong<UIColor> initWithRed(double red, double green, double blue, double alpha) override {
    ++initialised;
    return UIColor::initWithRed(red, green, blue, alpha);
  }
};

std::string text(NSString* string) { return string ? utf8(*string) : "none"; }
std::string codeOf(NSObject* colour) {
  return colour ? hexString(*static_cast<UIColor*>(colour)).value_or("none") : "none";
}

TEST(HexCodes, AreReadWithSignsAndPrefixesOrNotAtAll) {
  const std::string combining = "\xCC\x81";
  for (const auto& [why, code, cleaned, written] : Rows<const char*, std::string, const char*, const char*>{
           {"six digits", "FF8800", "FF8800", "#FF8800"},
           {"prefix", "0xFF8800", "FF8800", "#FF8800"},
           {"alpha comes last", "#12345678", "12345678", "#12345678"},
           {"an opaque alpha is not written", "FF8800FF", "FF8800FF", "#FF8800"},
           {"dashes", "ff-88-00", "ff8800", "#FF8800"},
           {"11 characters, the last five joined pairs", "FF8800\r\n\r\n\r\n\r\n\r\n", "FF8800", "#FF8800"},
           {"12 characters", "FF8800\r\n\r\n\r\n\r\n\r\n\r\n", "none", "none"},
           {"combining marks count with what they mark", "F" + combining + "F" + combining + "8800", "FF8800",
            "#FF8800"},
           {"five digits in six characters", "#FFFFF", "none", "none"},
           {"letters that are no digits", "#GG0000", "none", "none"},
           {"a prefix that is not at the start", "#0xFF8800", "none", "none"},
           {"a marked x is no prefix", "0x" + combining + "FF8800", "none", "none"},
           {"a marked zero is no prefix", "0" + combining + "xFF8800", "none", "none"},
           {"full-width digits are removed", "１２FF8800", "FF8800", "#FF8800"},
           {"bytes that are no UTF-8 count one by one", "FF8800\xFF\xFF\xFF\xFF\xFF", "FF8800", "#FF8800"},
           {"one such byte more", "FF8800\xFF\xFF\xFF\xFF\xFF\xFF", "none", "none"},
           {"empty", "", "none", "none"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(codeOf(fromHexString<UIColor>(code)), written);
    EXPECT_EQ(codeOf(colorWithHexString(code)), written);
    EXPECT_EQ(codeOf(send<"h_colorWithHexString:">(classOf<UIColor>(), makeString(code))), written);
    EXPECT_EQ(text(send<"sanitizedWithHexString:">(classOf<UIColor>(), makeString(code))), cleaned);
  }
  EXPECT_FALSE(fromHexString<UIColor>(std::nullopt));
  EXPECT_FALSE(send<"h_colorWithHexString:">(classOf<UIColor>(), nullptr));
  EXPECT_FALSE(send<"sanitizedWithHexString:">(classOf<UIColor>(), nullptr));
}

TEST(HexCodes, AreWrittenFromTheColoursOwnComponents) {
  const auto in = [](CGColorSpace space, std::initializer_list<double> components) {
    return make<UIColor>(CGColor(space, components));
  };
  for (const auto& [why, colour, code] : Rows<const char*, Strong<UIColor>, const char*>{
           {"grey", make<UIColor>(0.5, 1.0), "#7F7F7F"},
           {"clear is a grey", UIColor::clearColor(), "#00000000"},
           {"truncated", make<UIColor>(1.0, 0.5, 0.0, 0.5), "#FF7F007F"},
           {"nearly opaque", make<UIColor>(1.0, 0.5, 0.0, 0.999), "#FF7F00FE"},
           {"beyond one", make<UIColor>(1.2, 0.0, 0.0, 1.0), "#1320000"},
           {"the low 32 bits", make<UIColor>(4294967297.0 / 255.0, 0.0, 0.0, 1.0), "#010000"},
           {"NaN", make<UIColor>(0.0, kNotANumber, 0.0, 1.0), "none"},
           {"beyond 64 bits", make<UIColor>(0.0, 0.0, -kHuge, 1.0), "none"},
           {"CMYK", in(CGColorSpace::genericCMYK(), {0, 1, 1, 0, 1}), "none"},
           {"a pattern", in(CGColorSpace::pattern(), {1}), "none"},
           {"two components of RGB", in(CGColorSpace::extendedSRGB(), {1, 1}), "none"},
           {"no space", make<UIColor>(CGColor(std::nullopt, {1, 1, 1, 1})), "none"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(codeOf(colour), code);
    EXPECT_EQ(text(send<"h_hexString">(colour)), code);
  }
}

TEST(HexCodes, MakeTheTypedClassAndByMessageAPlainColour) {
  MyColour::initialised = 0;
  const Strong<MyColour> mine = fromHexString<MyColour>("#FF8800");
  EXPECT_EQ(classOf(*mine).name(), "MyColour");
  EXPECT_EQ(MyColour::initialised, 1);
  EXPECT_EQ(classOf(*send<"h_colorWithHexString:">(classOf<MyColour>(), makeString("FF8800"))).name(), "UIColor");
  EXPECT_EQ(classOf(*send<"randomColor">(classOf<MyColour>())).name(), "UIColor");
  EXPECT_EQ(MyColour::initialised, 1);
}

// Gives these bits; 0: fails.
struct GivenBits : RandomSource {
  explicit GivenBits(std::uint64_t bits) : given(bits) { installRandomSource(this); }
  ~GivenBits() override { installRandomSource(nullptr); }
  std::uint32_t uniform(std::uint32_t) override { return 0; }
  bool fill(std::uint64_t& bits) override { return (bits = given) != 0; }
  std::uint64_t given;
};

TEST(RandomColours, AreOpaqueWithTheLowBitsOfTheSecureSource) {
  const GivenBits bits(0xFEDC'BA98'7600'0A0B);
  EXPECT_EQ(codeOf(randomColor()), "#000A0B");
  EXPECT_EQ(codeOf(send<"randomColor">(classOf<UIColor>())), "#000A0B");
}

TEST(RandomColoursDeathTest, EndTheProcessWhenTheSourceFails) {
  const GivenBits none(0);
  EXPECT_DEATH((void)randomColor(), "random");
}

}  // namespace
