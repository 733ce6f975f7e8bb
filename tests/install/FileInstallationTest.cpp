// SPDX-License-Identifier: Apache-2.0

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
  void install(const std::shared_ptr<HostModel>& host) { controller_.installFiles(host); }
  void install(const Paths& sources, bool isBundle = false, bool alwaysInstall = true) {
    controller_.installSourceFiles(sources, "/T", isBundle, alwaysInstall);
  }

  [[nodiscard]] Paths failedPaths() const {
    Paths paths;
    for (const ReportedProblem& failure : controller_.report().failures) paths.push_back(failure.path);
    return paths;
  }

  const std::string owner_ = machine_.account().name + ":admin";
  RecordingAuthorizations& rights_ = machine_.authorizations;
  InstallFilesController controller_{platform_};
};

TEST_F(FileInstallationTest, StagesFlushesAndCommitsAllTogether) {
  writeFile(on("/T/file/inside"), "a folder is in the way");
  const Paths installed = {"/T/file", "/T/plain"};
  install({source("file"), source("plain")});
  for (const std::string& path : installed) EXPECT_EQ(readFile(on(path)), "new") << path;
  EXPECT_EQ(rights_.transaction.steps,
            (Paths{"stage /T/file", "stage /T/plain", "flush", "commit 0 1", "flush", "finish"}));
  EXPECT_EQ(controller_.installedPaths(), installed);
  EXPECT_EQ(log_.lines, (Paths{"Installing file", "removing existing file...", "Installing plain"}));
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
  const Texts contents = {{"newer", "old"}, {"older", "new"}, {"equal", "new"}, {"empty", "new"}};
  for (const auto& [name, content] : contents) EXPECT_EQ(readFile(on("/T/" + name)), content) << name;
}

TEST_F(FileInstallationTest, MakesFoldersWithToolsWhereTheUserMayNot) {
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
    EXPECT_EQ(modeOf(on(top + "/Deep/Parent/Folder")), "775") << top;
    EXPECT_EQ(modeOf(on(top + "/Deep/Parent")), "775") << top;
    EXPECT_EQ(modeOf(on(top + "/Deep")), "755") << top;
  }
}

TEST_F(FileInstallationTest, ReportsEachFailedFileAndContinues) {
  writeFile(on("/T/b"), "old");
  rights_.transaction.faults = {{"stage /T/a", std::errc::io_error},
                                {"stage /T/b", std::errc::permission_denied},
                                {"attributes /T/c", std::errc::operation_not_permitted},
                                {"commit /T/late", std::errc::resource_unavailable_try_again},
                                {"commit /T/lost", std::errc::no_such_file_or_directory},
                                {"commit /T/never", std::errc::read_only_file_system}};
  Paths order;
  rights_.transaction.before = [&](const std::string& step) {
    order.push_back(step + " " + std::to_string(machine_.toolkit.alerts.size()));
    // The item appears after the 20th look.
    if (step.starts_with("commit")) fs::rename(on("/T/late"), on("/T/hidden"));
  };
  writeFile(on("/T/late"), "old");
  machine_.clock.whileSleeping = [&] {
    if (machine_.clock.sleeps.size() == 20) fs::rename(on("/T/hidden"), on("/T/late"));
  };
  install({source("a"), source("b"), source("c"), source("late"), source("never"), source("lost")});
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(failedPaths(), (Paths{"/T/a", "/T/b", "/T/never", "/T/lost"}));
  EXPECT_EQ(controller_.report().failures[1].reason.reason(), "Permission denied");
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/c", "/T/late"}));
  EXPECT_EQ(controller_.report().attributes.front().path, "/T/c");
  EXPECT_EQ(readFile(on("/T/b")), "old") << "what could not be replaced stays";
  EXPECT_EQ(order, (Paths{"stage /T/a 0", "stage /T/b 1", "stage /T/c 2", "stage /T/late 2", "stage /T/never 2",
                          "stage /T/lost 2", "flush 2", "commit 2 3 4 5 2", "flush 4", "finish 4"}))
      << "alerts come while staging, and never between two commits";
  EXPECT_EQ(log_.count("Could not install file: /T/a"), 1);
  EXPECT_EQ(log_.count("Took a delay to verify file late"), 1);
  const Alert& alert = machine_.toolkit.alerts[0];
  EXPECT_EQ(alert.title + alert.message + alert.defaultButton + alert.alternateButton.value_or(""),
            "Title<|/T/a>Go on");
}

TEST_F(FileInstallationTest, ChangesNothingWithoutRights) {
  for (const char* const name : {"a/1", "b/2"}) source("PHOTOSHOP_PLUGINS/" + std::string(name));
  const auto host = UnknownHostModel::initWithPlugInPath(platform_, "/Mine");
  for (const LaunchStatus status : {-60005, -60006}) {
    InstallFilesController controller(platform_);
    EXPECT_TRUE(controller.obtainAuthorization());
    rights_.statusOfTransactions = status;
    controller.installFiles(host);
    EXPECT_TRUE(controller.authDenied());
    EXPECT_EQ(controller.installedPaths(), Paths());
    EXPECT_FALSE(controller.fileOpErrorOccurred());
    EXPECT_FALSE(fs::exists(on("/Mine")));
  }
  EXPECT_EQ(rights_.launches, Paths());
  EXPECT_TRUE(machine_.toolkit.alerts.empty());
  for (const int code : {5529, 5541}) EXPECT_FALSE(InstallFilesController::isFatalAuthCode(code));
  for (const int code : {5530, 5540}) EXPECT_TRUE(InstallFilesController::isFatalAuthCode(code));
}

