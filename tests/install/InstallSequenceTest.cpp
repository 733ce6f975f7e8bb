// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>

#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "install/InstallFilesController.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class InstallSequenceTest : public MachineTest {
 protected:
  InstallSequenceTest() {
    makeBundle(machine_.payload("HD/Applications/Studio.app"), {});
    makeBundle(machine_.payload("HD/Library/Adobe/Dunmore.lrplugin"), {});
    const fs::path company = machine_.payload("HD/Library/Application Support/Corvane");
    makeBundle(company / "Dunmore 3/Inner.app", {});
    fs::create_directories(company / "Empty");
    for (const fs::path& file :
         {company / "Dunmore 3/Presets/deep/a", company / "Dunmore 3/b", company / "Dunmore 3/.hidden",
          company / "loose", machine_.payload("HD/Library/Fonts/not by itself"),
          machine_.payload("PHOTOSHOP_PLUGINS/c"), machine_.payload("LIGHTROOM/d")}) {
      writeFile(file, file.filename().string());
    }
    machine_.addPhotoshop("Adobe Photoshop CS6");
    fs::create_directories(machine_.inLibrary("Application Support/Adobe/Lightroom/External Editor Presets"));
    photoshop_ = PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6");
    main_.found = main_.selected = {photoshop_, LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom")};
  }

  void enter(std::int32_t direction = 1) { controller_.didEnterWithModel(model_, view_, &main_, direction); }

  [[nodiscard]] std::string log() const {
    return readFile(on("/Library/Application Support/Corvane/Dunmore 3 Installer.log"));
  }

  const std::string studio_ = "/Applications/Studio.app";
  const std::string product_ = "/Library/Application Support/Corvane/Dunmore 3";
  const std::string inPhotoshop_ = "/Applications/Adobe Photoshop CS6/Plug-Ins/c";
  const std::string inLightroom_ = machine_.home() + "/Library/Application Support/Adobe/Lightroom/d";
  RecordingMainController main_;
  std::shared_ptr<HostModel> photoshop_;
  std::shared_ptr<InstallFilesModel> model_ = std::make_shared<InstallFilesModel>(platform_);
  std::shared_ptr<RecordingView> view_ = std::make_shared<RecordingView>();
  InstallFilesController controller_{platform_};
};

TEST_F(InstallSequenceTest, InstallsWithoutAWindow) {
  controller_.install(main_.selected, /*shouldConfigureLumatraExternalEditors=*/false);
  // No Lightroom plug-in: without a page nobody has selected Lightroom.
  EXPECT_EQ(controller_.installedPaths(), (Paths{studio_, product_ + "/Inner.app", product_ + "/Presets",
                                                 product_ + "/b", inPhotoshop_, inLightroom_}));
  std::string lines;
  for (const std::string& path : controller_.installedPaths()) lines += path + "\n";
  EXPECT_EQ(log(), lines);

  // All items are put in place in one go; then come registration and the log.
  const Paths& steps = machine_.authorizations.transaction.steps;
  EXPECT_EQ(steps[6], "flush");
  EXPECT_EQ((Paths{steps.begin() + 7, steps.begin() + 10}), (Paths{"commit 0 1 2 3", "commit 4", "commit 5"}));
  Paths tools;
  for (const std::string& launch : machine_.authorizations.launches) {
    tools.push_back(fs::path(launch.substr(0, launch.find('|'))).filename());
  }
  EXPECT_EQ(tools, (Paths{"lsregister", "rm", "touch", "chown", "chmod", "mv"}));
  EXPECT_EQ(log_.count("Not installed: "), 4) << "each with the reason";
}

TEST_F(InstallSequenceTest, MovesOnByItselfFromThePage) {
  bool wasInProgress = true;
  main_.onNextView = [&] { wasInProgress = !controller_.enableForward(); };
  writeFile(machine_.payload("HD/Applications/Studio.app/Contents/Large"), std::string(8'000'000, 'L'));
  writeFile(machine_.payload("LIGHTROOM/d"), std::string(6'000'000, 'd'));
  std::vector<double> shown;
  main_.onProgress = [&] { shown.push_back(controller_.progress()); };
  machine_.authorizations.beforeLaunch = [&] {
    EXPECT_FALSE(controller_.enableForward());
    EXPECT_FALSE(controller_.enableBackward());
    EXPECT_FALSE(controller_.canProceed(1));
  };
  enter();
  EXPECT_EQ(machine_.authorizations.held, 0) << "the rights end with the install";
  EXPECT_FALSE(wasInProgress);
  EXPECT_FALSE(view_->isHidden);
  EXPECT_TRUE(controller_.successfulInstall());
  EXPECT_EQ(*model_->mainLabelText() + ", " + model_->informativeText().string(), "Installing Corvane, Done");
  EXPECT_EQ(controller_.installedPaths(),
            (Paths{studio_, "/Library/Adobe/Dunmore.lrplugin", product_ + "/Inner.app", product_ + "/Presets",
                   product_ + "/b", "/Library/Application Support/Corvane/Lumatra X/ExternalEditors.csv", inPhotoshop_,
                   inLightroom_}));
  EXPECT_TRUE(main_.announced.starts_with("+enableForward +enableBackward +canProceed +copyInProgress "));
  EXPECT_TRUE(main_.announced.ends_with("-copyInProgress next -successfulInstall ")) << main_.announced;
  EXPECT_TRUE(std::ranges::is_sorted(shown));
  EXPECT_EQ(shown.front(), 0);
  EXPECT_EQ(shown.back(), 1);
  const auto isNearTheEnd = [](double fraction) { return fraction > 0.5 && fraction < 0.8; };
  EXPECT_TRUE(std::ranges::any_of(shown, isNearTheEnd)) << "the large bundle is done, the large file is not";

  controller_.didProceed(1);
  EXPECT_TRUE(view_->isHidden);
  EXPECT_TRUE(controller_.successfulInstall());
  main_.announced.clear();
  enter(-1);
  EXPECT_EQ(main_.announced, "") << "nothing is installed on the way back";
}

