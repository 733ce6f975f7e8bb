#include <sys/stat.h>

#include "hosts/ApertureHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"

namespace {

class FileInstallationTest : public MachineTest {
 protected:
  FileInstallationTest() {
    EXPECT_TRUE(controller_.obtainAuthorization());
    fs::create_directories(on("/T"));
  }

  std::string source(const std::string& name) {
    writeFile(machine_.payload(name), "new");
    return machine_.payload(name).string();
  }
  std::string bundleSource(const std::string& name, const Texts& info = {}) {
    makeBundle(machine_.payload(name), info);
    return machine_.payload(name).string();
  }
  void install(const Paths& sources, bool isBundle = false, bool alwaysInstall = true) {
    controller_.installSourceFiles(sources, "/T", isBundle, alwaysInstall);
  }
  static void setAge(const fs::path& path, int seconds) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::seconds(seconds));
  }

  const std::string owner_ = machine_.account().name + ":admin";
  RecordingAuthorizations& rights_ = machine_.authorizations;
  InstallFilesController controller_{platform_};
};

TEST_F(FileInstallationTest, HandsOverWhatItInstalls) {
  install({source("plain.txt"), bundleSource("X.plugin")});
  EXPECT_EQ(readFile(on("/T/plain.txt")), "new");
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/plain.txt", "/T/X.plugin"}));
  EXPECT_EQ(modeOf(on("/T/X.plugin/Contents/Info.plist")), "775");
  EXPECT_EQ(rights_.launches,
            (Paths{"/usr/sbin/chown|-R|" + owner_ + "|/T/plain.txt", "/bin/chmod|-R|0775|/T/plain.txt",
                   "/usr/sbin/chown|-R|" + owner_ + "|/T/X.plugin", "/bin/chmod|-R|0775|/T/X.plugin"}));
  EXPECT_EQ(log_.lines, (Paths{"Installing plain.txt", "Installing X.plugin"}));
}

TEST_F(FileInstallationTest, ReplacesWhatIsThereWhenToldToAlways) {
  writeFile(on("/T/file/inside"), "a folder is in the way");
  writeFile(on("/T/outside"), "kept");
  fs::create_symlink("/T/outside", on("/T/link"));
  fs::create_symlink("/nowhere", on("/T/dangling"));
  install({source("file"), source("link"), source("dangling")});
  for (const char* const path : {"/T/file", "/T/link", "/T/dangling"}) EXPECT_EQ(readFile(on(path)), "new") << path;
  EXPECT_EQ(readFile(on("/T/outside")), "kept");
  EXPECT_EQ(log_.count("removing existing file..."), 3);
  EXPECT_EQ(rights_.launchesOf("/bin/rm"), Paths());
}

TEST_F(FileInstallationTest, ComparesBundlesByVersion) {
  const std::tuple<std::string, std::string, bool> cases[] = {{"3.1", "3.1", true},  {"3.0.9", "3.1", true},
                                                              {"3.0", "3.1", false}, {"3.1", "", true},
                                                              {"", "3.1", false},    {"", "", false}};
  for (const auto& [offered, there, isReplaced] : cases) {
    const auto info = [](const std::string& version) {
      return version.empty() ? Texts() : Texts{{"CFBundleVersion", version}};
    };
    makeBundle(on("/T/X.plugin"), info(there));
    writeFile(on("/T/X.plugin/old"), "old");
    install({bundleSource("X.plugin", info(offered))}, /*isBundle=*/true, /*alwaysInstall=*/false);
    EXPECT_EQ(readFile(on("/T/X.plugin/old")) != "old", isReplaced) << offered << " over " << there;
  }
  writeFile(on("/T/file"), "");
  EXPECT_TRUE(controller_.isFileOkToInstallByBundleVersion(machine_.payload("X.plugin").string(), "/T/file"));
  EXPECT_FALSE(controller_.isFileOkToInstallByBundleVersion("/none", "/T/X.plugin"));
}

TEST_F(FileInstallationTest, ComparesFilesByDate) {
  const Paths sources = {source("a"), source("b newer"), source("c"), source("d older"), source("e")};
  for (const std::string& path : sources) setAge(path, 100);
  writeFile(on("/T/b newer"), "old");
  writeFile(on("/T/d older"), "old");
  setAge(on("/T/d older"), 200);
  install(sources, /*isBundle=*/false, /*alwaysInstall=*/false);
  EXPECT_EQ(namesIn(on("/T")), "a b newer d older e") << "nothing is added beside a file that is newer";
  EXPECT_EQ(readFile(on("/T/b newer")), "old");
  EXPECT_EQ(readFile(on("/T/d older")), "new");

  const auto isOk = [&] { return controller_.isFileOkToInstallByModificationTime(sources[0], "/T/other"); };
  writeFile(on("/T/other"), "");
  fs::last_write_time(on("/T/other"), fs::last_write_time(sources[0]));
  EXPECT_TRUE(isOk()) << "equal";
  fs::remove(on("/T/other"));
  fs::create_directories(on("/T/other"));
  EXPECT_TRUE(isOk()) << "an empty folder, however new";
  writeFile(on("/T/other/inside"), "");
  EXPECT_FALSE(isOk());
  fs::remove_all(on("/T/other"));
  fs::create_symlink("/nowhere", on("/T/other"));
  EXPECT_TRUE(isOk()) << "a link that leads nowhere, however new";
}

