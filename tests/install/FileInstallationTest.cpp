#include <sys/stat.h>
#include <unistd.h>

#include "hosts/ApertureHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "install/InstallFilesController.h"
#include "support/TestMachine.h"

namespace {

using Call = FaultyFileSystem::Call;
using Paths = std::vector<std::string>;

class FileInstallationTest : public testing::Test {
 protected:
  FileInstallationTest() {
    EXPECT_TRUE(controller_.obtainAuthorization() || ::geteuid() != 0);
    fs::create_directories(machine_.onVolume("/T"));
  }

  std::string source(const std::string& name, std::string_view content = "new") {
    writeFile(machine_.payload(name), content);
    return machine_.payload(name).string();
  }
  std::string bundleSource(const std::string& name, const std::map<std::string, std::string>& info) {
    makeBundle(machine_.payload(name), info);
    return machine_.payload(name).string();
  }
  void install(const Paths& sources, bool isBundle = false, bool alwaysInstall = true) {
    controller_.installSourceFiles(sources, "/T", isBundle, alwaysInstall);
  }
  [[nodiscard]] std::string installed(const std::string& path) const { return readFile(machine_.onVolume(path)); }
  void setAge(const fs::path& path, int seconds) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::seconds(seconds));
  }

  TestMachine machine_;
  InstallFilesController controller_{machine_.platform};
};

TEST_F(FileInstallationTest, HandsOverWhatItInstalls) {
  install({source("plain.txt"), bundleSource("X.plugin", {})});
  EXPECT_EQ(installed("/T/plain.txt"), "new");
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/plain.txt", "/T/X.plugin"}));
  EXPECT_EQ(modeOf(machine_.onVolume("/T/X.plugin/Contents/Info.plist")), "775");
  const std::string owner = machine_.account().name + ":admin";
  EXPECT_EQ(machine_.authorizations.launches,
            (Paths{"/usr/sbin/chown|-R|" + owner + "|/T/plain.txt", "/bin/chmod|-R|0775|/T/plain.txt",
                   "/usr/sbin/chown|-R|" + owner + "|/T/X.plugin", "/bin/chmod|-R|0775|/T/X.plugin"}));
  EXPECT_EQ(machine_.log.lines, (Paths{"Installing plain.txt", "Installing X.plugin"}));
  if (::geteuid() == 0) {
    struct stat status {};
    ::stat(machine_.onVolume("/T/X.plugin/Contents").c_str(), &status);
    EXPECT_EQ(status.st_gid, *groupNumber("admin"));
  }
}

TEST_F(FileInstallationTest, ReplacesWhatIsThereWhenToldToAlways) {
  writeFile(machine_.onVolume("/T/file/inside"), "a folder is in the way");
  writeFile(machine_.onVolume("/T/outside"), "kept");
  fs::create_symlink("/T/outside", machine_.onVolume("/T/link"));
  fs::create_symlink("/nowhere", machine_.onVolume("/T/dangling"));
  install({source("file"), source("link"), source("dangling")});
  for (const char* const path : {"/T/file", "/T/link", "/T/dangling"}) EXPECT_EQ(installed(path), "new") << path;
  EXPECT_EQ(installed("/T/outside"), "kept");
  EXPECT_EQ(machine_.log.count("removing existing file..."), 3);
  EXPECT_EQ(machine_.authorizations.launchesOf("/bin/rm"), Paths());
}

