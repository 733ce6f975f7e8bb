#include "hosts/PhotoshopHostModel.h"
#include "install/InstallFilesController.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

using Call = FaultyFileSystem::Call;
using Paths = std::vector<std::string>;

class TasksTest : public testing::Test {
 protected:
  TasksTest() { EXPECT_TRUE(controller_.obtainAuthorization()); }

  /// Makes the controller know the hosts, as the window does; nothing is installed.
  void showHosts(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      machine_.addPhotoshop(name);
      main_.found.push_back(PhotoshopHostModel::initWithHostName(machine_.platform, name));
    }
    controller_.didEnterWithModel(nullptr, nullptr, &main_, -1);
  }
  [[nodiscard]] std::string editors() const {
    return readFile(machine_.onVolume("/Library/Application Support/Corvane/Lumatra X/ExternalEditors.csv"));
  }

  TestMachine machine_;
  RecordingMainController main_;
  InstallFilesController controller_{machine_.platform};
};

TEST_F(TasksTest, ListsTheNewestPhotoshopAndTheMakersApplications) {
  fs::create_directories(machine_.onVolume("/Applications/Corvane Pelloria 4.app"));
  fs::create_directories(machine_.onVolume("/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app"));
  showHosts({"Adobe Photoshop CS6", "Adobe Photoshop CC 2019", "Adobe Photoshop CC 2019 Beta",
             "Adobe Photoshop Elements 3000"});
  controller_.configureLumatraExternalEditors();
  EXPECT_EQ(editors(),
            "/Applications/Adobe Photoshop CC 2019/Adobe Photoshop CC 2019.app,Adobe Photoshop CC "
            "2019,9,2,1003,100,ORIGINAL, \n"
            "/Applications/Corvane Pelloria 4.app,Pelloria 4,4,2,1003,100,ORIGINAL, \n"
            "/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app,Dunmore "
            "3,4,2,1003,100,ORIGINAL, \n");
  EXPECT_EQ(controller_.installedPaths(),
            (Paths{"/Library/Application Support/Corvane/Lumatra X/ExternalEditors.csv"}));
}

TEST_F(TasksTest, LeavesNoListWhereThereIsNothingToList) {
  const fs::path list = machine_.onVolume("/Library/Application Support/Corvane/Lumatra X/ExternalEditors.csv");
  writeFile(list, "old");
  controller_.configureLumatraExternalEditors();
  EXPECT_FALSE(fs::exists(list));
  EXPECT_TRUE(controller_.installedPaths().empty());

  fs::create_directories(machine_.onVolume("/Applications/Corvane Pelloria 4.app"));
  controller_.configureLumatraExternalEditors();
  EXPECT_TRUE(editors().starts_with("/Applications/Corvane Pelloria 4.app,"));

  fs::remove_all(list.parent_path().parent_path());
  machine_.files.fail(Call::createDirectory, std::errc::permission_denied, 2);
  machine_.authorizations.statusOfTool["/bin/mkdir"] = -60005;
  controller_.configureLumatraExternalEditors();
  EXPECT_TRUE(controller_.authDenied());
  EXPECT_FALSE(fs::exists(list));
}

TEST_F(TasksTest, CleansStaleManifests) {
  const std::string base = machine_.home() + "/Library/Application Support/Corvane";
  for (const char* const path : {"/manifest.xml", "/a/b/manifest.xml", "/a/Manifest.xml", "/X.app/manifest.xml",
                                 "/.hidden/manifest.xml", "/folder/manifest.xml/x"}) {
    writeFile(machine_.onVolume(base + path), "");
  }
  writeFile(machine_.onVolume("/elsewhere/manifest.xml"), "");
  fs::create_symlink("/elsewhere/manifest.xml", machine_.onVolume(base + "/folder/link"));
  fs::create_directory_symlink("/elsewhere", machine_.onVolume(base + "/to elsewhere"));
  controller_.cleanManifests();
  std::string left;
  for (const auto& entry : fs::recursive_directory_iterator(machine_.onVolume(base))) {
    if (entry.is_regular_file()) left += entry.path().lexically_relative(machine_.onVolume(base)).string() + " ";
  }
  for (const char* const kept :
       {"a/Manifest.xml", "X.app/manifest.xml", ".hidden/manifest.xml", "folder/manifest.xml/x"}) {
    EXPECT_NE(left.find(std::string(kept) + " "), std::string::npos) << kept;
  }
  EXPECT_EQ(left.find(" manifest.xml "), std::string::npos);
  EXPECT_EQ(left.find("b/manifest.xml"), std::string::npos);
  EXPECT_TRUE(fs::exists(machine_.onVolume("/elsewhere/manifest.xml")));
}

TEST_F(TasksTest, RegistersAndSaysWhatWentWrong) {
  makeBundle(machine_.onVolume("/A b.plugin"), {});
  controller_.registerInstalledApplication("/A b.plugin");
  EXPECT_EQ(machine_.log.lines, (Paths{"LSRegisterURL returned -10811 for file:///A%20b.plugin"}));
  EXPECT_EQ(machine_.authorizations.launches, (Paths{"/usr/bin/xattr|-dr|com.apple.quarantine|/A b.plugin"}))
      << "the mark goes all the same";
}

TEST_F(TasksTest, AsksHowToGoOnAfterAnError) {
  const Value::Dictionary error = {{"Error", "broken"}, {"Path", "/file"}};
  EXPECT_TRUE(controller_.fileManager(machine_.files, error));
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  machine_.toolkit.answer = AlertAnswer::alternateButton;
  EXPECT_FALSE(controller_.fileManager(machine_.files, error));
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(machine_.log.count("File  operation error: broken with file: /file"), 2);
  EXPECT_EQ(machine_.toolkit.alerts[0].message, "<broken|/file>");
  EXPECT_EQ(machine_.toolkit.alerts[0].defaultButton, "Go on");
  EXPECT_EQ(machine_.toolkit.alerts[0].alternateButton, "Stop");

  controller_.showFileErrorUI("/other");
  EXPECT_EQ(machine_.toolkit.alerts[2].message, "<|/other>");
  EXPECT_EQ(machine_.log.count("Could not install file: /other"), 1);
}

TEST_F(TasksTest, SaysWhenTheLogCannotBeWritten) {
  fs::create_directories(machine_.onVolume("/Applications/Corvane Pelloria 4.app"));
  controller_.configureLumatraExternalEditors();
  machine_.files.fail(Call::openForWriting, std::errc::permission_denied);
  controller_.logInstalledPaths();
  EXPECT_EQ(machine_.log.count("can't open installer log file for writing"), 1);
  machine_.files.fail(Call::writeData, std::errc::no_space_on_device);
  controller_.logInstalledPaths();
  EXPECT_EQ(machine_.log.count("can't write to installer log file: no room"), 1);
  EXPECT_FALSE(controller_.fileOpErrorOccurred());

  controller_.logInstalledPaths();
  const fs::path log = machine_.onVolume("/Library/Application Support/Corvane/Dunmore 3 Installer.log");
  EXPECT_EQ(readFile(log), "/Library/Application Support/Corvane/Lumatra X/ExternalEditors.csv\n");
  EXPECT_EQ(modeOf(log), "644");
}

}  // namespace
