#include "hosts/FireworksHostModel.h"
#include "hosts/HostsModel.h"
#include "hosts/UnknownHostModel.h"
#include "support/TestMachine.h"

namespace {

class HostsModelTest : public testing::Test {
 protected:
  [[nodiscard]] static std::string names(const HostList& hosts) {
    std::string text;
    for (const auto& host : hosts) text += (text.empty() ? "" : ", ") + host->hostName();
    return text;
  }
  [[nodiscard]] fs::path preferences(const std::string& name) const {
    return machine_.onVolume(machine_.home() + "/Library/Preferences/" + name);
  }
  [[nodiscard]] fs::path adobe(const std::string& name) const {
    return machine_.onVolume(machine_.home() + "/Library/Application Support/Adobe/" + name);
  }
  void addBySettings(const std::string& name) {
    fs::create_directories(machine_.onVolume("/Applications/" + name + "/" + name + ".app"));
    fs::create_directories(preferences(name + " Settings"));
  }

  TestMachine machine_;
};

TEST_F(HostsModelTest, FindsNothingOnAnEmptyVolume) {
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()), "");
  fs::remove_all(machine_.onVolume("/Users"));
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()), "");
  machine_.addLightroom();
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()), "Adobe Lightroom");
}

TEST_F(HostsModelTest, ListsWhatIsRecentEnoughInOrder) {
  machine_.addLightroom();
  for (const char* const name : {"Adobe Photoshop CS5", "Adobe Photoshop CS6", "Adobe Photoshop CC",
                                 "Adobe Photoshop CC 2015.5", "Adobe Photoshop Elements 11"}) {
    machine_.addPhotoshop(name);
  }
  addBySettings("Adobe Photoshop CC 2019");
  addBySettings("Adobe Photoshop CC 2020");
  addBySettings("Adobe Photoshop 2020");
  writeFile(preferences("Paths of somebody else"), "");
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()),
            "Adobe Photoshop CC, Adobe Photoshop CS6, Adobe Lightroom, Adobe Photoshop CC 2020, Adobe "
            "Photoshop CC 2019, "
            "Adobe Photoshop CC 2015.5");
  for (const char* const name : {"Adobe Photoshop CS5", "Adobe Photoshop Elements 11"}) {
    EXPECT_TRUE(
        machine_.log.contains("Found path file " + machine_.home() + "/Library/Preferences/" + name + " Paths"));
  }
  EXPECT_FALSE(machine_.log.contains("somebody else"));
}

TEST_F(HostsModelTest, CountsAVersionOfTheSettingsOnce) {
  addBySettings("Adobe Photoshop CC 2019");
  machine_.addPhotoshop("Adobe Photoshop CC 2019");
  addBySettings("Adobe Photoshop CC 2020");
  addBySettings("Adobe Photoshop CC 2020 Zeta");
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()), "Adobe Photoshop CC 2020, Adobe Photoshop CC 2019");
}

TEST_F(HostsModelTest, ListsTwoPathsFilesOfOneVersion) {
  machine_.addPhotoshop("Adobe Photoshop CS6");
  fs::copy_file(preferences("Adobe Photoshop CS6 Paths"), adobe("Adobe Photoshop CS6 Paths"));
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()), "Adobe Photoshop CS6, Adobe Photoshop CS6");
  EXPECT_EQ(machine_.log.lines.at(0),
            "Found path file " + machine_.home() + "/Library/Application Support/Adobe/Adobe Photoshop CS6 Paths");
}

TEST_F(HostsModelTest, KeepsTheRememberedFolderOutAndAddsWhatItIsGiven) {
  writeFile(preferences("com.corvane.installer.plist"),
            "<plist><dict><key>customPath</key><string>/Mine</string></dict></plist>");
  machine_.addLightroom();
  HostsModel model(machine_.platform);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom");
  const auto custom = UnknownHostModel::initWithPlugInPath(machine_.platform, "/Mine");
  model.addHostAtRuntime(custom);
  model.addHostAtRuntime(custom);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom, Folder, Folder");
  EXPECT_EQ(names(filteredHosts(model.foundHosts(), "hostIsSelected == YES")), "Adobe Lightroom");
  custom->setShouldInstallScripts(true);
  EXPECT_TRUE(model.scriptsOrPanelsHosts().empty());
  model.removeHostAtRuntime(custom);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom");

  fs::create_directories(machine_.onVolume("/Applications/Adobe Fireworks CS6/Plug-Ins"));
  model.addHostAtRuntime(FireworksHostModel::initWithHostName(machine_.platform, "Adobe Fireworks CS6"));
  EXPECT_TRUE(model.foundHosts().empty()) << "a kind that has no place in the list";
  EXPECT_EQ(model.informativeText(), "Dunmore 3 and Dunmore 3");
}

TEST_F(HostsModelTest, IsNotHeldUpByWhatOnlyLooksLikeAFile) {
  fs::create_directories(preferences("Adobe Photoshop CS6 Paths"));
  fs::create_symlink("/nowhere", preferences("Adobe Photoshop CC Paths"));
  EXPECT_EQ(names(HostsModel(machine_.platform).foundHosts()), "");
  EXPECT_EQ(machine_.clock.sleeps.size(), 6U);
}

}  // namespace