TEST_F(FileInstallationTest, ComparesBundlesByVersion) {
  struct Case {
    const char* offered;
    const char* installed;
    bool replaced;
  };
  for (const Case& versions : {Case{"3.1", "3.1", true},
                               {"3.0.9", "3.1", true},
                               {"3.0", "3.1", false},
                               {"3.1", "", true},
                               {"", "3.1", false},
                               {"", "", false}}) {
    const auto info = [](const std::string& version) {
      return version.empty() ? std::map<std::string, std::string>()
                             : std::map<std::string, std::string>{{"CFBundleVersion", version}};
    };
    fs::remove_all(machine_.onVolume("/T/X.plugin"));
    makeBundle(machine_.onVolume("/T/X.plugin"), info(versions.installed));
    writeFile(machine_.onVolume("/T/X.plugin/old"), "old");
    install({bundleSource("X.plugin", info(versions.offered))}, /*isBundle=*/true, /*alwaysInstall=*/false);
    EXPECT_EQ(installed("/T/X.plugin/old") != "old", versions.replaced)
        << versions.offered << " over " << versions.installed;
  }
  EXPECT_TRUE(controller_.isFileOkToInstallByBundleVersion("/none", "/T/none"));
  writeFile(machine_.onVolume("/T/file"), "");
  EXPECT_TRUE(controller_.isFileOkToInstallByBundleVersion(machine_.payload("X.plugin").string(), "/T/file"));
  EXPECT_FALSE(controller_.isFileOkToInstallByBundleVersion("/none", "/T/X.plugin"));
}

TEST_F(FileInstallationTest, ComparesFilesByDate) {
  const std::string offered = source("file");
  const fs::path target = machine_.onVolume("/T/file");
  const auto isOk = [&] { return controller_.isFileOkToInstallByModificationTime(offered, "/T/file"); };
  EXPECT_TRUE(isOk()) << "nothing there";
  writeFile(target, "old");
  setAge(offered, 10);
  EXPECT_FALSE(isOk());
  fs::last_write_time(target, fs::last_write_time(offered));
  EXPECT_TRUE(isOk()) << "equal";
  setAge(target, 20);
  EXPECT_TRUE(isOk());
  fs::remove(target);
  fs::create_directories(target);
  EXPECT_TRUE(isOk()) << "an empty folder, however new";
  writeFile(target / "inside", "");
  EXPECT_FALSE(isOk());
}

TEST_F(FileInstallationTest, AddsNothingBesideAFileThatIsNewer) {
  const Paths sources = {source("a"), source("b newer"), source("c"), source("d older"), source("e")};
  for (const std::string& path : sources) setAge(path, 100);
  writeFile(machine_.onVolume("/T/b newer"), "old");
  writeFile(machine_.onVolume("/T/d older"), "old");
  setAge(machine_.onVolume("/T/d older"), 200);
  install(sources, /*isBundle=*/false, /*alwaysInstall=*/false);
  EXPECT_EQ(namesIn(machine_.onVolume("/T")), "a b newer d older e");
  EXPECT_EQ(installed("/T/b newer"), "old");
  EXPECT_EQ(installed("/T/d older"), "new");
}

TEST_F(FileInstallationTest, FallsBackToTools) {
  writeFile(machine_.onVolume("/T/b"), "old");
  machine_.files.fail(Call::copyItem, std::errc::permission_denied, 2);
  machine_.files.fail(Call::replaceItem, std::errc::permission_denied);
  const Paths sources = {source("a"), source("b")};
  install(sources);
  EXPECT_EQ(installed("/T/a"), "new");
  EXPECT_EQ(installed("/T/b"), "new");
  EXPECT_EQ(machine_.authorizations.launchesOf("/bin/rm"), (Paths{"/bin/rm|-fR|/T/b"}));
  EXPECT_EQ(machine_.authorizations.launchesOf("/bin/cp"),
            (Paths{"/bin/cp|-R|" + sources[0] + "|/T/a", "/bin/cp|-R|" + sources[1] + "|/T/b"}));
  EXPECT_FALSE(controller_.fileOpErrorOccurred());
}

