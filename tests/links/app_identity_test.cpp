// SPDX-License-Identifier: Apache-2.0
#include "../temporary_folder.h"
#include "../testing.h"
#include <HavrinFoundation/links/app_identity.h>
#include <HavrinFoundation/links/app_identity_messages.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/testkit/main_bundle.h>

namespace {

using namespace havrin;

struct Identity {
  std::string version, buildString;
  std::int64_t build = 0;
  std::string both, agent;
};

// Each message converts what its typed form returns.
void expectIdentity(const NSBundle& bundle, const Identity& expected) {
  EXPECT_EQ(utf8(*send<"appVersionString">(bundle)), expected.version);
  EXPECT_EQ(utf8(*send<"appBuildNumberString">(bundle)), expected.buildString);
  EXPECT_EQ(send<"appBuildNumber">(bundle), expected.build);
  EXPECT_EQ(utf8(*send<"appAndBuildVersionString">(bundle)), expected.both);
  EXPECT_EQ(utf8(*send<"havrinAppUserAgentString">(bundle)), expected.agent);
}

Identity identityOf(const std::string& version, const std::string& buildString, std::int64_t build) {
  const std::string system = utf8(*NSProcessInfo::processInfo()->operatingSystemVersionString());
  return {version, buildString, build, version + "." + buildString,
          "Havrin/Version " + version + "/Build " + buildString + "/iOS " + system};
}

std::string information(std::string_view version, std::string_view build) {
  return "<plist><dict><key>CFBundleShortVersionString</key>" + std::string(version) + "<key>CFBundleVersion</key>" +
         std::string(build) + "</dict></plist>";
}

TEST(AppIdentity, ReadsTheInformationOfTheMainBundle) {
  const struct {
    std::string_view why, version, build;
    Identity expected;
  } rows[] = {
      {"both", "<string>2024.10.0</string>", "<string>612345</string>", identityOf("2024.10.0", "612345", 612345)},
      {"numbers", "<real>1.5</real>", "<integer>7</integer>", identityOf("", "", 0)},
      {"nothing is trimmed or escaped", "<string> 1/0 \u00E9 </string>", "<string> 5</string>",
       identityOf(" 1/0 \u00E9 ", " 5", 0)},
      {"a plus", "<string>1</string>", "<string>+7</string>", identityOf("1", "+7", 7)},
      {"hexadecimal digits", "<string>1</string>", "<string>0x5</string>", identityOf("1", "0x5", 0)},
      {"the smallest", "<string>1</string>", "<string>-9223372036854775808</string>",
       identityOf("1", "-9223372036854775808", INT64_MIN)},
      {"beyond 64 bits", "<string>1</string>", "<string>9223372036854775808</string>",
       identityOf("1", "9223372036854775808", 0)},
  };
  const TemporaryFolder folder;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.why);
    folder.write("Info.plist", information(row.version, row.build));
    const TestMainBundle main(folder.path().string());
    expectIdentity(*NSBundle::mainBundle(), row.expected);
  }
  std::filesystem::remove(folder.path() / "Info.plist");
  const TestMainBundle main(folder.path().string());
  expectIdentity(*NSBundle::mainBundle(), identityOf("", "", 0));
}

// Equals the main bundle or not, and has each key as its own value.
class Disguised : public Object<Disguised, NSBundle> {
 public:
  explicit Disguised(bool isMain) : isMain_(isMain) {}
  bool isEqual(const NSObject*) const override { return isMain_; }
  Strong<NSObject> objectForInfoDictionaryKey(const NSString* key) const override { return key->copy(); }

 private:
  bool isMain_;
};

TEST(AppIdentity, IsEmptyForABundleThatDoesNotEqualTheMainOne) {
  expectIdentity(*make<Disguised>(true), identityOf("CFBundleShortVersionString", "CFBundleVersion", 0));
  const auto stranger = make<Disguised>(false);
  const TestMainBundle main(stranger.get());
  expectIdentity(*stranger, {});
}

class Renamed : public Object<Renamed, NSBundle> {
 public:
  explicit Renamed(std::string_view path) : Object(path) {}
  bool isNumbered = true;
  Strong<NSString> version() { return makeString("v" + utf8(*sendSuper<"appVersionString">(*this))); }
  Strong<NSString> build() { return isNumbered ? makeString("12") : nullptr; }
  using Members = List<Method<"appVersionString", &Renamed::version>, Method<"appBuildNumberString", &Renamed::build>>;
};

TEST(AppIdentity, ComposesWhatTheOverridesOfTheReceiverReturn) {
  const TemporaryFolder folder;
  folder.write("Info.plist", information("<string>2.0</string>", "<string>9</string>"));
  const auto bundle = make<Renamed>(folder.path().string());
  const TestMainBundle main(bundle.get());
  EXPECT_EQ(appVersionString(*bundle), "2.0") << "the typed form is the library's own";
  EXPECT_EQ(appBuildNumber(*bundle), 12);
  EXPECT_EQ(appAndBuildVersionString(*bundle), "v2.0.12");
  EXPECT_TRUE(havrinAppUserAgentString(*bundle).starts_with("Havrin/Version v2.0/Build 12/iOS "));
  bundle->isNumbered = false;
  EXPECT_EQ(utf8(*send<"appAndBuildVersionString">(bundle)), "v2.0.") << "null counts as the empty text";
}

}  // namespace
