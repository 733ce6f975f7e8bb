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

  const std::string owner_ = machine_.account().name + ":admin";
  RecordingAuthorizations& rights_ = machine_.authorizations;
  InstallFilesController controller_{platform_};
};

TEST_F(FileInstallationTest, ReplacesWhatIsThereAndHandsItOver) {
  writeFile(on("/T/file/inside"), "a folder is in the way");
  writeFile(on("/T/outside"), "kept");
  fs::create_symlink("/T/outside", on("/T/link"));
  fs::create_symlink("/nowhere", on("/T/dangling"));
  const Paths installed = {"/T/file", "/T/link", "/T/dangling", "/T/plain"};
  install({source("file"), source("link"), source("dangling"), source("plain")});
  Paths launches;
  for (const std::string& path : installed) {
    launches.push_back("/usr/sbin/chown|-R|" + owner_ + "|" + path);
    launches.push_back("/bin/chmod|-R|0775|" + path);
    EXPECT_EQ(readFile(on(path)) + modeOf(on(path)), "new775") << path;
  }
  EXPECT_EQ(rights_.launches, launches);
  EXPECT_EQ(controller_.installedPaths(), installed);
  EXPECT_EQ(readFile(on("/T/outside")), "kept");
}

TEST_F(FileInstallationTest, ComparesBundlesByVersion) {
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"3.1", "3.1", true},        {"1.1000", "2.1", false},   {"3.9", "3.10", false},
      {"3.1", "", true},           {"", "3.1", false},         {"", "", false},
      {"12345.1", "1234.6", true}, {"3b2.1", "0.2", false},    {"1.2.3.4.5.6", "1.2.3.4.5.7", false},
      {"3.0.9", "3.1", true},      {"1.20240101", "2.1", true}};  // more digits win
  for (const auto& [offered, there, isReplaced] : cases) {
    const auto info = [](const std::string& version) {
      return version.empty() ? Texts() : Texts{{"CFBundleVersion", version}};
    };
    makeBundle(on("/T/X.plugin"), info(there));
    writeFile(on("/T/X.plugin/old"), "old");
    install({bundleSource("X.plugin", info(offered))}, /*isBundle=*/true, /*alwaysInstall=*/false);
    EXPECT_EQ(readFile(on("/T/X.plugin/old")) != "old", isReplaced) << offered << " over " << there;
  }
}

TEST_F(FileInstallationTest, ComparesFilesByDate) {
  const Paths sources = {source("a"),     source("newer"), source("missing"),
                         source("older"), source("equal"), source("empty")};
  const std::pair<std::string, int> ages[] = {{"newer", 1}, {"older", -1}, {"equal", 0}};
  for (const auto& [name, seconds] : ages) {
    writeFile(on("/T/" + name), "old");
    const auto time = fs::last_write_time(machine_.payload(name)) + std::chrono::seconds(seconds);
    fs::last_write_time(on("/T/" + name), time);
  }
  fs::create_directories(on("/T/empty"));
  install(sources, /*isBundle=*/false, /*alwaysInstall=*/false);
  EXPECT_EQ(namesIn(on("/T")), "a empty equal newer older") << "nothing is added beside a file that is newer";
  EXPECT_EQ(readFile(on("/T/newer")) + readFile(on("/T/older")), "oldnew");
  EXPECT_EQ(readFile(on("/T/equal")) + readFile(on("/T/empty")), "newnew") << "an empty folder, however new";
}

TEST_F(FileInstallationTest, FallsBackToTools) {
  writeFile(on("/T/b"), "old");
  files_.fail(Call::copyItem, std::errc::permission_denied, 2);
  files_.fail(Call::replaceItem, std::errc::permission_denied);
  install({source("a"), source("b")});
  EXPECT_EQ(readFile(on("/T/a")) + readFile(on("/T/b")), "newnew");
  EXPECT_EQ(rights_.launchesOf("/bin/rm"), Paths{"/bin/rm|-fR|/T/b"});
  EXPECT_EQ(rights_.launchesOf("/bin/cp").front(), "/bin/cp|-R|" + machine_.payload("a").string() + "|/T/a");
  EXPECT_FALSE(controller_.fileOpErrorOccurred());

  controller_.ensureDirExists("/New/Deep/Parent/Folder");
  files_.fail(Call::createDirectory, std::errc::permission_denied, 2);
  rights_.launches.clear();
  controller_.ensureDirExists("/Other/Deep/Parent/Folder");
  Paths launches;
  for (const std::string folder : {"/Other/Deep/Parent", "/Other/Deep/Parent/Folder"}) {
    launches.push_back("/bin/mkdir|-m775|-p|" + folder);
    launches.push_back("/usr/sbin/chown|-R|" + owner_ + "|" + folder);
  }
  EXPECT_EQ(rights_.launches, launches);
  for (const std::string top : {"/New", "/Other"}) {
    EXPECT_EQ(modeOf(on(top + "/Deep/Parent/Folder")) + modeOf(on(top + "/Deep/Parent")), "775775") << top;
  }
}