TEST_F(FileInstallationTest, ReportsEachFileThatFailsAndGoesOn) {
  writeFile(machine_.onVolume("/T/b"), "old");
  machine_.files.fail(Call::copyItem, std::errc::no_space_on_device);
  machine_.files.fail(Call::replaceItem, std::errc::no_space_on_device);
  machine_.authorizations.statusOfTool["/bin/cp"] = errAuthorizationToolExecuteFailure;
  install({source("a"), source("b"), source("c")});
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/T/a", "/T/b"}));
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/c"}));
  EXPECT_EQ(installed("/T/b"), "old") << "what could not be replaced stays";
  EXPECT_EQ(machine_.authorizations.launchesOf("/bin/rm"), Paths()) << "and is not removed for a full disk";
  EXPECT_EQ(machine_.log.count("Could not install file: /T/a"), 1);
  EXPECT_TRUE(machine_.log.contains("No space left on device"));
  ASSERT_EQ(machine_.toolkit.alerts.size(), 2U);
  EXPECT_EQ(machine_.toolkit.alerts[0].title, "Title");
  EXPECT_EQ(machine_.toolkit.alerts[0].message, "<|/T/a>");
  EXPECT_EQ(machine_.toolkit.alerts[0].defaultButton, "Go on");
  EXPECT_EQ(machine_.toolkit.alerts[0].alternateButton, "");
  EXPECT_EQ(machine_.clock.sleeps, std::vector(32, std::chrono::microseconds(125)));
}

TEST_F(FileInstallationTest, WaitsAWhileForAFileToAppear) {
  machine_.files.hide("/T/late", 1 + 1 + 20);
  install({source("late")});
  EXPECT_EQ(machine_.log.count("Took a delay to verify file late"), 1);
  EXPECT_EQ(machine_.clock.sleeps.size(), 20U);
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/late"}));
}

TEST_F(FileInstallationTest, StopsWhenThereAreNoRights) {
  const std::string tools[] = {"/bin/cp", "/usr/sbin/chown", "/bin/chmod"};
  for (const std::string& tool : tools) {
    for (const LaunchStatus status : {-60006, -60005}) {
      TestMachine machine;
      InstallFilesController controller(machine.platform);
      ASSERT_TRUE(controller.obtainAuthorization());
      machine.authorizations.statusOfTool[tool] = status;
      if (tool == "/bin/cp") machine.files.fail(Call::copyItem, std::errc::permission_denied);
      writeFile(machine.payload("a"), "a");
      writeFile(machine.payload("b"), "b");
      controller.installSourceFiles({machine.payload("a").string(), machine.payload("b").string()}, "/Applications",
                                    /*isBundle=*/false, /*alwaysInstall=*/true);
      EXPECT_TRUE(controller.authDenied()) << tool;
      EXPECT_EQ(controller.installedPaths(), Paths()) << tool;
      EXPECT_FALSE(fs::exists(machine.onVolume("/Applications/b"))) << tool;
      EXPECT_TRUE(machine.toolkit.alerts.empty()) << tool;
    }
  }
  EXPECT_FALSE(InstallFilesController::isFatalAuthCode(5529));
  EXPECT_TRUE(InstallFilesController::isFatalAuthCode(5540));
  EXPECT_FALSE(InstallFilesController::isFatalAuthCode(5505)) << "a tool that does not exist";
}

TEST_F(FileInstallationTest, MakesAFolderAndTheOneItIsIn) {
  controller_.ensureDirExists("/New/Deep/Parent/Folder");
  EXPECT_EQ(modeOf(machine_.onVolume("/New/Deep/Parent/Folder")), "775");
  EXPECT_EQ(modeOf(machine_.onVolume("/New/Deep/Parent")), "775");
  EXPECT_EQ(modeOf(machine_.onVolume("/New/Deep")), "755");
  EXPECT_TRUE(machine_.authorizations.launches.empty());

  machine_.files.fail(Call::createDirectory, std::errc::permission_denied, 2);
  controller_.ensureDirExists("/Other/Parent/Folder");
  const std::string owner = machine_.account().name + ":admin";
  EXPECT_EQ(
      machine_.authorizations.launches,
      (Paths{"/bin/mkdir|-m775|-p|/Other/Parent", "/usr/sbin/chown|-R|" + owner + "|/Other/Parent",
             "/bin/mkdir|-m775|-p|/Other/Parent/Folder", "/usr/sbin/chown|-R|" + owner + "|/Other/Parent/Folder"}));
  EXPECT_EQ(modeOf(machine_.onVolume("/Other/Parent/Folder")), "775");

  machine_.files.fail(Call::createDirectory, std::errc::permission_denied, 2);
  machine_.authorizations.statusOfTool["/bin/mkdir"] = -60006;
  controller_.ensureDirExists("/Third/Parent/Folder");
  EXPECT_TRUE(controller_.authDenied());
  EXPECT_EQ(machine_.authorizations.launches.size(), 5U) << "nothing after the refusal";
}

