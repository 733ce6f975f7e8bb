// SPDX-License-Identifier: Apache-2.0

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/TestMachine.h"

namespace {

constexpr const char* settings = "Contents/Resources/en.lproj/installer.strings";

/// A product that is unlike the sample in all that a maker chooses, made by the tool and the documentation alone.
class SecondProductTest : public testing::Test {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to install for somebody else";
    ASSERT_EQ(std::system((MAKE_SAMPLE_VOLUME " '" + volume_.string() + "' nobody " STAND_IN).c_str()), 0);
    ASSERT_EQ(shell(INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool new Kit"), 0) << output();
  }

  /// The status of a shell's command; what it writes is in output().
  int shell(const std::string& command) {
    const std::string start = "cd '" + folder_.path().string() + "' && ";
    const int status = std::system(("(" + start + command + ") >'" + output_.string() + "' 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  int program(const std::string& name, const std::string& arguments) {
    return shell("LANG=C SUDO_UID=65534 '" + (bundle_ / "Contents/MacOS" / name).string() + "' " + arguments);
  }
  int tool(const std::string& arguments) { return program("InstallerTool", arguments); }
  [[nodiscard]] std::string output() const { return readFile(output_); }

  void configure(const std::string& key, const std::string& value) const {
    std::string text = readFile(bundle_ / settings);
    const std::size_t line = text.find("\"" + key + "\" = \"");
    ASSERT_NE(line, std::string::npos) << key;
    text.replace(line, text.find(";\n", line) - line, "\"" + key + "\" = \"" + value + "\"");
    writeFile(bundle_ / settings, text);
  }

  void fillIn() const {
    configure("company_name", "B\u00F6hm & S\u00F6hne");
    configure("product_name", "Licht/Schatten");
    configure("product_version", "7.0.0");
    configure("app_plist", "de.boehm.licht");
    configure("installer_identifier", "de.boehm.licht.installer");
    configure("languages", "ar de en es fr it ja pl");
    configure("hosts", "lightroom");
    for (const char* const language : {"ar", "de", "en", "es", "fr", "it", "ja", "pl"}) {
      writeFile(bundle_ / "Contents/Resources" / (std::string(language) + ".lproj") / "license.txt",
                "%PRODUCTNAME% \u00A9 %COMPANYNAME%\n");
    }
    for (const char* const unused : {"HD", "PHOTOSHOP", "PHOTOSHOP_PLUGINS"}) fs::remove_all(payload_ / unused);
    writeFile(payload_ / plugIn_ / "Info.lua", "return { VERSION = { major = 7 } }\n");
    writeFile(payload_ / plugIn_ / "Schatten.lua", "-- Schatten\n");
    writeFile(payload_ / "LIGHTROOM/Develop Presets/Gr\u00FCn.lrtemplate", "s = {}\n");
  }

  /// Paths of all files on the volume, one a line. A host's own folders stay when they become empty.
  [[nodiscard]] std::string allFiles() {
    return shell("find '" + volume_.string() + "' ! -type d | sort") == 0 ? output() : "";
  }

  TemporaryFolder folder_;
  const fs::path output_ = folder_.path() / "output";
  const fs::path volume_ = folder_.path() / "Macintosh HD";
  const std::string target_ = "-target '" + volume_.string() + "'";
  const fs::path bundle_ = folder_.path() / "Kit/Installer.app";
  const fs::path payload_ = bundle_ / "Contents/Resources/files";
  const std::string plugIn_ = "LIGHTROOM/Modules/Licht.lrplugin";
  const fs::path installed_ =
      volume_ / "Users/nobody/Library/Application Support/Adobe/Lightroom/Modules/Licht.lrplugin";
  const fs::path log_ = volume_ / "Library/Application Support/B\u00F6hm & S\u00F6hne/Licht:Schatten Installer.log";
};

TEST_F(SecondProductTest, IsMadeAndCheckedWithoutACompiler) {
  EXPECT_EQ(shell(INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool new Kit"), 73) << "it is there already";
  EXPECT_EQ(shell(INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool new nowhere/Kit"), 66);
  EXPECT_EQ(shell("grep -rliE 'corvane|dunmore|pelloria' Kit/*.txt Kit/Installer.app/Contents/Info.plist "
                  "Kit/Installer.app/Contents/Resources"),
            1)
      << "of the sample: " << output();
  EXPECT_EQ(tool("check Kit/Installer.app"), 1);
  EXPECT_NE(output().find("\"Your Company\""), std::string::npos) << output();
  EXPECT_NE(output().find("[payload.empty]"), std::string::npos) << output();
  fillIn();
  EXPECT_EQ(tool("check Kit/Installer.app"), 0) << output();
  const std::string german = readFile(bundle_ / "Contents/Resources/de.lproj/Localizable.strings");
  EXPECT_NE(german.find("/* English: Install %@ */\n\"main_wnd_title_fmt\" = \"%@ installieren\";"), std::string::npos);
}

TEST_F(SecondProductTest, IsInstalledUpgradedVerifiedAndRemoved) {
  fillIn();
  const std::string before = allFiles();
  ASSERT_EQ(program("Installer", "-quiet " + target_), 0) << output();
  EXPECT_EQ(readFile(installed_ / "Schatten.lua"), "-- Schatten\n");
  EXPECT_NE(readFile(log_).find("/Modules/Licht.lrplugin\n"), std::string::npos) << readFile(log_);
  EXPECT_EQ(tool("verify -" + target_), 0) << output();
  EXPECT_NE(output().find("Licht/Schatten"), std::string::npos) << output();

  configure("product_version", "7.1.0");
  writeFile(payload_ / plugIn_ / "Info.lua", "return { VERSION = { major = 7, minor = 1 } }\n");
  fs::remove(payload_ / plugIn_ / "Schatten.lua");
  EXPECT_EQ(tool("verify -" + target_), 1) << "the new version is not installed yet";
  ASSERT_EQ(program("Installer", "-quiet " + target_), 0) << output();
  EXPECT_EQ(namesIn(installed_), "Info.lua");
  EXPECT_EQ(tool("verify -" + target_), 0) << output();

  EXPECT_EQ(tool("remove --yes -" + target_), 0) << output();
  EXPECT_EQ(allFiles(), before);
}

TEST_F(SecondProductTest, IsShownAndInstalledThroughTheWindow) {
  fillIn();
  EXPECT_EQ(shell("'" + bundle_.string() +
                  "/Contents/MacOS/InstallerTool' preview Kit/Installer.app --pictures Pages "
                  "--hosts 2 --language ar"),
            0)
      << output();
  EXPECT_NE(namesIn(folder_.path() / "Pages").find("completion.png"), std::string::npos) << output();

  // The module that pictures the pages works the window, on a volume that is kept.
  const fs::path modules = bundle_ / "Contents/PlugIns";
  fs::rename(modules / "Window.so", modules / "RealWindow.so");
  fs::rename(modules / "Preview.so", modules / "Window.so");
  fs::create_directories(folder_.path() / "Runtime");
  EXPECT_EQ(shell("chmod 700 Runtime; export LANG=C SUDO_UID=65534 QT_QPA_PLATFORM=offscreen PICTURE_MODE=walk "
                  "PICTURE_FOLDER=/Users/Shared XDG_RUNTIME_DIR=\"$PWD/Runtime\" PICTURES=\"$PWD/Pages\"; "
                  "Kit/Installer.app/Contents/MacOS/Installer " +
                  target_),
            0)
      << output();
  EXPECT_EQ(namesIn(installed_), "Info.lua Schatten.lua") << output();
  EXPECT_EQ(tool("verify -" + target_), 0) << output();
}

TEST_F(SecondProductTest, IsPackedForMacs) {
  if (!fs::exists(SOURCE_FOLDER "/build/mac/compiler/version")) {
    GTEST_SKIP() << "the compiler for Macs is not installed: tools/make-mac-app installs it";
  }
  fillIn();
  ASSERT_EQ(shell("'" INSTALLER_BUNDLE "/Contents/MacOS/InstallerTool' pack Kit/Installer.app"), 0) << output();
  EXPECT_NE(output().find("Licht-Schatten Installer.dmg"), std::string::npos) << output();
}

}  // namespace