TEST_F(FileInstallationTest, ReportsEachFileThatFailsAndGoesOn) {
  writeFile(on("/T/b"), "old");
  files_.fail(Call::copyItem, std::errc::no_space_on_device, 2);
  files_.fail(Call::replaceItem, std::errc::no_space_on_device);
  rights_.statusOfTool["/bin/cp"] = errAuthorizationToolExecuteFailure;
  machine_.clock.whileSleeping = [&] {
    if (machine_.clock.sleeps.size() == 32 + 20) writeFile(on("/T/late"), "new");
  };
  install({source("a"), source("late"), source("b"), source("c")});
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/T/a", "/T/b"}));
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/late", "/T/c"}));
  EXPECT_EQ(readFile(on("/T/b")), "old") << "what could not be replaced stays";
  EXPECT_EQ(rights_.launchesOf("/bin/rm"), Paths()) << "and is not removed for a full disk";
  EXPECT_EQ(machine_.clock.sleeps, std::vector(32 + 20, std::chrono::microseconds(125)));
  EXPECT_EQ(log_.count("Could not install file: /T/a") + log_.count("Took a delay to verify file late"), 2);
  ASSERT_EQ(machine_.toolkit.alerts.size(), 2U);
  const Alert& alert = machine_.toolkit.alerts[0];
  EXPECT_EQ(alert.title + alert.message + alert.defaultButton + alert.alternateButton, "Title<|/T/a>Go on");
}

TEST_F(FileInstallationTest, StopsWhenThereAreNoRights) {
  for (const char* const name : {"a/1", "b/2"}) source("PHOTOSHOP_PLUGINS/" + std::string(name));
  const auto host = UnknownHostModel::initWithPlugInPath(platform_, "/Mine");
  for (const std::string tool : {"/bin/cp", "/usr/sbin/chown", "/bin/chmod"}) {
    fs::remove_all(on("/Mine"));
    InstallFilesController controller(platform_);
    EXPECT_TRUE(controller.obtainAuthorization());
    rights_.statusOfTool = {{tool, -60005}};
    if (tool == "/bin/cp") files_.fail(Call::copyItem, std::errc::permission_denied);
    controller.installFiles(*host);
    EXPECT_TRUE(controller.authDenied() && controller.installedPaths().empty()) << tool;
    EXPECT_EQ(rights_.launchesOf(tool).size(), 1U) << "nothing is asked for twice";
    EXPECT_EQ(namesIn(on("/Mine")), "a") << "and no folder made for what would have come after";
  }
  rights_.statusOfTool = {{"/bin/cp", -60006}};
  files_.fail(Call::copyItem, std::errc::permission_denied);
  install({source("1"), source("2")});
  EXPECT_EQ(namesIn(on("/T")), "");
  EXPECT_TRUE(machine_.toolkit.alerts.empty());
  for (const int code : {5529, 5541}) EXPECT_FALSE(InstallFilesController::isFatalAuthCode(code));
  EXPECT_TRUE(InstallFilesController::isFatalAuthCode(5540));
}

TEST_F(FileInstallationTest, SurvivesSourcesAndDestinationsOfAnyShape) {
  writeFile(on("/File"), "a file where a folder is needed");
  fs::create_directory_symlink("/nowhere", on("/Dangling"));
  const fs::path outside = on("").parent_path();
  fs::create_directory_symlink("/../../../../../.." + outside.string(), on("/Climbing"));
  Paths failed;
  for (const std::string folder : {"/File", "/File/Below", "/Dangling", "/Climbing/installed"}) {
    controller_.installSourceFiles({source("a")}, folder, /*isBundle=*/false, /*alwaysInstall=*/true);
    failed.push_back(folder + "/a");
  }
  EXPECT_EQ(readFile(on("/File")), "a file where a folder is needed");
  EXPECT_FALSE(fs::exists(outside / "installed"));

  const std::string unreadable = bundleSource("Pipe.plugin");
  ::mkfifo(machine_.payload("Pipe.plugin/Contents/pipe").c_str(), 0600);
  fs::create_symlink("/etc/passwd", machine_.payload("outside"));
  const std::string before = modeOf("/etc/passwd");
  install({unreadable, machine_.payload("none"), machine_.payload("outside")});
  failed.insert(failed.end(), {"/T/Pipe.plugin", "/T/none"});
  EXPECT_EQ(controller_.failedPaths(), failed);
  EXPECT_EQ(fs::read_symlink(on("/T/outside")), "/etc/passwd");
  EXPECT_EQ(modeOf("/etc/passwd"), before) << "a link is handed over, not what it leads to";
  EXPECT_EQ(namesIn(on("/T")), "outside");
}

TEST_F(FileInstallationTest, CopiesAHostsPayloadToWhereItsFoldersAre) {
  for (const char* const name :
       {"PHOTOSHOP/Presets/a.jsx", "PHOTOSHOP_PLUGINS/.hidden/b", "PHOTOSHOP_PLUGINS/deep/c", "LIGHTROOM/e.lua"}) {
    source(name);
  }
  bundleSource("PHOTOSHOP_PLUGINS/Corvane/D.plugin");
  machine_.addPhotoshop("Adobe Photoshop CS6");
  controller_.installFiles(*PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6"));
  controller_.installFiles(*LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"));
  controller_.installFiles(*UnknownHostModel::initWithPlugInPath(platform_, "/Mine/"));
  controller_.installFiles(*UnknownHostModel::initWithPlugInPath(platform_, ""));
  controller_.installFiles(*ApertureHostModel::initWithHostName(platform_, "Aperture"));
  const std::string photoshop = "/Applications/Adobe Photoshop CS6/";
  EXPECT_EQ(controller_.installedPaths(),
            (Paths{photoshop + "Presets/a.jsx", photoshop + "Plug-Ins/Corvane/D.plugin", photoshop + "Plug-Ins/deep/c",
                   machine_.home() + "/Library/Application Support/Adobe/Lightroom/e.lua", "/Mine/Corvane/D.plugin",
                   "/Mine/deep/c"}));
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