TEST_F(FileInstallationTest, SurvivesDestinationsThatCannotBe) {
  writeFile(machine_.onVolume("/File"), "a file where a folder is needed");
  fs::create_directory_symlink("/nowhere", machine_.onVolume("/Dangling"));
  fs::create_directory_symlink("/../../../../../../tmp", machine_.onVolume("/Climbing"));
  for (const char* const folder : {"/File", "/File/Below", "/Dangling"}) {
    controller_.installSourceFiles({source("a")}, folder, /*isBundle=*/false, /*alwaysInstall=*/true);
  }
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/File/a", "/File/Below/a", "/Dangling/a"}));
  EXPECT_EQ(installed("/File"), "a file where a folder is needed");
  controller_.installSourceFiles({source("a")}, "/Climbing/x", /*isBundle=*/false, /*alwaysInstall=*/true);
  EXPECT_FALSE(fs::exists("/tmp/x"));
}

TEST_F(FileInstallationTest, SurvivesAPayloadOfAnyShape) {
  const std::string unreadable = bundleSource("Pipe.plugin", {});
  ::mkfifo(machine_.payload("Pipe.plugin/Contents/pipe").c_str(), 0600);
  fs::create_symlink("/etc/passwd", machine_.payload("outside"));
  fs::create_symlink("nowhere", machine_.payload("dangling"));
  const std::string before = modeOf("/etc/passwd");
  install({unreadable, machine_.payload("none").string(), machine_.payload("outside").string(),
           machine_.payload("dangling").string()});
  EXPECT_EQ(controller_.failedPaths(), (Paths{"/T/Pipe.plugin", "/T/none"}));
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/outside", "/T/dangling"}));
  EXPECT_EQ(fs::read_symlink(machine_.onVolume("/T/outside")), "/etc/passwd");
  EXPECT_EQ(modeOf("/etc/passwd"), before) << "a link is handed over, not what it leads to";
  EXPECT_EQ(namesIn(machine_.onVolume("/T")), "dangling outside");
}

TEST_F(FileInstallationTest, CopiesAHostsPayloadToWhereItsFoldersAre) {
  source("PHOTOSHOP/Presets/Scripts/a.jsx");
  source("PHOTOSHOP_PLUGINS/.hidden/b");
  source("PHOTOSHOP_PLUGINS/Panels/deep/c");
  bundleSource("PHOTOSHOP_PLUGINS/Corvane/D.plugin", {});
  source("LIGHTROOM/Modules/e.lua");
  machine_.addPhotoshop("Adobe Photoshop CS6");

  controller_.installFiles(*PhotoshopHostModel::initWithHostName(machine_.platform, "Adobe Photoshop CS6"));
  controller_.installFiles(*LightRoomHostModel::initWithHostName(machine_.platform, "Adobe Lightroom"));
  controller_.installFiles(*UnknownHostModel::initWithPlugInPath(machine_.platform, "/Mine/"));
  controller_.installFiles(*UnknownHostModel::initWithPlugInPath(machine_.platform, ""));
  controller_.installFiles(*ApertureHostModel::initWithHostName(machine_.platform, "Aperture"));
  EXPECT_EQ(controller_.installedPaths(),
            (Paths{"/Applications/Adobe Photoshop CS6/Presets/Scripts/a.jsx",
                   "/Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/D.plugin",
                   "/Applications/Adobe Photoshop CS6/Plug-Ins/Panels/deep/c",
                   machine_.home() + "/Library/Application Support/Adobe/Lightroom/Modules/e.lua",
                   "/Mine/Corvane/D.plugin", "/Mine/Panels/deep/c"}));
}

}  // namespace
