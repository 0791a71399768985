// SPDX-License-Identifier: Apache-2.0
#include "../../objects.h"
#include "../../temporary_folder.h"
#include <HavrinFoundation/platform/application/bundle.h>
#include <HavrinFoundation/platform/documents/property_list.h>
#include <HavrinFoundation/platform/foundation/data.h>
#include <HavrinFoundation/platform/foundation/ns_date.h>

#include <sys/stat.h>

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
  const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
  EXPECT_EQ(utf8(*NSBundle::mainBundle()->bundlePath()), program);
  EXPECT_EQ(NSBundle::bundleWithPath(program), NSBundle::mainBundle());

  folder.write("file", "");
  EXPECT_EQ(NSBundle::bundleWithPath(path + "/file"), nullptr);
  EXPECT_EQ(NSBundle::bundleWithPath(path + "/none"), nullptr);
  EXPECT_EQ(NSBundle::bundleWithPath(""), nullptr);
}

TEST(Bundle, ConvertsEachKindOfInformation) {
  const auto a = makeString("a");
  const struct {
    const char* key;
    List entry;
    Strong<NSObject> value;
  } rows[] = {
      {"text", List("\u00E9\U0001F44D"), makeString("\u00E9\U0001F44D")},
      {"integer", List(-7), makeNumber(-7)},
      {"large", List(UINT64_MAX), makeNumber(UINT64_MAX)},
      {"real", List(0.5), makeNumber(0.5)},
      {"yes", List(true), makeNumber(true)},
      {"date", List(Date() + 86400), make<NSDate>(Date() + 86400)},
      {"data", List(List::Data{std::byte{0xFF}, std::byte{0}}), makeData(std::string_view("\xFF\0", 2))},
      {"uids", List(List::Array{List(List::UID{1}), List(2)}), makeArray({makeNumber(2)})},
      {"array", List(List::Array{List("a"), List(1)}), makeArray({a, makeNumber(1)})},
      {"dictionary", List(List::Dictionary({{"a", List("b")}})), makeDictionary({{a, makeString("b")}})},
  };
  const TemporaryFolder folder;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.key);
    folder.write("Info.plist", binaryPropertyList(List(List::Dictionary({{row.key, row.entry}}))));
    EXPECT_TRUE(row.value->isEqual(valueIn(folder, row.key)));
  }
  folder.write("Info.plist", binaryPropertyList(List(List::Dictionary({{"uid", List(List::UID{1})}}))));
  EXPECT_EQ(valueIn(folder, "uid"), nullptr) << "means something in archives alone";
  folder.write("Info.plist", "<plist><dict><key>a</key><string>b</string></dict></plist>");
  EXPECT_TRUE(makeString("b")->isEqual(valueIn(folder, "a")));
  EXPECT_EQ(valueIn(folder, "A"), nullptr) << "keys are compared with their case";
  EXPECT_EQ(make<NSBundle>(folder.path().string())->objectForInfoDictionaryKey(nullptr), nullptr);
  EXPECT_EQ(make<NSBundle>()->objectForInfoDictionaryKey(a), nullptr);
}

TEST(Bundle, HasNoInformationWhereItsFileIsBad) {
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

TEST(Bundle, ReadsItsInformationOnceForAllThreads) {
  const TemporaryFolder folder;
  folder.write("Info.plist", "<plist><dict><key>a</key><string>old</string></dict></plist>");
  const auto bundle = make<NSBundle>(folder.path().string());
  onThreads(4, [&] {
    EXPECT_TRUE(makeString("old")->isEqual(bundle->objectForInfoDictionaryKey(makeString("a"))));
    EXPECT_EQ(NSBundle::bundleWithPath(folder.path().string()), NSBundle::bundleWithPath(folder.path().string()));
  });
  folder.write("Info.plist", "<plist><dict><key>a</key><string>new</string></dict></plist>");
  EXPECT_TRUE(makeString("old")->isEqual(bundle->objectForInfoDictionaryKey(makeString("a"))));
}

}  // namespace
