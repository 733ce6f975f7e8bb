// SPDX-License-Identifier: Apache-2.0

#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
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
  writeFile(on(list_), "old");
  controller_.configureLumatraExternalEditors();
  EXPECT_FALSE(fs::exists(on(list_))) << "nothing to list";
  EXPECT_EQ(controller_.installedPaths(), Paths());

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

TEST_F(TasksTest, ListsTheEditorsForAnotherMakersEditorOrForNone) {
  const auto configure = [this](const std::string& keys) {
    writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"),
              "company_name = Tamsin; product_name = Granby; " + keys);
    return std::make_unique<TestPlatform>(on(""), machine_.inBundle("").parent_path().parent_path(),
                                          machine_.account());
  };
  fs::create_directories(on("/Applications/Tamsin Granby.app"));
  fs::create_directories(on("/Applications/Ever.app"));
  fs::create_directories(on(pelloria_));
  const auto none = configure("external_editors = \"\";");
  InstallFilesController(none->platform()).configureLumatraExternalEditors();
  EXPECT_FALSE(fs::exists(on("/Library/Application Support/Tamsin")));
  const auto other = configure(R"(external_editors = "Weald"; external_editor_applications =
      "/Applications/%COMPANYNAME% %PRODUCTNAME%.app; /Applications/Ever.app;/Applications/None.app";)");
  InstallFilesController(other->platform()).configureLumatraExternalEditors();
  EXPECT_EQ(readFile(on("/Library/Application Support/Tamsin/Weald/ExternalEditors.csv")),
            "/Applications/Tamsin Granby.app,Granby,4,2,1003,100,ORIGINAL, \n"
            "/Applications/Ever.app,Ever,4,2,1003,100,ORIGINAL, \n");
}

TEST_F(TasksTest, CleansStaleManifests) {
  const fs::path base = machine_.inLibrary("Application Support/Corvane");
  const Paths kept = {"a/Manifest.xml", "X.app/manifest.xml", ".hidden/manifest.xml", "folder/manifest.xml/x"};
  for (const std::string& path : kept) writeFile(base / path, "");
  for (const char* const stale : {"manifest.xml", "a/b/manifest.xml"}) writeFile(base / stale, "");
  writeFile(on("/elsewhere/manifest.xml"), "");
  fs::create_directory_symlink("/elsewhere", base / "to elsewhere");
  controller_.cleanManifests();
  for (const std::string& path : kept) EXPECT_TRUE(fs::exists(base / path)) << path;
  EXPECT_EQ(namesIn(base) + ", " + namesIn(base / "a/b"), ".hidden X.app a folder to elsewhere, ");
  EXPECT_TRUE(fs::exists(on("/elsewhere/manifest.xml")));
}

TEST_F(TasksTest, RemoveEarlierInstallsWhereverTheyLieAndNothingElse) {
  for (const char* const part : {"PlugIn/Old.plugin/Contents/x", "PlugIn/Zoom*'.txt", "AutoLayer/Layer.plugin"}) {
    writeFile(machine_.inBundle("SharedSupport") / part, "");
  }
  const Paths kept = {"/Host/Plug-Ins/old.plugin", "/Host/Plug-Ins/Old.plugin 2",      "/Host/Plug-Ins/Zoom 2'.txt",
                      "/Host/Old.plugin",          "/Elsewhere/Old.plugin/Contents/x", "/Host/Plug-Ins/sub/x"};
  for (const std::string& path : kept) writeFile(on(path), "");
  fs::create_directory_symlink("/Elsewhere", on("/Host/Plug-Ins/link"));
  fs::create_directory_symlink("/Elsewhere/Old.plugin", on("/Host/Plug-Ins/sub/Old.plugin"));
  const Paths removed = {"/Host/Plug-Ins/Corvane/$(touch y)/Old.plugin", "/Host/Plug-Ins/Old.plugin",
                         "/Host/Plug-Ins/sub/Old.plugin", "/Host/Plug-Ins/Zoom*'.txt",
                         "/Host/Plug-Ins/A.app/Contents/Layer.plugin"};
  for (const std::string& path : {removed[0], removed[1]}) writeFile(on(path + "/Contents/deep"), "");
  for (const std::string& path : {removed[3], removed[4]}) writeFile(on(path), "");
  const auto host = UnknownHostModel::initWithPlugInPath(platform_, "/Host/Plug-Ins/");
  const auto unInstall = [&] {
    InstallFilesController controller(platform_);
    EXPECT_TRUE(controller.obtainAuthorization());
    machine_.authorizations.launches.clear();
    controller.unInstallForHost(*host);
    return !controller.authDenied();
  };

  machine_.authorizations.statusOfTool["/bin/rm"] = -60006;
  EXPECT_FALSE(unInstall()) << "the user cancels";
  EXPECT_EQ(machine_.authorizations.launches.size(), 1U) << "nothing after the refusal";
  EXPECT_EQ(log_.lines, Paths{});
  machine_.authorizations.statusOfTool.clear();
  EXPECT_TRUE(unInstall());
  for (const std::string& path : kept) EXPECT_TRUE(fs::exists(on(path))) << path;
  Paths launches;
  for (const std::string& path : removed) {
    launches.push_back("/bin/rm|-fR|" + path);
    EXPECT_FALSE(fs::is_symlink(on(path))) << path;
    EXPECT_FALSE(fs::exists(on(path))) << path;
  }
  EXPECT_EQ(machine_.authorizations.launches, launches) << "the plug-ins first";
}

