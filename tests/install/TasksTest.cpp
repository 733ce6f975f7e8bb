#include <sys/stat.h>
#include <unistd.h>

#include "hosts/PhotoshopHostModel.h"
#include "install/InstallFilesController.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class TasksTest : public MachineTest {
 protected:
  TasksTest() { EXPECT_TRUE(controller_.obtainAuthorization()); }

  const std::string list_ = "/Library/Application Support/Corvane/Lumatra X/ExternalEditors.csv";
  const std::string pelloria_ = "/Applications/Corvane Pelloria 4.app";
  InstallFilesController controller_{platform_};
};

TEST_F(TasksTest, ListsTheNewestPhotoshopAndTheMakersApplications) {
  fs::create_directories(on(pelloria_));
  fs::create_directories(on("/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app"));
  RecordingMainController main;
  for (const char* const name : {"Adobe Photoshop CS6", "Adobe Photoshop CC 2019", "Adobe Photoshop CC 2019 Beta",
                                 "Adobe Photoshop Elements 3000"}) {
    machine_.addPhotoshop(name);
    main.found.push_back(PhotoshopHostModel::initWithHostName(platform_, name));
  }
  controller_.didEnterWithModel(nullptr, nullptr, &main, -1);
  controller_.configureLumatraExternalEditors();
  EXPECT_EQ(readFile(on(list_)),
            "/Applications/Adobe Photoshop CC 2019/Adobe Photoshop CC 2019.app,Adobe Photoshop CC "
            "2019,9,2,1003,100,ORIGINAL, \n"
            "/Applications/Corvane Pelloria 4.app,Pelloria 4,4,2,1003,100,ORIGINAL, \n"
            "/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app,Dunmore 3,4,2,1003,100,ORIGINAL, \n");
  EXPECT_EQ(controller_.installedPaths(), Paths{list_});
}

TEST_F(TasksTest, LeavesNoListWhereThereIsNothingToList) {
  writeFile(on(list_), "old");
  controller_.configureLumatraExternalEditors();
  EXPECT_TRUE(!fs::exists(on(list_)) && controller_.installedPaths().empty());

  fs::create_directories(on(pelloria_));
  fs::remove_all(on("/Library/Application Support/Corvane"));
  files_.fail(Call::createDirectory, std::errc::permission_denied, 2);
  machine_.authorizations.statusOfTool["/bin/mkdir"] = -60005;
  controller_.configureLumatraExternalEditors();
  EXPECT_TRUE(controller_.authDenied() && !fs::exists(on(list_)));
  EXPECT_EQ(machine_.authorizations.launches.size(), 1U) << "nothing after the refusal";
}

TEST_F(TasksTest, CleansStaleManifests) {
  const fs::path base = machine_.inLibrary("Application Support/Corvane");
  const Paths kept = {"a/Manifest.xml", "X.app/manifest.xml", ".hidden/manifest.xml", "folder/manifest.xml/x"};
  for (const std::string& path : kept) writeFile(base / path, "");
  for (const char* const stale : {"manifest.xml", "a/b/manifest.xml"}) writeFile(base / stale, "");
  writeFile(on("/elsewhere/manifest.xml"), "");
  fs::create_symlink("/elsewhere/manifest.xml", base / "folder/link");
  fs::create_directory_symlink("/elsewhere", base / "to elsewhere");
  controller_.cleanManifests();
  for (const std::string& path : kept) EXPECT_TRUE(fs::exists(base / path)) << path;
  EXPECT_EQ(namesIn(base) + ", " + namesIn(base / "a/b"), ".hidden X.app a folder to elsewhere, ");
  EXPECT_TRUE(fs::exists(on("/elsewhere/manifest.xml")));
}

TEST_F(TasksTest, AsksHowToGoOnAfterAnError) {
  const Value::Dictionary error = {{"Error", "broken"}, {"Path", "/file"}};
  EXPECT_TRUE(controller_.fileManager(files_, error));
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  machine_.toolkit.answer = AlertAnswer::alternateButton;
  EXPECT_FALSE(controller_.fileManager(files_, error));
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/file", "/file"}));
  EXPECT_EQ(log_.count("File  operation error: broken with file: /file"), 2);
  const Alert& alert = machine_.toolkit.alerts[0];
  EXPECT_EQ(alert.message + alert.defaultButton + alert.alternateButton, "<broken|/file>Go onStop");
}

TEST_F(TasksTest, SaysWhenTheLogCannotBeWritten) {
  fs::create_directories(on(pelloria_));
  controller_.configureLumatraExternalEditors();
  machine_.authorizations.statusOfTool["/usr/bin/touch"] = errAuthorizationToolExecuteFailure;
  controller_.logInstalledPaths();
  EXPECT_EQ(log_.count("can't open installer log file for writing"), 1);
  machine_.authorizations.statusOfTool.clear();
  files_.fail(Call::writeData, std::errc::no_space_on_device);
  controller_.logInstalledPaths();
  EXPECT_EQ(log_.count("can't write to installer log file: no room"), 1);
  EXPECT_FALSE(controller_.fileOpErrorOccurred());
}

TEST_F(TasksTest, GiveTheMachineItsIdentifierOnce) {
  const std::string company = "/Library/Application Support/Corvane";
  const std::string file = company + "/entityresolver.guid";
  auto& launches = machine_.authorizations.launches;
  controller_.installAnalytics();
  EXPECT_EQ(log_.lines, Paths{"can't open guid file handle"}) << "the maker's folder is not there";
  EXPECT_FALSE(fs::exists(on(company)));
  const std::string owner = machine_.account().name + ":admin";
  EXPECT_EQ(launches, (Paths{"/usr/bin/touch|" + file, "/usr/sbin/chown|-R|" + owner + "|" + file,
                             "/bin/chmod|-R|0664|" + file}));

  fs::create_directories(on(company));
  controller_.installAnalytics();
  const std::string identifier = readFile(on(file));
  ASSERT_EQ(identifier.size(), 37U);
  EXPECT_EQ(identifier.find_first_not_of("0123456789ABCDEF-"), 36U) << identifier;
  EXPECT_EQ(std::string({identifier[8], identifier[13], identifier[18], identifier[23]}), "----");
  EXPECT_EQ(identifier.back(), '\n');
  EXPECT_EQ(modeOf(on(file)), "664");
  struct stat status {};
  ASSERT_EQ(::stat(on(file).c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, machine_.account().id);
  EXPECT_TRUE(::geteuid() != 0 || status.st_gid == *groupNumber("admin"));

  controller_.installAnalytics();
  EXPECT_EQ(readFile(on(file)), identifier);
  EXPECT_EQ(launches.size(), 6U) << "no tool for what is there already";
  fs::remove(on(file));
  controller_.installAnalytics();
  EXPECT_NE(readFile(on(file)), identifier) << "another one for another machine";
  EXPECT_EQ(log_.lines.size(), 1U);
}

}  // namespace
