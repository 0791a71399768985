#include <HavrinFoundation/platform/foundation/bundle.h>

#include <HavrinFoundation/platform/coding/property_list.h>
#include <HavrinFoundation/platform/foundation/array.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/dictionary.h>
#include <HavrinFoundation/platform/foundation/number.h>
#include <HavrinFoundation/platform/time/ns_date.h>
#include <HavrinFoundation/testkit/main_bundle.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "../../temporary_folder.h"

namespace {

using namespace havrin;
using List = PropertyList;

Strong<NSObject> valueIn(const TemporaryFolder& folder, std::string_view key) {
  return make<NSBundle>(folder.path().string())->objectForInfoDictionaryKey(makeString(key));
}

TEST(Bundle, IsOneForEachFolder) {
  const TemporaryFolder folder;
  const std::string path = folder.path().string();
  std::filesystem::create_directory(folder.path() / "inner");
  std::filesystem::create_directory_symlink(folder.path(), folder.path() / "link");
  const auto bundle = NSBundle::bundleWithPath(path);
  ASSERT_TRUE(bundle);
  EXPECT_EQ(utf8(*bundle->bundlePath()), path);
  for (const char* other : {"/", "/inner/..", "/link"}) {
    EXPECT_EQ(NSBundle::bundleWithPath(path + other), bundle) << other;
  }
  EXPECT_NE(NSBundle::bundleWithPath(path + "/inner"), bundle);
  EXPECT_FALSE(bundle->isEqual(NSBundle::mainBundle()));

  folder.write("file", "");
  EXPECT_EQ(NSBundle::bundleWithPath(path + "/file"), nullptr);
  EXPECT_EQ(NSBundle::bundleWithPath(path + "/none"), nullptr);
  EXPECT_EQ(NSBundle::bundleWithPath(""), nullptr);
}

TEST(Bundle, OfTheProgramIsTheMainOne) {
  const auto main = NSBundle::mainBundle();
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
  EXPECT_EQ(utf8(*main->bundlePath()), folder);
  EXPECT_EQ(NSBundle::mainBundle(), main);
  EXPECT_EQ(NSBundle::bundleWithPath(folder), main);

  const TemporaryFolder other;
  const auto before = NSBundle::bundleWithPath(other.path().string());
  {
    const TestMainBundle installed(other.path().string());
    EXPECT_NE(NSBundle::mainBundle(), main);
    EXPECT_EQ(NSBundle::bundleWithPath(other.path().string()), NSBundle::mainBundle());
    {
      const TestMainBundle inner(before.get());
      EXPECT_EQ(NSBundle::mainBundle(), before);
    }
    EXPECT_NE(NSBundle::mainBundle(), before);
  }
  EXPECT_EQ(NSBundle::mainBundle(), main);
}

TEST(Bundle, SaysWhatItsInformationSays) {
  const List list(List::Dictionary({{"text", List("\u00E9\U0001F44D")},
                                    {"integer", List(-7)},
                                    {"large", List(UINT64_MAX)},
                                    {"real", List(0.5)},
                                    {"yes", List(true)},
                                    {"date", List(Date::fromTimeIntervalSinceReferenceDate(86400))},
                                    {"data", List(List::Data{std::byte{0xFF}, std::byte{0}})},
                                    {"uids", List(List::Array{List(List::UID{1}), List(2)})},
                                    {"uid", List(List::UID{1})},
                                    {"array", List(List::Array{List("a"), List(1)})},
                                    {"dictionary", List(List::Dictionary({{"a", List("b")}}))}}));
  const TemporaryFolder binary;
  binary.write("Info.plist", binaryPropertyList(list));
  const TemporaryFolder xml;
  xml.write(
      "Info.plist",
      "<plist><dict><key>text</key><string>\u00E9\U0001F44D</string><key>integer</key><integer>-7</integer>"
      "<key>large</key><integer>18446744073709551615</integer><key>real</key><real>0.5</real><key>yes</key><true/>"
      "<key>date</key><date>2001-01-02T00:00:00Z</date><key>data</key><data>/wA=</data>"
      "<key>uids</key><array><dict><key>CF$UID</key><integer>1</integer></dict><integer>2</integer></array>"
      "<key>uid</key><dict><key>CF$UID</key><integer>1</integer></dict>"
      "<key>array</key><array><string>a</string><integer>1</integer></array><key>dictionary</key><dict><key>a</key>"
      "<string>b</string></dict></dict></plist>");
  const auto text = makeString("a");
  const std::pair<const char*, Strong<NSObject>> rows[] = {
      {"text", makeString("\u00E9\U0001F44D")},
      {"integer", makeNumber(-7)},
      {"large", makeNumber(UINT64_MAX)},
      {"real", makeNumber(0.5)},
      {"yes", makeNumber(true)},
      {"date", make<NSDate>(Date::fromTimeIntervalSinceReferenceDate(86400))},
      {"data", makeData(std::string_view("\xFF\0", 2))},
      {"uids", makeArray({makeNumber(2)})},
      {"array", makeArray({text, makeNumber(1)})},
      {"dictionary", makeDictionary({{text, makeString("b")}})},
  };
  for (const auto& [key, value] : rows) {
    SCOPED_TRACE(key);
    EXPECT_TRUE(value->isEqual(valueIn(binary, key)));
    EXPECT_TRUE(value->isEqual(valueIn(xml, key)));
  }
  EXPECT_EQ(valueIn(binary, "uid"), nullptr) << "means something in archives alone";
  EXPECT_EQ(valueIn(binary, "Text"), nullptr) << "keys are taken to the letter";
  EXPECT_EQ(make<NSBundle>(binary.path().string())->objectForInfoDictionaryKey(nullptr), nullptr);
  EXPECT_EQ(make<NSBundle>()->objectForInfoDictionaryKey(text), nullptr);
}

TEST(Bundle, SaysNothingWhereItsInformationIsBad) {
  const TemporaryFolder folder;
  EXPECT_EQ(valueIn(folder, "a"), nullptr) << "no file";
  const auto good = binaryPropertyList(List(List::Dictionary({{"a", List("b")}})));
  for (std::size_t size = 0; size < good.size(); ++size) {
    folder.write("Info.plist", std::span(good).first(size));
    EXPECT_EQ(valueIn(folder, "a"), nullptr) << "cut to " << size;
  }
  folder.write("Info.plist", good);
  EXPECT_NE(valueIn(folder, "a"), nullptr);
  std::filesystem::resize_file(folder.path() / "Info.plist", std::size_t{16 << 20} + 1);
  EXPECT_EQ(valueIn(folder, "a"), nullptr) << "too large";
  for (const char* text : {"{ a = b; }", "<plist><array/></plist>", "<plist><dict><key>a</key></dict></plist>"}) {
    folder.write("Info.plist", std::string_view(text));
    EXPECT_EQ(valueIn(folder, "a"), nullptr) << text;
  }
  std::filesystem::remove(folder.path() / "Info.plist");
  std::filesystem::create_directory(folder.path() / "Info.plist");
  EXPECT_EQ(valueIn(folder, "a"), nullptr) << "a folder";
  std::filesystem::remove(folder.path() / "Info.plist");
  ASSERT_EQ(mkfifo((folder.path() / "Info.plist").c_str(), 0600), 0);
  EXPECT_EQ(valueIn(folder, "a"), nullptr) << "a pipe";
}

TEST(Bundle, ReadsItsInformationOnceWhoeverAsks) {
  const TemporaryFolder folder;
  folder.write("Info.plist", "<plist><dict><key>a</key><string>old</string></dict></plist>");
  const auto bundle = make<NSBundle>(folder.path().string());
  std::latch start(4);
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      EXPECT_TRUE(makeString("old")->isEqual(bundle->objectForInfoDictionaryKey(makeString("a"))));
      EXPECT_EQ(NSBundle::bundleWithPath(folder.path().string()), NSBundle::bundleWithPath(folder.path().string()));
    });
  }
  threads.clear();
  folder.write("Info.plist", "<plist><dict><key>a</key><string>new</string></dict></plist>");
  EXPECT_TRUE(makeString("old")->isEqual(bundle->objectForInfoDictionaryKey(makeString("a"))));
}

}  // namespace
