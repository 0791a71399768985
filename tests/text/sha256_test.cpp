// SPDX-License-Identifier: Apache-2.0
#include "../testing.h"
#include <HavrinFoundation/platform/unicode/unicode.h>
#include <HavrinFoundation/text/sha256.h>
#include <HavrinFoundation/text/sha256_messages.h>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace std::string_view_literals;
using havrin::groupedSHA256;

TEST(SHA256, GroupsTheDigestOfTheTextUpToItsFirstZero) {
  constexpr const char* kEmpty = "e3b0c442-98fc1c14-9afbf4c8-996fb924-27ae41e4-649b934c-a495991b-7852b855";
  constexpr const char* kA = "ca978112-ca1bbdca-fac231b3-9a23dc4d-a786eff8-147c4e72-b9807785-afee48bb";
  for (const auto& [text, expected, why] : Rows<std::string_view, std::optional<std::string>, const char*>{
           {"", kEmpty, "nothing"},
           {"\0"sv, kEmpty, "a zero byte first"},
           {"a\0b"sv, kA, "up to the zero byte"},
           {"é👍", "11451712-37b5f382-18853d82-e7837eda-a7895304-dd2ffb40-daf9d3cc-e579392f", "UTF-8"},
           {"a\xFF", {}, "ill-formed text has no digest"},
           {"a\0\xED\xA0\xBD"sv, {}, "not even behind a zero"},
       }) {
    SCOPED_TRACE(why);
    EXPECT_EQ(groupedSHA256(text), expected);
    if (!havrin::isWellFormed(text)) continue;  // a string of it has U+FFFD in its place
    const auto digest = havrin::HAV_SHA_256(havrin::makeString(text));
    EXPECT_EQ(utf8(*digest), expected);
    EXPECT_TRUE(havrin::isKind<havrin::NSMutableString>(digest));
  }
  EXPECT_EQ(havrin::HAV_SHA_256(nullptr), nullptr);
  EXPECT_EQ(havrin::HAV_SHA_256(havrin::makeString(u"a\xD83D")), nullptr) << "no UTF-8 form";
}

TEST(SHA256, TextOfFourGibibytesHasNoDigest) {
  // The same 16 MiB of memory, again and again.
  constexpr std::size_t kPart = std::size_t{16} << 20, kSize = std::size_t{1} << 32;
  const std::string part(kPart, 'a');
  const int file = memfd_create("pages", 0);
  const auto text =
      static_cast<char*>(mmap(nullptr, kSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  bool usable = text != MAP_FAILED && write(file, part.data(), kPart) == static_cast<ssize_t>(kPart);
  for (std::size_t at = 0; usable && at < kSize; at += kPart) {
    usable = mmap(text + at, kPart, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0) != MAP_FAILED;
  }
  if (!usable) GTEST_SKIP() << "no room for 4 GiB of addresses";
  EXPECT_EQ(groupedSHA256({text, kSize}), std::nullopt);
  munmap(text, kSize);
  close(file);
}

}  // namespace
