// SPDX-License-Identifier: Apache-2.0
#include "../documents/property_list_samples.h"
#include <HavrinFoundation/platform/decoding/property_list_decoder.h>

#include <map>

namespace {

using namespace havrin;
using samples::dictionary;

struct Station {
  std::string name;
  std::optional<std::int64_t> plays;
  std::vector<double> shares;
  bool favourite = false;

  using Fields = FieldList<Field<"name", &Station::name>, Field<"plays", &Station::plays>,
                           Field<"shares", &Station::shares>, Field<"favourite", &Station::favourite>>;
};

TEST(PropertyListDecoder, DecodesBothForms) {
  const std::string xml =
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>name</key><string>Á</string>"
      "<key>shares</key><array><integer>1</integer><real>0.5</real></array><key>favourite</key><true/></dict></plist>";
  const auto bytes = std::as_bytes(std::span(xml));
  const auto list = readPropertyList(bytes);
  ASSERT_TRUE(list);
  const PropertyListDecoder decoder;
  for (const Station& station : {decoder.decode<Station>(bytes), decoder.decode<Station>(*list),
                                 decoder.decode<Station>(binaryPropertyList(*list))}) {
    EXPECT_EQ(station.name, "Á");
    EXPECT_EQ(station.plays, std::nullopt);
    EXPECT_EQ(station.shares, (std::vector<double>{1, 0.5}));
    EXPECT_TRUE(station.favourite);
  }
}

TEST(PropertyListDecoder, ReadsAScalarByTheRulesOfItsType) {
  for (const auto& [list, error] : Rows<PropertyList, std::string>{
           {PropertyList(7), "none"},
           {PropertyList(7.5), "dataCorrupted at the top level: expected a 64-bit integer, found the number 7.5"},
           {PropertyList(-kInfinity),
            "dataCorrupted at the top level: expected a 64-bit integer, found the number -inf"},
           {PropertyList("7"), "typeMismatch at the top level: expected a 64-bit integer, found the string \"7\""},
           {PropertyList(Date()), "typeMismatch at the top level: expected a 64-bit integer, found a date"},
           {PropertyList(PropertyList::UID{1}),
            "typeMismatch at the top level: expected a 64-bit integer, found a reference"},
           {dictionary({}), "typeMismatch at the top level: expected a 64-bit integer, found an object"},
       }) {
    const auto decoded = PropertyListDecoder().tryDecode<std::int64_t>(list);
    EXPECT_EQ(decoded ? "none" : decoded.error().description(), error);
  }
  const PropertyList largest(std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(PropertyListDecoder().decode<std::uint64_t>(largest), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(PropertyListDecoder().decode<double>(PropertyList(kInfinity)), kInfinity);
  EXPECT_EQ(PropertyListDecoder().decode<float>(PropertyList(kInfinity)), std::numeric_limits<float>::infinity());
  EXPECT_FALSE(PropertyListDecoder().tryDecode<float>(PropertyList(1e300)));
  EXPECT_FALSE(PropertyListDecoder().tryDecode<std::uint8_t>(largest));
}

}  // namespace
