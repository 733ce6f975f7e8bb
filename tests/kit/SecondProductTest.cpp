// SPDX-License-Identifier: Apache-2.0

#include "support/ProgramTest.h"

namespace {

/// A product that is unlike the sample in all that a maker chooses, made by the tool and the documentation alone.
class SecondProductTest : public ProgramTest {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to install for somebody else";
    makeVolume("nobody");
    ASSERT_EQ(shell(INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool new Kit"), 0) << output();
  }

  int program(const std::string& command) {
    return shell("LANG=C SUDO_UID=65534 Kit/Installer.app/Contents/MacOS/" + command);
  }

  void fillIn() const {
    const Texts values = {{"company_name", "B\u00F6hm & S\u00F6hne"},
                          {"product_name", "Licht/Schatten"},
                          {"product_version", "7.0.0"},
                          {"app_plist", "de.boehm.licht"},
                          {"installer_identifier", "de.boehm.licht.installer"},
                          {"languages", "ar de en fr ja ko pl zh-Hans"},
                          {"hosts", "lightroom"}};
    for (const auto& [key, value] : values) configure(bundle_, key, value);
    for (const std::string language : {"ar", "de", "en", "fr", "ja", "ko", "pl", "zh-Hans"}) {
      writeFile(bundle_ / "Contents/Resources" / (language + ".lproj") / "license.txt",
                "%PRODUCTNAME% \u00A9 %COMPANYNAME%\n");
    }
    for (const char* const picture : {"Product.png", "Installer.icns"}) {
      writeFile(bundle_ / "Contents/Resources" / picture, readFile(fs::path(SOURCE_FOLDER "/resources") / picture));
    }
    for (const char* const unused : {"HD", "PHOTOSHOP", "PHOTOSHOP_PLUGINS"}) fs::remove_all(payload_ / unused);
    writeFile(payload_ / "LIGHTROOM/Modules/Licht.lrplugin/Info.lua", "return { VERSION = { major = 7 } }\n");
    writeFile(payload_ / "LIGHTROOM/Develop Presets/Gr\u00FCn.lrtemplate", "s = {}\n");
  }
  /// Paths of all files on the volume, one a line. A host's own folders stay when they become empty.
  [[nodiscard]] std::string allFiles() { return shell("find Macintosh* ! -type d | sort") == 0 ? output() : ""; }

  const std::string target_ = "-target 'Macintosh HD'";
  const fs::path bundle_ = folder_.path() / "Kit/Installer.app";
  const fs::path payload_ = bundle_ / "Contents/Resources/files";
};

TEST_F(SecondProductTest, IsMadeInstalledUpgradedAndRemovedWithoutACompiler) {
  EXPECT_EQ(shell(INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool new Kit"), 73) << "it is there already";
  EXPECT_EQ(shell(INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool new nowhere/Kit"), 66);
  EXPECT_EQ(shell("grep -rliE 'corvane|dunmore|pelloria' Kit/*.txt Kit/Installer.app/Contents/Info.plist "
                  "Kit/Installer.app/Contents/Resources"),
            1)
      << "of the sample: " << output();
  const std::string german = readFile(bundle_ / "Contents/Resources/de.lproj/Localizable.strings");
  EXPECT_NE(german.find("/* English: Install %@ */\n\"main_wnd_title_fmt\" = \"%@ installieren\";"), std::string::npos);
  EXPECT_EQ(program("InstallerTool check Kit/Installer.app"), 1);
  EXPECT_TRUE(says("\"Your Company\"")) << output();
  EXPECT_TRUE(says("[payload.empty]")) << output();
  fillIn();
  EXPECT_EQ(program("InstallerTool check Kit/Installer.app"), 0) << output();

  const std::string before = allFiles();
  ASSERT_EQ(program("Installer -quiet " + target_), 0) << output();
  const fs::path log = volume_ / "Library/Application Support/B\u00F6hm & S\u00F6hne/Licht:Schatten Installer.log";
  EXPECT_NE(readFile(log).find("/Modules/Licht.lrplugin\n"), std::string::npos) << readFile(log);
  EXPECT_EQ(program("InstallerTool verify -" + target_), 0) << output();
  EXPECT_TRUE(says("Licht/Schatten")) << output();

  configure(bundle_, "product_version", "7.1.0");
  writeFile(payload_ / "LIGHTROOM/Modules/Licht.lrplugin/Info.lua", "return { VERSION = { major = 7, minor = 1 } }\n");
  EXPECT_EQ(program("InstallerTool verify -" + target_), 1) << "another version";
  EXPECT_EQ(program("Installer -quiet " + target_), 0) << output();
  EXPECT_EQ(program("InstallerTool verify -" + target_), 0) << output();
  EXPECT_EQ(program("InstallerTool remove --yes -" + target_), 0) << output();
  EXPECT_EQ(allFiles(), before);
}

TEST_F(SecondProductTest, IsInstalledThroughItsWindow) {
  fillIn();
  ASSERT_EQ(program("InstallerTool preview Kit/Installer.app --pictures pages --hosts 2 --language ar"), 0) << output();
  EXPECT_EQ(namesIn(folder_.path() / "pages"),
            "completion.png custom-folder.png failure.png hosts.png installing.png licence.png ready.png "
            "running-host.png");
}

TEST_F(SecondProductTest, IsPackedForMacs) {
  if (!fs::exists(SOURCE_FOLDER "/build/mac/compiler/version")) {
    GTEST_SKIP() << "the compiler for Macs is not installed: tools/make-mac-app installs it";
  }
  fillIn();
  ASSERT_EQ(shell("'" INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool' pack Kit/Installer.app"), 0) << output();
  EXPECT_TRUE(says("Licht-Schatten Installer.dmg")) << output();
}

}  // namespace
