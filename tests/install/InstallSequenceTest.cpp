#include <algorithm>

#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "install/InstallFilesController.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

using Call = FaultyFileSystem::Call;
using Paths = std::vector<std::string>;

class SomeView : public View {
 public:
  bool isHidden = true;
  void setHidden(bool hidden) override { isHidden = hidden; }
};

class InstallSequenceTest : public testing::Test {
 protected:
  InstallSequenceTest() {
    makeBundle(machine_.payload("HD/Applications/Studio.app"), {{"CFBundleIdentifier", "com.corvane.studio"}});
    makeBundle(machine_.payload("HD/Library/Adobe/Dunmore.lrplugin"), {});
    writeFile(machine_.payload("HD/Library/Application Support/Corvane/Dunmore 3/Presets/deep/a"), "a");
    writeFile(machine_.payload("HD/Library/Application Support/Corvane/Dunmore 3/b"), "b");
    writeFile(machine_.payload("HD/Library/Application Support/Corvane/Dunmore 3/.hidden"), "");
    writeFile(machine_.payload("HD/Library/Application Support/Corvane/loose"), "");
    makeBundle(machine_.payload("HD/Library/Application Support/Corvane/Dunmore 3/Inner.app"), {});
    fs::create_directories(machine_.payload("HD/Library/Application Support/Corvane/Empty"));
    writeFile(machine_.payload("HD/Library/Fonts/not by itself"), "");
    writeFile(machine_.payload("PHOTOSHOP_PLUGINS/c"), "c");
    writeFile(machine_.payload("LIGHTROOM/d"), "d");
    machine_.addPhotoshop("Adobe Photoshop CS6");
    machine_.addLightroom();
    photoshop_ = PhotoshopHostModel::initWithHostName(machine_.platform, "Adobe Photoshop CS6");
    lightroom_ = LightRoomHostModel::initWithHostName(machine_.platform, "Adobe Lightroom");
    main_.found = main_.selected = {photoshop_, lightroom_};
  }

  void enter(std::int32_t direction = 1) { controller_.didEnterWithModel(model_, view_, &main_, direction); }

  [[nodiscard]] std::string log() const {
    return readFile(machine_.onVolume("/Library/Application Support/Corvane/Dunmore 3 Installer.log"));
  }

  const Paths hostIndependent_ = {
      "/Applications/Studio.app", "/Library/Application Support/Corvane/Dunmore 3/Inner.app",
      "/Library/Application Support/Corvane/Dunmore 3/Presets", "/Library/Application Support/Corvane/Dunmore 3/b"};
  TestMachine machine_;
  RecordingMainController main_;
  std::shared_ptr<HostModel> photoshop_;
  std::shared_ptr<HostModel> lightroom_;
  std::shared_ptr<InstallFilesModel> model_ = std::make_shared<InstallFilesModel>(machine_.platform);
  std::shared_ptr<SomeView> view_ = std::make_shared<SomeView>();
  InstallFilesController controller_{machine_.platform};
};

TEST_F(InstallSequenceTest, InstallsWithoutAWindow) {
  controller_.install(main_.selected, /*shouldConfigureLumatraExternalEditors=*/false);
  Paths expected = hostIndependent_;  // and no Lightroom plug-in: nobody has selected Lightroom
  expected.emplace_back("/Applications/Adobe Photoshop CS6/Plug-Ins/c");
  expected.push_back(machine_.home() + "/Library/Application Support/Adobe/Lightroom/d");
  EXPECT_EQ(controller_.installedPaths(), expected);
  std::string lines;
  for (const std::string& path : expected) lines += path + "\n";
  EXPECT_EQ(log(), lines);
  EXPECT_FALSE(controller_.fileOpErrorOccurred() || controller_.authDenied());

  Paths tools;
  for (const std::string& launch : machine_.authorizations.launches)
    tools.push_back(launch.substr(0, launch.find('|')));
  const auto registration = std::ranges::find(tools,
                                              "/System/Library/Frameworks/CoreServices.framework/Versions/A/"
                                              "Frameworks/LaunchServices.framework/Versions/A/Support/lsregister");
  ASSERT_NE(registration, tools.end());
  EXPECT_EQ(machine_.authorizations.launches[static_cast<std::size_t>(registration - tools.begin())].substr(
                registration->size()),
            "|-apps");
  EXPECT_EQ(std::count(registration, tools.end(), "/usr/bin/xattr"), 0) << "packages come before, hosts after";
  EXPECT_EQ(std::count(tools.begin(), registration, "/usr/bin/xattr"), 2);
  EXPECT_EQ((Paths{tools.end() - 4, tools.end()}),
            (Paths{"/bin/rm", "/usr/bin/touch", "/usr/sbin/chown", "/usr/sbin/chmod"}))
      << "the log comes last";
}

