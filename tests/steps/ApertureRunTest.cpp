#include <stdexcept>

#include "steps/ApertureRunController.h"
#include "steps/ApertureRunModel.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

class ApertureRunTest : public MachineTest {
 protected:
  ApertureRunTest() {
    writeFile(machine_.inBundle("Resources/en.lproj/aperture.rtf"), "{\\rtf1 Text}");
    writeFile(machine_.inBundle("Resources/en.lproj/Localizable.strings"),
              "aperture_title = Title; aperture_blue_dot = Row;");
    model_ = std::make_shared<ApertureRunModel>(platform_);
  }
  void addStandAlone(const std::string& name) {
    fs::create_directories(machine_.inBundle("SharedSupport/Standalone/" + name));
  }
  void enter() { controller_.didEnterWithModel(model_, view_, &main_, 1); }

  RecordingWorkspace& workspace_ = machine_.workspace;
  RecordingMainController main_;
  std::shared_ptr<ApertureRunModel> model_;
  std::shared_ptr<RecordingView> view_ = RecordingView::make();
  ApertureRunController controller_{platform_};
};

TEST_F(ApertureRunTest, RunsTheFirstApplicationForTwoSecondsEitherWay) {
  addStandAlone("Beta.app");
  addStandAlone("Alpha.app");
  std::size_t launchesWhileAsleep = 0;
  machine_.clock.whileSleeping = [&] {
    launchesWhileAsleep = workspace_.launches.size();
    EXPECT_FALSE(view_->isHidden);
  };
  for (const std::int32_t delta : {1, -1}) {
    workspace_.launches.clear();
    enter();
    controller_.didProceed(delta);
    EXPECT_EQ(workspace_.launches, (Paths{"/Applications/Alpha.app|-no-ui", "terminate"}));
    EXPECT_EQ(launchesWhileAsleep, 1U) << "it ends after the wait";
    EXPECT_EQ(machine_.clock.sleeps.back(), std::chrono::seconds(2));
    EXPECT_TRUE(view_->isHidden);
  }
}

TEST_F(ApertureRunTest, LeavesInSilenceWhenTheLaunchFails) {
  addStandAlone("Alpha.app");
  workspace_.canLaunch = false;
  enter();
  controller_.didProceed(1);
  EXPECT_EQ(workspace_.launches.size(), 1U);
  EXPECT_TRUE(machine_.clock.sleeps.empty() && log_.lines.empty() && view_->isHidden);
}

TEST_F(ApertureRunTest, NeedsAnApplicationToRun) {
  enter();
  EXPECT_THROW(controller_.didProceed(1), std::out_of_range);
}

}  // namespace
