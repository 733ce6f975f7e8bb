#include "install/BundleVersion.h"
#include "install/paths/PlugInFilesModel.h"
#include "support/TestMachine.h"

namespace {

TEST(PlugInFilesModel, KnowsWhereEverythingGoes) {
  TestMachine machine;
  const PlugInFilesModel paths(machine.platform);
  EXPECT_EQ(paths.settingsInstallPath(), "/Library/Application Support/Corvane/Dunmore 3");
  EXPECT_EQ(paths.installerLogPath(), "/Library/Application Support/Corvane/Dunmore 3 Installer.log");
  EXPECT_EQ(paths.productUserAppSupportPath(), machine.home() + "/Library/Application Support/Corvane/Dunmore 3");
  EXPECT_EQ(paths.lightRoomPresetDir(),
            machine.home() + "/Library/Application Support/Adobe/Lightroom/External Editor Presets");
  EXPECT_EQ(paths.standAloneAppsInstallPath(), "/Applications");
  EXPECT_TRUE(paths.IsCurrentLocale(machine.platform.user.preferredLanguages().front()));
  EXPECT_FALSE(paths.IsCurrentLocale("tlh"));
}

TEST(PlugInFilesModel, ListsHiddenPayloadToo) {
  TestMachine machine;
  const PlugInFilesModel paths(machine.platform);
  EXPECT_TRUE(paths.getFullPathsOfPlugInsInBundle().empty());
  makeBundle(machine.inBundle("SharedSupport/PlugIn/Dunmore 3.plugin"), {});
  writeFile(machine.inBundle("SharedSupport/PlugIn/.hidden"), "");
  const std::string folder = machine.inBundle("SharedSupport/PlugIn").string();
  EXPECT_EQ(paths.getFullPathsOfPlugInsInBundle(),
            (std::vector<std::string>{folder + "/.hidden", folder + "/Dunmore 3.plugin"}));
}

TEST(PlugInFilesModel, FindsTheUsersSettings) {
  TestMachine machine;
  const PlugInFilesModel paths(machine.platform);
  const std::string usual = machine.home() + "/Library/Application Support/Corvane/Dunmore 3";
  EXPECT_EQ(paths.userSettingsPath(), usual);
  writeFile(machine.onVolume(machine.home() + "/Library/Preferences/com.corvane.dunmore3.plist"),
            "<plist><dict><key>User Folder</key><string>/Users/Shared</string></dict></plist>");
  EXPECT_EQ(paths.userSettingsPath(), usual) << "nothing is there";
  fs::create_directories(machine.onVolume("/Users/Shared/Corvane/Dunmore 3"));
  EXPECT_EQ(paths.userSettingsPath(), "/Users/Shared/Corvane/Dunmore 3");
}

TEST(PlugInFilesModel, GoesOnWithoutNames) {
  TestMachine machine;
  writeFile(machine.inBundle("Resources/en.lproj/installer.strings"), "");
  const PlugInFilesModel paths(machine.platform);
  EXPECT_EQ(paths.productAppSupportPath(), "/Library/Application Support");
  EXPECT_EQ(paths.installerLogPath(), "/Library/Application Support/ Installer.log");
}

TEST(BundleVersion, IsOneNumberOfAllComponents) {
  for (const auto& [version, digits] :
       std::initializer_list<std::pair<const char*, const char*>>{{"3.1.2", "300010002"},
                                                                  {"3.10", "30010"},
                                                                  {"3.1", "30001"},
                                                                  {"3.0.9", "300000009"},
                                                                  {"12345.1", "123450001"},
                                                                  {"3b2.1", "1"},
                                                                  {"", "0"},
                                                                  {"..", "0"},
                                                                  {"0.0007", "7"},
                                                                  {"1.20240101123456789", "120240101123456789"}}) {
    EXPECT_EQ(BundleVersion::parse(version).digits(), digits) << version;
  }
  const auto older = [](const char* a, const char* b) { return BundleVersion::parse(a) < BundleVersion::parse(b); };
  EXPECT_TRUE(older("3.1", "3.0.9")) << "more components win";
  EXPECT_TRUE(older("3.9", "3.10"));
  EXPECT_TRUE(older("1.2.3.4.5.6", "1.2.3.4.5.7")) << "beyond what a machine word holds";
  EXPECT_FALSE(older("3.1", "3.1"));
}

}  // namespace
