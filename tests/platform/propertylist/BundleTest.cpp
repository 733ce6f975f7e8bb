// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/BundleOnDisk.h"
#include "support/TestMachine.h"

namespace {

class BundleTest : public MachineTest {
 protected:
  std::string text(const PosixUser& user, const char* key, const char* table = "Localizable") {
    return BundleOnDisk(machine_.inBundle("").parent_path().parent_path(), files_, user, log_)
        .localizedString(key, "fallback", table);
  }

  PosixUser german_{{}, {"de-AT", "de", "en"}};
};

TEST_F(BundleTest, AnswersInTheUsersLanguageAsFarAsItsTablesGo) {
  const fs::path table = machine_.inBundle("Resources/de.lproj/Localizable.strings");
  writeFile(table, "done = \"Fertig\xFF\"; broken = ");
  EXPECT_EQ(text(german_, "done"), "Fertig\xEF\xBF\xBD");
  EXPECT_EQ(text(german_, "broken"), "fallback");
  EXPECT_NE(log_.count("de.lproj/Localizable.strings: line 1"), 0);
  writeFile(table, "<?xml version=\"1.0\"?>" + propertyListOf({{"done", "Fertig"}}));
  EXPECT_EQ(text(german_, "done"), "Fertig");
  EXPECT_EQ(text({{}, {"fr", "en"}}, "done"), "Done");
  EXPECT_EQ(text(german_, "company_name", "installer"), "Corvane") << "a table that the language does not have";
  EXPECT_EQ(text(german_, "done", "NoTable"), "fallback");
}

TEST_F(BundleTest, AnswersForAnInfoListOfAnyKind) {
  const auto name = [&] { return platform_.bundles.bundleAtPath("/X.app")->infoValue("CFBundleName"); };
  EXPECT_EQ(platform_.bundles.bundleAtPath("/X.app"), nullptr);
  writeFile(on("/X.app/Info.plist"), propertyListOf({{"CFBundleName", "flat"}}));
  EXPECT_EQ(name(), Value("flat"));
  writeFile(on("/X.app/Contents/Info.plist"), "<plist><dict><key>CFBundleName</key><str");
  EXPECT_TRUE(name().isNone());
}

TEST(UserTest, PrefersTheLanguagesOfTheEnvironment) {
  using Languages = std::vector<std::string>;
  const std::pair<LanguageVariables, Languages> cases[] = {
      {{"fr", nullptr, nullptr, "C.UTF-8"}, {"en"}},
      {{nullptr, nullptr, nullptr, "de_AT.UTF-8"}, {"de-AT", "de", "en"}},
      {{nullptr, "ja_JP", "fr_FR", "de_DE"}, {"ja-JP", "ja", "en"}},
      {{"fr_CA:es", nullptr, "", "en_GB"}, {"fr-CA", "fr", "es", "en-GB", "en"}},
      {{nullptr, nullptr, nullptr, "zh_CN.GB18030"}, {"zh-Hans", "zh", "en"}},
      {{nullptr, nullptr, nullptr, "zh_TW"}, {"zh-Hant", "zh", "en"}}};
  for (const auto& [variables, languages] : cases) EXPECT_EQ(preferredLanguages(variables), languages);
}

}  // namespace
