#include "platform/posix/BundleOnDisk.h"
#include "support/TestMachine.h"

namespace {

class BundleTest : public testing::Test {
 protected:
  std::string text(const PosixUser& user, const char* key, const char* table = "Localizable") {
    return BundleOnDisk(machine_.inBundle("..").lexically_normal().string(), machine_.files, user, machine_.log)
        .localizedString(key, "fallback", table);
  }

  TestMachine machine_;
  PosixUser german_{{}, {"de-AT", "de", "en"}};
  PosixUser french_{{}, {"fr", "en"}};
};

TEST_F(BundleTest, PicksTheUsersLanguage) {
  writeFile(machine_.inBundle("Resources/de.lproj/Localizable.strings"), "done = Fertig;");
  EXPECT_EQ(text(german_, "done"), "Fertig");
  EXPECT_EQ(text(french_, "done"), "Done");
  EXPECT_EQ(text(german_, "no such key"), "fallback");
  EXPECT_EQ(text(german_, "company_name", "installer"), "Corvane") << "a table that the language does not have";
  EXPECT_EQ(text(german_, "done", "NoTable"), "fallback");
  EXPECT_TRUE(machine_.log.contains("No strings table NoTable"));
}

TEST_F(BundleTest, ReadsDamagedTablesAsFarAsTheyGo) {
  writeFile(machine_.inBundle("Resources/de.lproj/Localizable.strings"), "done = \"Fertig\xFF\"; broken = ");
  EXPECT_EQ(text(german_, "done"), "Fertig\xEF\xBF\xBD");
  EXPECT_EQ(text(german_, "broken"), "fallback");
  EXPECT_TRUE(machine_.log.contains("de.lproj/Localizable.strings: line 1"));
  writeFile(machine_.inBundle("Resources/de.lproj/Localizable.strings"),
            "<?xml version=\"1.0\"?><plist><dict><key>done</key><string>Fertig</string></dict></plist>");
  EXPECT_EQ(text(german_, "done"), "Fertig");
}

TEST_F(BundleTest, AnswersForAnInfoListOfAnyKind) {
  const auto name = [&] { return machine_.platform.bundles.bundleAtPath("/X.app")->infoValue("CFBundleName"); };
  EXPECT_EQ(machine_.platform.bundles.bundleAtPath("/X.app"), nullptr);
  fs::create_directories(machine_.onVolume("/X.app/Contents"));
  EXPECT_TRUE(name().isNone()) << "missing";
  const fs::path info = machine_.onVolume("/X.app/Contents/Info.plist");
  for (const auto* const damaged : {"", "garbage", "<plist><dict><key>CFBundleName</key><str", "bplist00garbage"}) {
    writeFile(info, damaged);
    EXPECT_TRUE(name().isNone()) << damaged;
  }
  writeFile(info, "<plist><dict><key>CFBundleName</key><string>X</string></dict></plist>");
  EXPECT_EQ(name(), Value("X"));
  fs::remove(info);
  writeFile(machine_.onVolume("/X.app/Info.plist"),
            "<plist><dict><key>CFBundleName</key><string>flat</string></dict></plist>");
  EXPECT_EQ(name(), Value("flat"));
}

}  // namespace
