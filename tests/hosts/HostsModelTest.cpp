// SPDX-License-Identifier: Apache-2.0

#include "hosts/HostsModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "support/TestMachine.h"

namespace {

class HostsModelTest : public MachineTest {
 protected:
  [[nodiscard]] static std::string names(const HostList& hosts) {
    std::string text;
    for (const auto& host : hosts) text += (text.empty() ? "" : ", ") + host->hostName();
    return text;
  }
  [[nodiscard]] std::string found() const { return names(HostsModel(platform_).foundHosts()); }
  fs::path preferences(const std::string& name) { return machine_.inLibrary("Preferences/" + name); }
  void addLightroom() {
    fs::create_directories(machine_.inLibrary("Application Support/Adobe/Lightroom/External Editor Presets"));
  }
  void addBySettings(const std::string& name) {
    fs::create_directories(on("/Applications/" + name + "/" + name + ".app"));
    fs::create_directories(preferences(name + " Settings"));
  }
};

TEST_F(HostsModelTest, ListsWhatIsRecentEnoughInOrder) {
  EXPECT_EQ(found(), "");
  fs::remove_all(on("/Users"));
  EXPECT_EQ(found(), "") << "and stands a volume without the user";
  addLightroom();
  for (const char* const name :
       {"Adobe Photoshop CS5", "Adobe Photoshop CS6", "Adobe Photoshop CC", "Adobe Photoshop CC 2015.5",
        "Adobe Photoshop CC 2020", "Adobe Photoshop Elements 11"}) {
    machine_.addPhotoshop(name);
  }
  for (const char* const name :
       {"Adobe Photoshop CC 2019", "Adobe Photoshop CC 2019 Zeta", "Adobe Photoshop CC 2020", "Adobe Photoshop 2020"}) {
    addBySettings(name);
  }
  const std::string settings = machine_.home() + "/Library/Preferences";
  files_.listings[settings] = *files_.contentsOfDirectory(settings);
  const std::string support = "Application Support/Adobe/Adobe Photoshop CS6 Paths";
  fs::copy_file(preferences("Adobe Photoshop CS6 Paths"), machine_.inLibrary(support));
  writeFile(preferences("Paths of somebody else"), "");
  // A version of the settings comes once, and every Paths file.
  EXPECT_EQ(found(),
            "Adobe Photoshop CC, Adobe Photoshop CS6, Adobe Photoshop CS6, Adobe Lightroom, "
            "Adobe Photoshop CC 2020, Adobe Photoshop CC 2019, Adobe Photoshop CC 2015.5");
  EXPECT_EQ(log_.lines.at(0), "Found path file " + machine_.home() + "/Library/" + support);
  EXPECT_EQ(log_.count("Found path file "), 7) << "the old ones too, but not somebody else's";
}

TEST_F(HostsModelTest, LooksForTheKindsThatTheMakerNames) {
  writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"), "hosts = \"lightroom aperture granby\";");
  addLightroom();
  machine_.addPhotoshop("Adobe Photoshop CS6");
  EXPECT_EQ(found(), "Adobe Lightroom");
  fs::create_directories(machine_.inLibrary("Application Support/Aperture"));
  EXPECT_EQ(found(), "Adobe Lightroom, Aperture");
}

TEST_F(HostsModelTest, TakesTheFirstOfAVersionInTheOrderOfTheListing) {
  const std::vector<std::string> listed = {"._Adobe Photoshop CC 2019 Settings", "Adobe Photoshop CC 2019 Settings",
                                           "Adobe Photoshop CC 2019 (Beta) Settings"};
  addBySettings("Adobe Photoshop CC 2019");
  fs::create_directories(preferences(listed[2]));
  writeFile(preferences(listed[0]), "");
  files_.listings[machine_.home() + "/Library/Preferences"] = listed;
  EXPECT_EQ(found(), "Adobe Photoshop CC 2019");
}

TEST_F(HostsModelTest, KeepsTheRememberedFolderOutAndAddsWhatItIsGiven) {
  writeFile(preferences("com.corvane.installer.plist"), propertyListOf({{"customPath", "/Mine"}}));
  addLightroom();
  HostsModel model(platform_);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom");
  const auto custom = UnknownHostModel::initWithPlugInPath(platform_, "/Mine");
  model.addHostAtRuntime(custom);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom, Folder");
  EXPECT_EQ(names(filteredHosts(model.foundHosts(), "hostIsSelected == YES")), "Adobe Lightroom");
  model.removeHostAtRuntime(custom);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom");
  EXPECT_EQ(model.informativeText().string(), "Dunmore 3 and Dunmore 3");
}

TEST_F(HostsModelTest, WritesALightroomPreset) {
  const auto host = LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom");
  const std::string text = host->templateFileTextWithAppName("Studio.app");
  const std::string id = text.substr(14, 36);
  EXPECT_EQ(text, "s = {   id = \"" + id +
                      "\",\n  internalName = \"Dunmore 3\",\n  title = \"Dunmore 3\",\n  type = \"ExternalEditor\",\n"
                      "  value = {\n  externalEditingFormat = \"TIFF_None_16_ProPhotoRGB\",\n"
                      "  externalEditingFormat_dpi = 240,\n"
                      "  externalEditorFullPath  = \"/Applications/Studio.app\",\n  },\n  version = 0,\n  }\n");
  EXPECT_NE(host->templateFileTextWithAppName("Studio.app"), text) << "a new identifier every time";
  EXPECT_NE(host->templateFileTextWithAppName("6\"\\9.app").find("/Applications/6\\\"\\\\9.app\""), std::string::npos);
}

}  // namespace