TEST_F(FileInstallationTest, FallsBackToTools) {
  writeFile(on("/T/b"), "old");
  files_.fail(Call::copyItem, std::errc::permission_denied, 2);
  files_.fail(Call::replaceItem, std::errc::permission_denied);
  const Paths sources = {source("a"), source("b")};
  install(sources);
  EXPECT_EQ(readFile(on("/T/a")) + readFile(on("/T/b")), "newnew");
  EXPECT_EQ(rights_.launchesOf("/bin/rm"), Paths{"/bin/rm|-fR|/T/b"});
  EXPECT_EQ(rights_.launchesOf("/bin/cp"),
            (Paths{"/bin/cp|-R|" + sources[0] + "|/T/a", "/bin/cp|-R|" + sources[1] + "|/T/b"}));
  EXPECT_FALSE(controller_.fileOpErrorOccurred());
}

TEST_F(FileInstallationTest, ReportsEachFileThatFailsAndGoesOn) {
  writeFile(on("/T/b"), "old");
  files_.fail(Call::copyItem, std::errc::no_space_on_device);
  files_.fail(Call::replaceItem, std::errc::no_space_on_device);
  rights_.statusOfTool["/bin/cp"] = errAuthorizationToolExecuteFailure;
  install({source("a"), source("b"), source("c")});
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/T/a", "/T/b"}));
  EXPECT_EQ(controller_.installedPaths(), Paths{"/T/c"});
  EXPECT_EQ(readFile(on("/T/b")), "old") << "what could not be replaced stays";
  EXPECT_EQ(rights_.launchesOf("/bin/rm"), Paths()) << "and is not removed for a full disk";
  EXPECT_EQ(log_.count("Could not install file: /T/a"), 1);
  EXPECT_NE(log_.count("No space left on device"), 0);
  ASSERT_EQ(machine_.toolkit.alerts.size(), 2U);
  const Alert& alert = machine_.toolkit.alerts[0];
  EXPECT_EQ(alert.title + alert.message + alert.defaultButton + alert.alternateButton, "Title<|/T/a>Go on");
  EXPECT_EQ(machine_.clock.sleeps, std::vector(32, std::chrono::microseconds(125)));
}

TEST_F(FileInstallationTest, WaitsAWhileForAFileToAppear) {
  files_.fail(Call::copyItem, std::errc::permission_denied);
  rights_.statusOfTool["/bin/cp"] = errAuthorizationToolExecuteFailure;
  machine_.clock.whileSleeping = [&] {
    if (machine_.clock.sleeps.size() == 20) writeFile(on("/T/late"), "new");
  };
  install({source("late")});
  EXPECT_EQ(log_.count("Took a delay to verify file late"), 1);
  EXPECT_EQ(machine_.clock.sleeps.size(), 20U);
  EXPECT_EQ(controller_.installedPaths(), Paths{"/T/late"});
}

TEST_F(FileInstallationTest, StopsWhenThereAreNoRights) {
  const Paths sources = {source("a"), source("b")};
  for (const std::string tool : {"/bin/cp", "/usr/sbin/chown", "/bin/chmod"}) {
    fs::remove_all(on("/T"));
    InstallFilesController controller(platform_);
    ASSERT_TRUE(controller.obtainAuthorization());
    rights_.statusOfTool = {{tool, -60005}};
    if (tool == "/bin/cp") files_.fail(Call::copyItem, std::errc::permission_denied);
    controller.installSourceFiles(sources, "/T", /*isBundle=*/false, /*alwaysInstall=*/true);
    EXPECT_TRUE(controller.authDenied() && controller.installedPaths().empty()) << tool;
    EXPECT_FALSE(fs::exists(on("/T/b"))) << tool;
  }
  // A host's payload ends there, too: nothing is asked for, and no folder made, for what would have come after.
  for (const char* const name : {"PHOTOSHOP/a/file", "PHOTOSHOP/b/file", "PHOTOSHOP_PLUGINS/c/file"}) source(name);
  machine_.addPhotoshop("Adobe Photoshop CS6");
  const auto photoshop = PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6");
  rights_.statusOfTool = {{"/usr/sbin/chown", -60006}};
  rights_.launches.clear();
  controller_.installFiles(*photoshop);
  EXPECT_EQ(rights_.launches.size(), 1U);
  EXPECT_FALSE(fs::exists(on(photoshop->appPath() + "/b")) || fs::exists(on(photoshop->plugInPath() + "/c")));

  EXPECT_TRUE(machine_.toolkit.alerts.empty());
  for (const int code : {5529, 5541}) EXPECT_FALSE(InstallFilesController::isFatalAuthCode(code));
  EXPECT_TRUE(InstallFilesController::isFatalAuthCode(5540));
}

