// SPDX-License-Identifier: Apache-2.0
// Values whose files in fixtures/ were written by plistlib of Python 3.11, and bytes of the binary form made by hand.
#pragma once

#include "../../testing.h"
#include <HavrinFoundation/platform/documents/property_list.h>

namespace havrin::samples {

using List = PropertyList;

inline List dictionary(std::vector<List::Dictionary::Entry> entries) {
  return List(List::Dictionary(std::move(entries)));
}

template <class... Values>
List array(Values... values) {
  return List(List::Array{List(std::move(values))...});
}

inline std::vector<std::byte> bytesOf(std::string_view text) {
  const auto* begin = reinterpret_cast<const std::byte*>(text.data());
  return {begin, begin + text.size()};
}

inline std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  for (; times > 0; --times) result += text;
  return result;
}

inline std::string hexadecimal(std::size_t number, std::size_t digits) {
  std::string text(digits, '0');
  for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number /= 16)
    *digit = "0123456789ABCDEF"[number % 16];
  return text;
}

// The values by the names of their fixtures; "many" has none, it is too large to be kept.
inline std::vector<std::pair<std::string, List>> all() {
  const auto date = [](double secondsSince2001) { return Date::fromTimeIntervalSinceReferenceDate(secondsSince2001); };
  std::string everyByte;
  for (int i = 0; i < 512; ++i) everyByte += static_cast<char>(i);
  List::Array many;
  for (int i = 0; i < 70'000; ++i) many.emplace_back(std::to_string(i));
  constexpr auto kSmallest = std::numeric_limits<std::int64_t>::min();
  return {
      {"numbers", array(0, 1, 255, 256, 65535, 65536, 4294967295U, 4294967296, INT64_MAX, std::uint64_t{1} << 63,
                        UINT64_MAX, -1, -256, kSmallest, 0.0, 0.5, -1e300, true, false)},
      {"texts", array("", "a", "fourteen chars", "fifteen letters", std::string(300, 'x'), "\u00E9\u4E2D",
                      "a\U0001F44D", "<&>\"'", " \t\n")},
      {"data", array(List::Data(), bytesOf("a"), bytesOf("ab"), bytesOf("abc"), bytesOf(everyByte))},
      {"dates", array(date(0), date(730902896), date(-3187296000))},
      {"nested",
       dictionary({{"", dictionary({})},
                   {"list", List(List::Array())},
                   {"deep", array(array(array(array(dictionary({{"a", array(1, dictionary({{"b", List("a")}}))}})))))},
                   {"\u00E9", dictionary({{"a", List("a")}, {"b", List("a")}})}})},
      {"many", List(std::move(many))},
      {"info", dictionary({{"CFBundleIdentifier", List("com.havrin.radio")},
                           {"CFBundleShortVersionString", List("2024.10.0")},
                           {"CFBundleVersion", List("612345")},
                           {"StudioFloors", array(1, 2)},
                           {"IsOnAir", List(true)}})},
      {"uids", array(List::UID{0}, List::UID{255}, List::UID{256}, List::UID{65536}, List::UID{4294967296})},
  };
}

// The binary form of `objects`, written in hexadecimal, one after the other; references and offsets take one byte each.
struct Binary {
  std::vector<std::string_view> objects;
  std::uint64_t top = 0;
  std::uint64_t referenceSize = 1;
  std::uint64_t offsetSize = 1;

  [[nodiscard]] std::vector<std::byte> bytes() const {
    std::string text = "bplist00";
    std::vector<std::size_t> offsets;
    for (const std::string_view object : objects) {
      offsets.push_back(text.size());
      appendHexadecimal(text, object);
    }
    const std::size_t table = text.size();
    for (const std::size_t offset : offsets) append(text, offset, offsetSize);
    append(text, 0, 6);
    append(text, offsetSize, 1);
    append(text, referenceSize, 1);
    append(text, objects.size(), 8);
    append(text, top, 8);
    append(text, table, 8);
    return bytesOf(text);
  }

  static void append(std::string& text, std::uint64_t value, std::uint64_t size) {
    while (size > 0) text += static_cast<char>(value >> (8 * --size));
  }

  static void appendHexadecimal(std::string& text, std::string_view hexadecimal) {
    int pending = -1;
    for (const char c : hexadecimal) {
      if (c == ' ') continue;
      const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
      if (pending >= 0) text += static_cast<char>(pending * 16 + digit);
      pending = pending >= 0 ? -1 : digit;
    }
  }
};

// What is wrong, without the place.
inline std::string errorOf(const havrin::Decoded<havrin::PropertyList>& read) {
  return read ? "none" : read.error().detail();
}

inline void expectRead(std::span<const std::byte> bytes, const List& value, std::string_view why) {
  const auto read = readPropertyList(bytes);
  EXPECT_TRUE(read && *read == value) << why << ": " << errorOf(read);
}

inline std::string reasonOf(const havrin::Decoded<havrin::PropertyList>& read) {
  if (read) return "nothing";
  const std::string detail = read.error().detail();
  return detail.substr(detail.find(": ") + 2);
}

}  // namespace havrin::samples
