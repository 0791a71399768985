// SPDX-License-Identifier: Apache-2.0
#include "property_list_samples.h"
#include <HavrinFoundation/platform/documents/binary_property_list.h>

#include <cmath>

namespace {

using namespace havrin;
using samples::Binary;
using samples::hexadecimal;
using List = PropertyList;

TEST(BinaryPropertyList, ReadsEveryKindOfObject) {
  for (const auto& [object, value, why] : Rows<std::string_view, List, std::string_view>{
           {"09", List(true), "true"},
           {"10 FF", List(255), "one byte is unsigned"},
           {"12 FF FF FF FF", List(4294967295), "four bytes are unsigned"},
           {"13 FF FF FF FF FF FF FF FF", List(-1), "eight bytes are signed"},
           {"14 00 00 00 00 00 00 00 00 80 00 00 00 00 00 00 00", List(std::uint64_t{1} << 63),
            "sixteen bytes, unsigned"},
           {"14 FF FF FF FF FF FF FF FF 80 00 00 00 00 00 00 00", List(INT64_MIN), "sixteen bytes, negative"},
           {"22 3F 80 00 00", List(1.0), "a narrow real"},
           {"42 00 FF", List(List::Data{std::byte{0}, std::byte{255}}), "data"},
           {"5F 11 00 02 61 00", List(std::string("a\0", 2)), "a zero in a text, a wide size"},
           {"62 D8 3D DC 4D", List("\U0001F44D"), "a surrogate pair"},
           {"62 D8 3D 00 61", List("\uFFFDa"), "half of one"},
           {"80 07", List(List::UID{7}), "a UID"},
           {"82 01 00 00", List(List::UID{65536}), "a UID of an odd width"},
           {"A0", List(List::Array{}), "an empty array"},
       })
    samples::expectRead(Binary{{object}}.bytes(), value, why);
  samples::expectRead(Binary{{"A1 00 00 01", "51 61"}, 0, 3, 5}.bytes(), samples::array("a"),
                      "wide references and offsets");
}

TEST(BinaryPropertyList, ReportsWhatIsWrongAndAtWhichByte) {
  for (const auto& [binary, error] : Rows<Binary, std::string_view>{
           {{{"00"}}, "byte 8: null and fill bytes are not values"},
           {{{"15 00"}}, "byte 8: invalid integer width"},
           {{{"14 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 00"}}, "byte 8: the integer does not fit into 64 bits"},
           {{{"14 00 00 00 00 00 00 00 01"}}, "byte 8: the object extends past the end of the objects"},
           {{{"21 00 00"}}, "byte 8: invalid real width"},
           {{{"5F"}}, "byte 8: the object extends past the end of the objects"},
           {{{"5F 51 61"}}, "byte 8: the size is not an integer"},
           {{{"5F 13"}, 0, 1, 8}, "byte 8: the object extends past the end of the objects"},
           {{{"5F 13 FF FF FF FF FF FF FF FF 61"}}, "byte 8: the object extends past the end of the objects"},
           {{{"51 E9"}}, "byte 8: the ASCII string has a byte that is not ASCII"},
           {{{"88 00 00 00 00 00 00 00 00 01"}}, "byte 8: the UID does not fit into 64 bits"},
           {{{"71 61"}}, "byte 8: unknown object type"},
           {{{"A1 01"}}, "byte 8: reference to an object that does not exist"},
           {{{"D1 01 01", "09"}}, "byte 8: a dictionary key is not a string"},
           {{{"A1 01", "D1 02 00", "51 61"}}, "byte 8: the object contains itself"},
           {{{}}, "byte 32: the offset table is outside the data"},
           {{{"09"}, 1}, "byte 26: the top object does not exist"},
           {{{"09"}, 0, 9}, "byte 17: the reference width is not 1 to 8"},
           {{{"09"}, 0, 1, 0}, "byte 15: the offset width is not 1 to 8"},
           {{{"09", ""}}, "byte 19: more objects than bytes"},
           {{{"A1 01", ""}}, "byte 11: the offset is outside the objects"},
       })
    EXPECT_EQ(samples::errorOf(readPropertyList(binary.bytes())), error);
}

TEST(BinaryPropertyList, RefusesObjectsThatOverlap) {
  std::string text = "bplist00";
  Binary::appendHexadecimal(text, "A3 01 02 03 52 61 61");
  text += std::string("\x08\x0C\x0C\x0C", 4);  // three objects that are one in truth
  Binary::append(text, 0x0101, 8);
  for (const unsigned value : {4U, 0U, 15U}) Binary::append(text, value, 8);
  EXPECT_EQ(samples::reasonOf(readPropertyList(samples::bytesOf(text))), "objects overlap");
}

std::vector<std::byte> nested(std::size_t depth) {
  std::vector<std::string> objects;
  for (std::size_t i = 1; i < depth; ++i) objects.push_back("A1 " + hexadecimal(i, 6));
  objects.emplace_back("A0");
  return Binary{{objects.begin(), objects.end()}, 0, 3, 4}.bytes();
}

TEST(BinaryPropertyList, BoundsTheNesting) {
  EXPECT_TRUE(readPropertyList(nested(List::kDeepestNesting)));
  EXPECT_EQ(samples::reasonOf(readPropertyList(nested(List::kDeepestNesting + 1))), "nested deeper than 512 levels");
  EXPECT_FALSE(readPropertyList(nested(1'000'000)));
}

TEST(BinaryPropertyList, SurvivesEveryDamage) {
  for (const auto& [name, value] : samples::all()) {
    if (name == "many" || name == "data" || name == "texts") continue;
    const auto whole = binaryPropertyList(value);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      EXPECT_FALSE(readPropertyList({whole.data(), size})) << name << " cut to " << size;
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
      auto damaged = whole;
      for (int byte = 0; byte < 256; ++byte) {
        damaged[at] = static_cast<std::byte>(byte);
        if (const auto read = readPropertyList(damaged)) {
          const auto again = readPropertyList(binaryPropertyList(*read));
          ASSERT_TRUE(again) << name << ", byte " << at << " as " << byte;
        }
      }
    }
  }
}

}  // namespace
