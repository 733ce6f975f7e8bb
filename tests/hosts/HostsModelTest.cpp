#include "hosts/FireworksHostModel.h"
#include "hosts/HostsModel.h"
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
  void addBySettings(const std::string& name) {
    fs::create_directories(on("/Applications/" + name + "/" + name + ".app"));
    fs::create_directories(preferences(name + " Settings"));
  }
};

TEST_F(HostsModelTest, ListsWhatIsRecentEnoughInOrder) {
  EXPECT_EQ(found(), "");
  fs::remove_all(on("/Users"));
  EXPECT_EQ(found(), "") << "and stands a volume without the user";
  fs::create_directories(machine_.inLibrary("Application Support/Adobe"));
  machine_.addLightroom();
  for (const char* const name :
       {"Adobe Photoshop CS5", "Adobe Photoshop CS6", "Adobe Photoshop CC", "Adobe Photoshop CC 2015.5",
        "Adobe Photoshop CC 2020", "Adobe Photoshop Elements 11"}) {
    machine_.addPhotoshop(name);
  }
  for (const char* const name :
       {"Adobe Photoshop CC 2019", "Adobe Photoshop CC 2019 Zeta", "Adobe Photoshop CC 2020", "Adobe Photoshop 2020"}) {
    addBySettings(name);
  }
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

TEST_F(HostsModelTest, KeepsTheRememberedFolderOutAndAddsWhatItIsGiven) {
  writeFile(preferences("com.corvane.installer.plist"), propertyListOf({{"customPath", "/Mine"}}));
  machine_.addLightroom();
  HostsModel model(platform_);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom");
  const auto custom = UnknownHostModel::initWithPlugInPath(platform_, "/Mine");
  model.addHostAtRuntime(custom);
  model.addHostAtRuntime(custom);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom, Folder, Folder");
  EXPECT_EQ(names(filteredHosts(model.foundHosts(), "hostIsSelected == YES")), "Adobe Lightroom");
  custom->setShouldInstallScripts(true);
  EXPECT_TRUE(model.scriptsOrPanelsHosts().empty());
  model.removeHostAtRuntime(custom);
  EXPECT_EQ(names(model.foundHosts()), "Adobe Lightroom");

  fs::create_directories(on("/Applications/Adobe Fireworks CS6/Plug-Ins"));
  model.addHostAtRuntime(FireworksHostModel::initWithHostName(platform_, "Adobe Fireworks CS6"));
  EXPECT_TRUE(model.foundHosts().empty()) << "a kind that has no place in the list";
  EXPECT_EQ(model.informativeText().string(), "Dunmore 3 and Dunmore 3");
}

}  // namespace
