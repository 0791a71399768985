// SPDX-License-Identifier: Apache-2.0
#include "../temporary_folder.h"
#include "../testing.h"
#include <HavrinFoundation/links/app_identity.h>
#include <HavrinFoundation/links/app_identity_messages.h>
#include <HavrinFoundation/platform/application/process_info.h>
#include <HavrinFoundation/testkit/main_bundle.h>

namespace {

using namespace havrin;

// Each message converts what its typed form returns.
void expectIdentity(const NSBundle& bundle, const std::string& version, const std::string& build, std::int64_t number) {
  const std::string system = utf8(*NSProcessInfo::processInfo()->operatingSystemVersionString());
  EXPECT_EQ(utf8(*send<"appVersionString">(bundle)), version);
  EXPECT_EQ(utf8(*send<"appBuildNumberString">(bundle)), build);
  EXPECT_EQ(send<"appBuildNumber">(bundle), number) << build;
  EXPECT_EQ(utf8(*send<"appAndBuildVersionString">(bundle)), version + "." + build);
  EXPECT_EQ(utf8(*send<"havrinAppUserAgentString">(bundle)),
            "Havrin/Version " + version + "/Build " + build + "/iOS " + system);
}

std::string information(std::string_view version, std::string_view build) {
  return "<plist><dict><key>CFBundleShortVersionString</key>" + std::string(version) + "<key>CFBundleVersion</key>" +
         std::string(build) + "</dict></plist>";
}

TEST(AppIdentity, ReadsTheInformationOfTheMainBundle) {
  const std::string version = " 1/0 \u00E9 ";  // is neither trimmed nor escaped
  const std::pair<std::string, std::int64_t> rows[] = {
      {"612345", 612345},        {"+7", 7}, {" 5", 0}, {"0x5", 0}, {"-9223372036854775808", INT64_MIN},
      {"9223372036854775808", 0}};
  const TemporaryFolder folder;
  const auto expectInformation = [&](const std::string& text, const std::string& build, std::int64_t number) {
    folder.write("Info.plist", text);
    const TestMainBundle main(folder.path().string());
    expectIdentity(*NSBundle::mainBundle(), build.empty() ? "" : version, build, number);
  };
  for (const auto& [build, number] : rows) {
    expectInformation(information("<string>" + version + "</string>", "<string>" + build + "</string>"), build, number);
  }
  expectInformation(information("<real>1.5</real>", "<integer>7</integer>"), "", 0);
  expectInformation("", "", 0);
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
  expectIdentity(*make<Disguised>(true), "CFBundleShortVersionString", "CFBundleVersion", 0);
  const auto stranger = make<Disguised>(false);
  const TestMainBundle main(stranger.get());
  EXPECT_EQ(appVersionString(*stranger) + appBuildNumberString(*stranger), "");
  EXPECT_EQ(appAndBuildVersionString(*stranger) + havrinAppUserAgentString(*stranger), "");
  EXPECT_EQ(appBuildNumber(*stranger), 0);
}

struct Renamed : Object<Renamed, NSBundle> {
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
