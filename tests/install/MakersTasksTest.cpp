// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>

#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"

namespace {

/// An installer whose maker wants more done than copying.
class MakersTasksTest : public MachineTest {
 protected:
  MakersTasksTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"),
              R"(company_name = Corvane; product_name = "Dunmore 3"; identifier_file = yes; remove_earlier = yes;
                 lightroom_preset = "Studio.app";)");
    for (const char* const name : {"c", "Old.plugin"}) {
      writeFile(machine_.inBundle("SharedSupport/PlugIn") / name, "");
      writeFile(plugIns_ / "Earlier" / name, "");
    }
    writeFile(machine_.payload("PHOTOSHOP_PLUGINS/c"), "c");
    machine_.addPhotoshop("Adobe Photoshop CS6");
    fs::create_directories(on(preset_).parent_path());
  }
  void install() {
    controller_.install(HostsModel(platform_).foundHosts(), /*shouldConfigureLumatraExternalEditors=*/false);
  }

  const fs::path plugIns_ = on("/Applications/Adobe Photoshop CS6/Plug-Ins");
  const std::string preset_ =
      machine_.home() + "/Library/Application Support/Adobe/Lightroom/External Editor Presets/Dunmore 3.lrtemplate";
  InstallFilesController controller_{platform_};
};

TEST_F(MakersTasksTest, AreDoneAfterTheCopying) {
  install();
  EXPECT_EQ(namesIn(plugIns_), "Earlier c") << "what was installed stays, though it has an earlier name";
  EXPECT_EQ(namesIn(plugIns_ / "Earlier"), "");
  const fs::path identifier = on("/Library/Application Support/Corvane/entityresolver.guid");
  EXPECT_EQ(readFile(identifier).size(), 37U);
  EXPECT_EQ(controller_.installedPaths().back(), preset_) << "so that it is removed with the product";
  EXPECT_NE(readFile(on(preset_)).find("\"/Applications/Studio.app\""), std::string::npos);

  const std::string before = readFile(on(preset_)) + readFile(identifier);
  install();
  EXPECT_EQ(readFile(on(preset_)) + readFile(identifier), before) << "Lightroom knows the preset by its identifier";
  EXPECT_EQ(controller_.installedPaths().back(), preset_);
}

TEST_F(MakersTasksTest, AreNotDoneWhenTheInstallIsStopped) {
  writeFile(machine_.payload("PHOTOSHOP_PLUGINS/d"), "d");
  machine_.authorizations.transaction.roomForItems = 1;
  machine_.authorizations.transaction.before = [&](const std::string& step) {
    if (step == "commit 0") machine_.interruptions.signal = 15;
  };
  install();
  EXPECT_EQ(controller_.installedPaths().size(), 1U);
  EXPECT_EQ(namesIn(plugIns_ / "Earlier"), "Old.plugin c");
  EXPECT_FALSE(fs::exists(on(preset_)));
}

TEST_F(MakersTasksTest, KeepEarlierInstallsWhenTheNewOneFails) {
  makeBundle(machine_.payload("PHOTOSHOP_PLUGINS/broken.plugin"), {});
  ::mkfifo(machine_.payload("PHOTOSHOP_PLUGINS/broken.plugin/Contents/pipe").c_str(), 0600);
  install();
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(namesIn(plugIns_ / "Earlier"), "Old.plugin c");
}

}  // namespace