TEST_F(FileInstallationTest, MakesAFolderAndTheOneItIsIn) {
  controller_.ensureDirExists("/New/Deep/Parent/Folder");
  EXPECT_EQ(modeOf(on("/New/Deep/Parent/Folder")) + " in " + modeOf(on("/New/Deep/Parent")), "775 in 775");
  EXPECT_EQ(modeOf(on("/New/Deep")), "755");
  EXPECT_TRUE(rights_.launches.empty());

  files_.fail(Call::createDirectory, std::errc::permission_denied, 2);
  controller_.ensureDirExists("/Other/Parent/Folder");
  EXPECT_EQ(
      rights_.launches,
      (Paths{"/bin/mkdir|-m775|-p|/Other/Parent", "/usr/sbin/chown|-R|" + owner_ + "|/Other/Parent",
             "/bin/mkdir|-m775|-p|/Other/Parent/Folder", "/usr/sbin/chown|-R|" + owner_ + "|/Other/Parent/Folder"}));
  EXPECT_EQ(modeOf(on("/Other/Parent/Folder")), "775");
}

TEST_F(FileInstallationTest, SurvivesDestinationsThatCannotBe) {
  writeFile(on("/File"), "a file where a folder is needed");
  fs::create_directory_symlink("/nowhere", on("/Dangling"));
  const fs::path outside = on("").parent_path();
  fs::create_directory_symlink("/../../../../../.." + outside.string(), on("/Climbing"));
  for (const char* const folder : {"/File", "/File/Below", "/Dangling", "/Climbing/installed"}) {
    controller_.installSourceFiles({source("a")}, folder, /*isBundle=*/false, /*alwaysInstall=*/true);
  }
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/File/a", "/File/Below/a", "/Dangling/a", "/Climbing/installed/a"}));
  EXPECT_EQ(readFile(on("/File")), "a file where a folder is needed");
  EXPECT_FALSE(fs::exists(outside / "installed"));
}

TEST_F(FileInstallationTest, SurvivesAPayloadOfAnyShape) {
  const std::string unreadable = bundleSource("Pipe.plugin");
  ::mkfifo(machine_.payload("Pipe.plugin/Contents/pipe").c_str(), 0600);
  fs::create_symlink("/etc/passwd", machine_.payload("outside"));
  fs::create_symlink("nowhere", machine_.payload("dangling"));
  const std::string before = modeOf("/etc/passwd");
  install({unreadable, machine_.payload("none"), machine_.payload("outside"), machine_.payload("dangling")});
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/T/Pipe.plugin", "/T/none"}));
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/outside", "/T/dangling"}));
  EXPECT_EQ(fs::read_symlink(on("/T/outside")), "/etc/passwd");
  EXPECT_EQ(modeOf("/etc/passwd"), before) << "a link is handed over, not what it leads to";
  EXPECT_EQ(namesIn(on("/T")), "dangling outside");
}

TEST_F(FileInstallationTest, CopiesAHostsPayloadToWhereItsFoldersAre) {
  for (const char* const name : {"PHOTOSHOP/Presets/Scripts/a.jsx", "PHOTOSHOP_PLUGINS/.hidden/b",
                                 "PHOTOSHOP_PLUGINS/Panels/deep/c", "LIGHTROOM/Modules/e.lua"}) {
    source(name);
  }
  bundleSource("PHOTOSHOP_PLUGINS/Corvane/D.plugin");
  machine_.addPhotoshop("Adobe Photoshop CS6");
  controller_.installFiles(*PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6"));
  controller_.installFiles(*LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"));
  controller_.installFiles(*UnknownHostModel::initWithPlugInPath(platform_, "/Mine/"));
  controller_.installFiles(*UnknownHostModel::initWithPlugInPath(platform_, ""));
  controller_.installFiles(*ApertureHostModel::initWithHostName(platform_, "Aperture"));
  EXPECT_EQ(controller_.installedPaths(),
            (Paths{"/Applications/Adobe Photoshop CS6/Presets/Scripts/a.jsx",
                   "/Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/D.plugin",
                   "/Applications/Adobe Photoshop CS6/Plug-Ins/Panels/deep/c",
                   machine_.home() + "/Library/Application Support/Adobe/Lightroom/Modules/e.lua",
                   "/Mine/Corvane/D.plugin", "/Mine/Panels/deep/c"}));
}

TEST_F(FileInstallationTest, TouchesNoMakersFoldersWithoutAName) {
  writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"), "");
  source("HD/Library/Application Support/Corvane/Dunmore 3/Presets/a");
  const fs::path mine = on("/Library/Application Support/Corvane/Dunmore 3/mine");
  const fs::path theirs = machine_.inLibrary("Application Support/Other/manifest.xml");
  for (const fs::path& file : {mine, theirs}) writeFile(file, "");
  controller_.install({}, /*shouldConfigureLumatraExternalEditors=*/true);
  EXPECT_TRUE(fs::exists(mine) && fs::exists(theirs));
  EXPECT_FALSE(rights_.launches.empty()) << "the rest goes on";
}

}  // namespace
