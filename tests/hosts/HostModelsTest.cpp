#include "hosts/ApertureHostModel.h"
#include "hosts/FireworksHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "support/TestMachine.h"

namespace {

TEST(LightRoomHostModel, IsInstalledWhereItsPresetFolderIs) {
  TestMachine machine;
  EXPECT_FALSE(LightRoomHostModel::initWithHostName(machine.platform, "Adobe Lightroom")->hostIsInstalled());
  machine.addLightroom();
  const auto host = LightRoomHostModel::initWithHostName(machine.platform, "Adobe Lightroom");
  EXPECT_TRUE(host->hostIsInstalled());
  EXPECT_TRUE(host->hostIsSelected());
  EXPECT_FALSE(host->appPath());
  EXPECT_EQ(host->valueForKey("displaySortOrder"), Value(std::int64_t{5000}));
  EXPECT_THROW(static_cast<void>(host->valueForKey("shouldInstallPlugIns")), UnknownKey);
}

TEST(LightRoomHostModel, WritesAPreset) {
  TestMachine machine;
  const auto host = LightRoomHostModel::initWithHostName(machine.platform, "Adobe Lightroom");
  const std::string text = host->templateFileTextWithAppName("Studio.app");
  const std::string id = text.substr(14, 36);
  EXPECT_EQ(text, "s = {   id = \"" + id +
                      "\",\n  internalName = \"Dunmore 3\",\n  title = \"Dunmore 3\",\n  type = \"ExternalEditor\",\n"
                      "  value = {\n  externalEditingFormat = \"TIFF_None_16_ProPhotoRGB\",\n"
                      "  externalEditingFormat_dpi = 240,\n"
                      "  externalEditorFullPath  = \"/Applications/Studio.app\",\n  },\n  version = 0,\n  }\n");
  EXPECT_EQ(id.find_first_not_of("0123456789ABCDEF-"), std::string::npos);
  EXPECT_EQ(std::string({id[8], id[13], id[18], id[23]}), "----");
  EXPECT_NE(host->templateFileTextWithAppName("Studio.app"), text) << "a new identifier every time";
}

TEST(ApertureHostModel, IsInstalledWhereItsFolderIs) {
  TestMachine machine;
  EXPECT_FALSE(ApertureHostModel::initWithHostName(machine.platform, "Aperture")->hostIsInstalled());
  fs::create_directories(machine.onVolume(machine.home() + "/Library/Application Support/Aperture"));
  EXPECT_TRUE(ApertureHostModel::initWithHostName(machine.platform, "Aperture")->hostIsInstalled());
}

TEST(FireworksHostModel, LooksEachTimeWhetherItIsInstalled) {
  TestMachine machine;
  const auto host = FireworksHostModel::initWithHostName(machine.platform, "Adobe Fireworks CS6");
  EXPECT_FALSE(host->hostIsInstalled());
  fs::create_directories(machine.onVolume("/Applications/Adobe Fireworks CS6/Plug-Ins"));
  EXPECT_TRUE(host->hostIsInstalled());
  host->setScriptsPath("/ignored");
  host->setShouldInstallPanels(true);
  host->setShouldInstallScripts(true);
  host->setPanelsPath("/kept");
  EXPECT_EQ(host->scriptsPath() + host->panelsPath(), "/Applications/Adobe Fireworks CS6/Plug-Ins/kept");
  EXPECT_FALSE(host->shouldInstallPanels() || host->shouldInstallScripts());
  EXPECT_THROW(static_cast<void>(host->valueForKey("hostIsSelected")), UnknownKey);
  EXPECT_THROW(static_cast<void>(host->displaySortOrder()), UnknownKey);
}

}  // namespace