TEST_F(TasksTest, ReportsErrorsAndAsksWhetherToContinue) {
  for (const AlertAnswer answer : {AlertAnswer::defaultButton, AlertAnswer::alternateButton}) {
    machine_.toolkit.answer = answer;
    const bool goesOn = controller_.fileManager(files_, {{"Error", "broken"}, {"Path", "/file"}});
    EXPECT_EQ(goesOn, answer == AlertAnswer::defaultButton);
  }
  EXPECT_EQ(log_.count("File  operation error: broken with file: /file"), 2);
  const Alert& alert = machine_.toolkit.alerts[0];
  EXPECT_EQ(alert.message + alert.defaultButton + alert.alternateButton.value_or(""), "<broken|/file>Go onStop");
}

TEST_F(TasksTest, KeepTheOldFileWhenTheNewOneCannotBeWritten) {
  const std::string log = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
  writeFile(on(log), "old");
  writeFile(on(list_), "old");
  fs::create_directories(on(pelloria_));
  files_.fail(Call::createFile, std::errc::read_only_file_system);
  controller_.configureLumatraExternalEditors();
  EXPECT_EQ(readFile(on(list_)), "old");
  EXPECT_EQ(controller_.installedPaths(), Paths()) << "what was not written is not counted";

  controller_.configureLumatraExternalEditors();
  files_.fail(Call::writeData, std::errc::no_space_on_device);
  controller_.logInstalledPaths();
  EXPECT_EQ(log_.count("can't write to installer log file: no room"), 1);
  EXPECT_EQ(readFile(on(log)), "old");
  EXPECT_FALSE(controller_.report().isLogWritten);
  EXPECT_EQ(namesIn(on(log).parent_path()), "Dunmore 3 Installer.log Lumatra X");

  fs::remove_all(on(log).parent_path());
  controller_.logInstalledPaths();
  EXPECT_EQ(readFile(on(log)), list_ + "\n") << "the folder is made where it is missing";
}

TEST_F(TasksTest, GiveTheMachineItsIdentifierOnce) {
  const std::string file = "/Library/Application Support/Corvane/entityresolver.guid";
  fs::create_directories(on(file).parent_path());
  controller_.installAnalytics();
  const std::string identifier = readFile(on(file));
  EXPECT_EQ(identifier.find_first_not_of("0123456789ABCDEF-"), 36U) << identifier;
  EXPECT_EQ(modeOf(on(file)), "664");
  machine_.authorizations.launches.clear();
  controller_.installAnalytics();
  EXPECT_EQ(readFile(on(file)), identifier);
  EXPECT_EQ(machine_.authorizations.launches, Paths()) << "no tool for what is there already";
  fs::remove(on(file));
  controller_.installAnalytics();
  EXPECT_NE(readFile(on(file)), identifier) << "another one for another machine";
}

}  // namespace
