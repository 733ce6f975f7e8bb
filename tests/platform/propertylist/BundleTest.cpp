// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/BundlesOnDisk.h"
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

/// The installer's own bundle, for a user with these languages.
class MainBundleTest : public BundleTest {
 protected:
  [[nodiscard]] MainBundle bundle(std::vector<std::string> languages) {
    user_ = std::make_unique<PosixUser>(UserAccount(), std::move(languages));
    return {machine_.inBundle("").parent_path().parent_path(), files_, *user_, log_};
  }
  void configure(const std::string& language, const std::string& table) {
    writeFile(machine_.inBundle("Resources/" + language + ".lproj/installer.strings"), table);
  }
  void addText(const std::string& language, const std::string& text) {
    writeFile(machine_.inBundle("Resources/" + language + ".lproj/Localizable.strings"), "text = \"" + text + "\";");
  }

 private:
  std::unique_ptr<PosixUser> user_;
};

TEST_F(MainBundleTest, PrefersItsConfigurationToItsInfoList) {
  const auto about = [this] {
    const MainBundle installer = bundle({"en"});
    return installer.infoValue("CFBundleName").text() + "|" + installer.infoValue("CFBundleVersion").text() + "|" +
           installer.infoValue("NSHumanReadableCopyright").text();
  };
  writeFile(machine_.inBundle("Info.plist"), propertyListOf({{"CFBundleVersion", "1"}}));
  EXPECT_EQ(about(), "Dunmore 3 Installer|1|");
  configure("en",
            R"(company_name = Tamsin; product_name = Granby; product_version = "7.5"; copyright = "© %COMPANYNAME%";)");
  EXPECT_EQ(about(), "Granby Installer|7.5|© Tamsin");
  writeFile(machine_.inBundle("Info.plist"), propertyListOf({{"CFBundleName", "Set up Granby"}}));
  EXPECT_EQ(about(), "Set up Granby|7.5|© Tamsin");
}

TEST_F(MainBundleTest, NamesTheProductInAllTexts) {
  configure("en", "company_name = Tamsin; product_name = \"Grün/Blau\"; hosts = lightroom;");
  configure("de", "product_name = Tannenhof;");
  addText("en", "100 % %PRODUCTNAME%, %PRODUCTNAME% of %COMPANYNAME%, %@");
  EXPECT_EQ(bundle({"en"}).localizedString("text"), "100 % Grün/Blau, Grün/Blau of Tamsin, %@");
  EXPECT_EQ(bundle({"de", "en"}).localizedString("text"), "100 % Tannenhof, Tannenhof of Tamsin, %@");
  EXPECT_EQ(bundle({"de", "en"}).localizedString("hosts", "", "installer"), "lightroom") << "the same in all languages";
}

TEST_F(MainBundleTest, OffersTheLanguagesThatItIsToldTo) {
  for (const char* const language : {"de", "en", "fr"}) addText(language, language);
  const auto spoken = [this](const std::string& language) { return bundle({language, "en"}).localizedString("text"); };
  EXPECT_EQ(spoken("fr") + spoken("sv"), "fren");
  configure("en", "languages = \" en  de \";");
  EXPECT_EQ(spoken("fr") + spoken("de"), "ende");
  configure("en", "languages = \"de fr\";");
  EXPECT_EQ(spoken("sv") + spoken("fr") + spoken("en"), "defrde") << "the first for all others";
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
