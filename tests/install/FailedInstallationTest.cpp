// SPDX-License-Identifier: Apache-2.0

#include "install/FileInstallationTest.h"

namespace {

using FailedInstallationTest = FileInstallationTest;

TEST_F(FailedInstallationTest, ReportsEachFailedFileAndContinues) {
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

TEST_F(FailedInstallationTest, IsDeniedByFatalCodes) {
  for (const LaunchStatus status : {-60005, -60006}) {
    InstallFilesController controller(platform_);
    EXPECT_TRUE(controller.obtainAuthorization());
    rights_.statusOfTransactions = status;
    controller.installSourceFiles({source("a")}, "/T", /*isBundle=*/false, /*alwaysInstall=*/true);
    EXPECT_TRUE(controller.authDenied());
    EXPECT_FALSE(controller.fileOpErrorOccurred());
    EXPECT_EQ(namesIn(on("/T")), "");
  }
  EXPECT_EQ(rights_.launches, Paths());
  EXPECT_TRUE(machine_.toolkit.alerts.empty());
  for (const int code : {5529, 5541}) EXPECT_FALSE(InstallFilesController::isFatalAuthCode(code));
  for (const int code : {5530, 5540}) EXPECT_TRUE(InstallFilesController::isFatalAuthCode(code));
}

TEST_F(FailedInstallationTest, InstallsOneByOneWhenAllTogetherDoNotFit) {
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

TEST_F(FailedInstallationTest, ChangesNothingWhenItIsInterruptedInTime) {
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

TEST_F(FailedInstallationTest, DoesNotCommitWhatIsNotOnTheMedium) {
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

TEST_F(FailedInstallationTest, WaitsForAnotherInstaller) {
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

TEST_F(FailedInstallationTest, MakesNoFolderInFilesAndNoneThatLinksLeadTo) {
  writeFile(on("/File"), "a file where a folder is needed");
  fs::create_directory_symlink("/nowhere", on("/Dangling"));
  const fs::path outside = on("").parent_path();
  fs::create_directory_symlink("/../../../../../.." + outside.string(), on("/Climbing"));
  Paths failed;
  for (const std::string folder : {"/File", "/File/Below", "/Dangling", "/Climbing/installed"}) {
    controller_.installSourceFiles({source("a")}, folder, /*isBundle=*/false, /*alwaysInstall=*/true);
    failed.push_back(folder + "/a");
  }
  EXPECT_EQ(failedPaths(), failed);
  EXPECT_EQ(readFile(on("/File")), "a file where a folder is needed");
  EXPECT_FALSE(fs::exists(outside / "installed"));
}

}  // namespace