TEST_F(InstallSequenceTest, StopsForThePersonAsLongAsNothingIsChanged) {
  const fs::path manifest = machine_.inLibrary("Application Support/Corvane/manifest.xml");
  writeFile(manifest, "");
  EXPECT_FALSE(controller_.askToStop()) << "nothing is under way";
  std::string askedBefore = "flush";
  bool stops = false;
  machine_.authorizations.transaction.before = [&](const std::string& step) {
    if (step == askedBefore) stops = controller_.askToStop();
  };
  enter();
  EXPECT_TRUE(stops);
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_EQ(controller_.report().interruption->signal, 0);
  EXPECT_EQ(machine_.authorizations.launches, Paths());
  EXPECT_TRUE(fs::exists(manifest));
  EXPECT_LT(controller_.progress(), 1);
  EXPECT_FALSE(fs::exists(on(studio_)));
  EXPECT_EQ(log(), "(no such file)");

  machine_.toolkit.answer = AlertAnswer::alternateButton;
  enter();
  EXPECT_FALSE(stops) << "the person goes on";
  EXPECT_TRUE(controller_.successfulInstall());
  EXPECT_EQ(machine_.toolkit.alerts.size(), 2U);
  machine_.toolkit.answer = AlertAnswer::defaultButton;
  askedBefore = "finish";
  enter();
  EXPECT_FALSE(stops) << "too late to ask";
  EXPECT_TRUE(controller_.successfulInstall());
  EXPECT_EQ(machine_.toolkit.alerts.size(), 2U);
}

TEST_F(InstallSequenceTest, EndsInFailureWithoutRights) {
  machine_.authorizations.canBeObtained = false;
  enter();
  EXPECT_EQ(machine_.authorizations.launches, Paths());
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_EQ(log_.lines, Paths{"SFAuthorization permit with rights error"});
  EXPECT_NE(main_.announced.find("next"), std::string::npos);

  machine_.authorizations.canBeObtained = true;
  machine_.authorizations.statusOfTransactions = -60006;
  const fs::path manifest = machine_.inLibrary("Application Support/Corvane/manifest.xml");
  writeFile(manifest, "");
  enter();
  EXPECT_TRUE(controller_.authDenied());
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_FALSE(fs::exists(on(inPhotoshop_)));
  EXPECT_TRUE(fs::exists(manifest)) << "nothing is changed";
  EXPECT_EQ(machine_.authorizations.launches, Paths());
  EXPECT_EQ(log(), "(no such file)");

  machine_.authorizations.statusOfTransactions = launchSucceeded;
  enter();
  EXPECT_TRUE(controller_.successfulInstall()) << "tried again with everything cleared";
  EXPECT_FALSE(fs::exists(manifest));
}

TEST_F(InstallSequenceTest, LogsItemsInstalledBeforeAFailure) {
  writeFile(on(inPhotoshop_), "old");
  machine_.authorizations.transaction.faults = {{"stage " + inPhotoshop_, std::errc::io_error}};
  enter();
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_FALSE(fs::exists(on(inLightroom_))) << "no further host";
  EXPECT_EQ(machine_.toolkit.alerts.size(), 1U);
  const std::string failed = log();
  EXPECT_TRUE(failed.starts_with(studio_ + "\n")) << failed;
  EXPECT_EQ(failed.find(inPhotoshop_), std::string::npos) << failed;

  // The same for a failure that shows at the end only, in what belongs to no host.
  machine_.authorizations.transaction.faults = {{"commit " + product_ + "/b", std::errc::device_or_resource_busy}};
  enter();
  EXPECT_EQ(readFile(on(inPhotoshop_)), "old");
  EXPECT_EQ(machine_.toolkit.alerts.size(), 2U);

  machine_.authorizations.transaction.faults.clear();
  controller_.install({photoshop_}, false);
  const std::string whole = log();
  EXPECT_TRUE(whole.ends_with("/b\n" + inPhotoshop_ + "\n")) << "replaced, not added to: " << whole;
  fs::remove_all(machine_.payload(""));
  controller_.install({photoshop_}, false);
  EXPECT_EQ(log(), whole) << "kept when there is nothing to log";
}

TEST_F(InstallSequenceTest, ReportsUnreadableItemsOnce) {
  ASSERT_EQ(::mknod(on("/Library/socket").c_str(), S_IFSOCK | 0600, 0), 0);
  static_cast<void>(platform_.files.readFile("/Library/socket", 10));
  controller_.install({photoshop_}, false);
  EXPECT_EQ(controller_.report().unreadable.size(), 1U);
  controller_.install({photoshop_}, false);
  EXPECT_EQ(controller_.report().unreadable.size(), 0U);
}

TEST_F(InstallSequenceTest, FailsWhenPartOfThePayloadCannotBeListed) {
  // A file where the payload's folder should be cannot be listed by anybody.
  fs::remove_all(machine_.payload("PHOTOSHOP_PLUGINS"));
  writeFile(machine_.payload("PHOTOSHOP_PLUGINS"), "");
  controller_.install(main_.selected, false);
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_EQ(controller_.report().failures.front().path, machine_.payload("PHOTOSHOP_PLUGINS"));
  EXPECT_FALSE(fs::exists(on(inLightroom_))) << "no further host";
}

}  // namespace