TEST_F(FileInstallationTest, InstallsOneByOneWhenAllTogetherDoNotFit) {
  const Paths sources = {source("a"), source("b"), source("c")};
  writeFile(on("/T/b"), "old");
  // The room is found to be too small only when it is used up.
  rights_.transaction.roomForItems = 1;
  install(sources);
  EXPECT_EQ(controller_.installedPaths(), (Paths{"/T/a", "/T/b", "/T/c"}));
  EXPECT_EQ(
      rights_.transaction.steps,
      (Paths{"stage /T/a", "stage /T/b", "finish",  //
             "stage /T/a", "flush",      "commit 0", "flush",    "finish", "stage /T/b", "flush", "commit 1", "flush",
             "finish",     "stage /T/c", "flush",    "commit 2", "flush",  "finish",     "flush", "finish"}));
  EXPECT_FALSE(controller_.fileOpErrorOccurred());

  // And before anything is begun.
  rights_.transaction = {};
  files_.available = 10'000;
  install(sources);
  EXPECT_EQ(rights_.transaction.steps.front(), "stage /T/a");
  EXPECT_EQ(rights_.transaction.steps[1], "flush") << "nothing else is staged first";

  rights_.transaction = {};
  files_.available = 5'000;
  install(sources);
  EXPECT_EQ(rights_.transaction.steps, Paths());
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(controller_.report().shortage->required, 8192U);
  EXPECT_EQ(controller_.report().shortage->available, 5'000U);
  EXPECT_EQ(machine_.toolkit.alerts.back().message, "There is not enough room: 1 MB are needed, 1 MB are available.");
}

TEST_F(FileInstallationTest, ChangesNothingWhenItIsInterruptedInTime) {
  writeFile(on("/T/a"), "old");
  for (const std::string moment : {"stage /T/b", "flush", "commit 0 1"}) {
    rights_.transaction = {};
    machine_.interruptions.signal.reset();
    rights_.transaction.before = [&](const std::string& step) {
      if (step == moment) machine_.interruptions.signal = 15;
    };
    InstallFilesController controller(platform_);
    EXPECT_TRUE(controller.obtainAuthorization());
    controller.installSourceFiles({source("a"), source("b")}, "/T", /*isBundle=*/false, /*alwaysInstall=*/true);
    const bool isTooLate = moment == "commit 0 1";
    EXPECT_EQ(readFile(on("/T/a")), isTooLate ? "new" : "old") << moment;
    EXPECT_EQ(controller.report().wasCutShort(), !isTooLate) << moment;
    EXPECT_EQ(rights_.transaction.steps.back(), "finish") << moment;
  }

  // Where items are installed one at a time, the first ones are in place.
  rights_.transaction = {};
  machine_.interruptions.signal.reset();
  rights_.transaction.roomForItems = 1;
  rights_.transaction.before = [&](const std::string& step) {
    if (step == "commit 0") machine_.interruptions.signal = 15;
  };
  install({source("a"), source("b")});
  EXPECT_EQ(controller_.installedPaths(), Paths{"/T/a"});
  EXPECT_EQ(controller_.report().interruption->moment, Interruption::Moment::betweenItems);
}

TEST_F(FileInstallationTest, DoesNotCommitWhatIsNotOnTheMedium) {
  writeFile(on("/T/a"), "old");
  rights_.transaction.faults = {{"flush", std::errc::io_error}};
  install({source("a"), source("b")});
  EXPECT_EQ(readFile(on("/T/a")), "old");
  EXPECT_EQ(failedPaths(), (Paths{"/T/a", "/T/b"}));
  EXPECT_EQ(machine_.toolkit.alerts.size(), 1U) << "one cause, one alert";
  rights_.transaction.faults = {{"finish", std::errc::io_error}};
  install({source("a")});
  EXPECT_EQ(controller_.report().leftBehind.back().path, "/");
}

TEST_F(FileInstallationTest, WaitsForAnotherInstaller) {
  files_.fail(Call::tryLock, std::errc::device_or_resource_busy, 3);
  install({source("a")});
  EXPECT_EQ(readFile(on("/T/a")), "new");
  EXPECT_EQ(machine_.clock.sleeps.size(), 3U);
  EXPECT_EQ(log_.count("Waiting for another installer to finish"), 1);

  files_.fail(Call::tryLock, std::errc::device_or_resource_busy, 100);
  machine_.clock.whileSleeping = [&] { machine_.interruptions.signal = 2; };
  fs::remove(on("/T/a"));
  install({source("a")});
  EXPECT_FALSE(fs::exists(on("/T/a")));
  EXPECT_EQ(controller_.report().interruption->signal, 2);
}

TEST_F(FileInstallationTest, ToleratesAnyKindOfSourceAndDestination) {
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
  EXPECT_EQ(failedPaths(), failed);
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
  install(PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6"));
  install(LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"));
  install(UnknownHostModel::initWithPlugInPath(platform_, "/Mine/"));
  install(UnknownHostModel::initWithPlugInPath(platform_, ""));
  install(ApertureHostModel::initWithHostName(platform_, "Aperture"));
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
  EXPECT_TRUE(fs::exists(mine));
  EXPECT_TRUE(fs::exists(theirs));
  EXPECT_FALSE(controller_.fileOpErrorOccurred()) << "the rest goes on";
}

}  // namespace
