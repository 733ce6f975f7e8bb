#include "shell/SetupController.h"
#include "support/TestMachine.h"

namespace {

using SetupControllerTest = MachineTest;

TEST_F(SetupControllerTest, ShowsPlaceholdersForWhatIsMissing) {
  fs::remove_all(machine_.inBundle("Resources/en.lproj"));
  SetupController bare(platform_);
  EXPECT_EQ(bare.mainLabelText(), "???");
  EXPECT_EQ(bare.goForwardText(), "can't find");
  EXPECT_EQ(bare.licenseText().string() + bare.registerText().string(), "nilnil");
  EXPECT_EQ(bare.informativeText().string(), "");
  EXPECT_FALSE(bare.enableForward() || bare.enableBackward());
  for (const char* const name : {"", "bogus", "goforwardtext"}) {
    EXPECT_THROW(static_cast<void>(bare.shownValue(name)), UnknownKey);
    EXPECT_THROW(bare.performAction(name, ""), UnknownKey);
  }
  bare.performAction("nextView:", "");  // there is no page to ask yet

  machine_.toolkit.missingInterfaces = {"MainWindow"};
  EXPECT_FALSE(bare.loadMainWindow());
  machine_.toolkit.missingInterfaces = {"Step Indicator", "CustomInstall"};
  ASSERT_TRUE(bare.loadMainWindow());
  EXPECT_EQ(bare.mainLabelText(), "");
  EXPECT_EQ(bare.getIndicatorForStep(0), nullptr);
}

/// Back from the completion leads to another choice of hosts. The page there does not let anybody go, so it is asked
/// of the states alone.
TEST_F(SetupControllerTest, LeadsBackFromTheCompletionToTheHosts) {
  const auto state = InstallStateController::initWithInstallType(platform_.notifications, 0);
  LicenseController willing(platform_);
  willing.sheetDidEnd(AlertAnswer::defaultButton);
  state->gotoStartingState(nullptr);
  for (int i = 0; i < 4; ++i) state->advanceStateWithStepController(&willing, nullptr);
  EXPECT_EQ(state->currentState(), step::completion);
  state->retreatStateWithStepController(&willing, nullptr);
  EXPECT_EQ(state->currentState(), step::hosts);
}

}  // namespace
