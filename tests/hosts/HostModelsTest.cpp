#include "hosts/ApertureHostModel.h"
#include "hosts/FireworksHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "support/TestMachine.h"

namespace {

using HostModelsTest = MachineTest;

TEST_F(HostModelsTest, AreInstalledWhereTheirFoldersAre) {
  const auto lightroom = [&] { return LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"); };
  const auto aperture = [&] { return ApertureHostModel::initWithHostName(platform_, "Aperture"); };
  const auto fireworks = FireworksHostModel::initWithHostName(platform_, "Adobe Fireworks CS6");
  EXPECT_FALSE(lightroom()->hostIsInstalled() || aperture()->hostIsInstalled() || fireworks->hostIsInstalled());
  machine_.addLightroom();
  fs::create_directories(machine_.inLibrary("Application Support/Aperture"));
  fs::create_directories(on("/Applications/Adobe Fireworks CS6/Plug-Ins"));
  EXPECT_TRUE(lightroom()->hostIsInstalled() && aperture()->hostIsInstalled() && fireworks->hostIsInstalled());
  EXPECT_THROW(static_cast<void>(lightroom()->valueForKey("shouldInstallPlugIns")), UnknownKey);
  EXPECT_THROW(static_cast<void>(fireworks->valueForKey("hostIsSelected")), UnknownKey);
}

TEST_F(HostModelsTest, WriteALightroomPreset) {
  const auto host = LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom");
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

}  // namespace