TEST_F(InstallSequenceTest, MovesOnByItselfFromThePage) {
  bool wasInProgress = true;
  main_.onNextView = [&] { wasInProgress = !controller_.enableForward(); };
  machine_.authorizations.beforeLaunch = [&](const std::string&) {
    EXPECT_FALSE(controller_.enableForward() || controller_.enableBackward() || controller_.canProceed(1));
  };
  enter();
  EXPECT_FALSE(wasInProgress);
  EXPECT_FALSE(view_->isHidden);
  EXPECT_TRUE(controller_.successfulInstall());
  EXPECT_EQ(model_->informativeText(), "Done");
  EXPECT_EQ(model_->mainLabelText(), "Installing Corvane");
  EXPECT_EQ(controller_.installedPaths()[1], "/Library/Adobe/Dunmore.lrplugin") << "Lightroom is selected";
  EXPECT_TRUE(
      main_.announced.starts_with("+enableForward +enableBackward +canProceed +copyInProgress -enableForward "
                                  "-enableBackward -canProceed -copyInProgress +informativeText +mainLabelText "
                                  "-informativeText -mainLabelText "))
      << main_.announced.substr(0, 200);
  EXPECT_TRUE(
      main_.announced.ends_with("+successfulInstall +informativeText +mainLabelText -informativeText "
                                "-mainLabelText +enableForward +enableBackward +canProceed +copyInProgress "
                                "-enableForward -enableBackward -canProceed -copyInProgress next "
                                "-successfulInstall "));

  controller_.didProceed(1);
  EXPECT_TRUE(view_->isHidden);
  EXPECT_TRUE(controller_.successfulInstall());
  main_.announced.clear();
  enter(-1);
  EXPECT_EQ(main_.announced, "") << "nothing is installed on the way back";
  controller_.didProceed(-1);
  EXPECT_FALSE(controller_.successfulInstall());
}

TEST_F(InstallSequenceTest, NeedsRights) {
  machine_.authorizations.canBeObtained = false;
  enter();
  EXPECT_TRUE(machine_.authorizations.launches.empty());
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_EQ(machine_.log.lines, (Paths{"SFAuthorization permit with rights error"}));
  EXPECT_EQ(model_->informativeText(), "Done");
  EXPECT_NE(main_.announced.find("next"), std::string::npos);

  machine_.authorizations.canBeObtained = true;
  enter();
  EXPECT_TRUE(controller_.successfulInstall()) << "tried again with everything cleared";
  EXPECT_EQ(machine_.authorizations.obtained, 2);
}

TEST_F(InstallSequenceTest, EndsInFailureWhenTheUserCancels) {
  machine_.authorizations.statusOfTool["/usr/sbin/chown"] = -60006;
  enter();
  EXPECT_TRUE(controller_.authDenied());
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_EQ(controller_.installedPaths(), Paths());
  EXPECT_FALSE(fs::exists(machine_.onVolume("/Applications/Adobe Photoshop CS6/Plug-Ins/c")));
  EXPECT_EQ(machine_.authorizations.launchesOf("/usr/bin/xattr").size(), 2U) << "the packages are still gone through";
  EXPECT_TRUE(fs::exists(machine_.onVolume("/Library/Application Support/Corvane/Dunmore 3")))
      << "and their folders made";
  EXPECT_EQ(log(), "(no such file)");
}

TEST_F(InstallSequenceTest, ServesNoFurtherHostAfterAFailure) {
  writeFile(machine_.onVolume("/Applications/Adobe Photoshop CS6/Plug-Ins/c"), "old");
  machine_.files.fail(Call::replaceItem, std::errc::io_error);
  enter();
  EXPECT_TRUE(controller_.fileOpErrorOccurred());
  EXPECT_FALSE(controller_.successfulInstall());
  EXPECT_FALSE(fs::exists(machine_.onVolume(machine_.home() + "/Library/Application Support/Adobe/Lightroom/d")));
  EXPECT_NE(log().find("/Applications/Studio.app\n"), std::string::npos) << "what was installed is logged";
  EXPECT_EQ(machine_.toolkit.alerts.size(), 1U);
}

TEST_F(InstallSequenceTest, ReplacesTheLogAndKeepsItWhenThereIsNothingToLog) {
  controller_.install({photoshop_}, false);
  const std::string first = log();
  controller_.install({}, false);
  EXPECT_EQ(log() + "/Applications/Adobe Photoshop CS6/Plug-Ins/c\n", first);
  fs::remove_all(machine_.payload(""));
  controller_.install({photoshop_}, false);
  EXPECT_EQ(log() + "/Applications/Adobe Photoshop CS6/Plug-Ins/c\n", first);
}

TEST_F(InstallSequenceTest, TouchesNoOtherMakersFoldersWithoutItsName) {
  writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"), "");
  writeFile(machine_.onVolume("/Library/Application Support/Corvane/Dunmore 3/mine"), "mine");
  writeFile(machine_.onVolume(machine_.home() + "/Library/Application Support/Other/manifest.xml"), "theirs");
  controller_.install({photoshop_}, true);
  EXPECT_EQ(readFile(machine_.onVolume("/Library/Application Support/Corvane/Dunmore 3/mine")), "mine");
  EXPECT_EQ(readFile(machine_.onVolume(machine_.home() + "/Library/Application Support/Other/manifest.xml")), "theirs");
  EXPECT_EQ(readFile(machine_.onVolume("/Applications/Adobe Photoshop CS6/Plug-Ins/c")), "c") << "the rest goes on";
}

}  // namespace
