// SPDX-License-Identifier: Apache-2.0

#include <stdexcept>

#include "steps/ApertureRunController.h"
#include "steps/ApertureRunModel.h"
#include "support/RecordingMainController.h"
#include "support/TestMachine.h"

namespace {

using ApertureRunTest = MachineTest;

TEST_F(ApertureRunTest, RunsTheFirstApplicationForTwoSeconds) {
  RecordingWorkspace& workspace = machine_.workspace;
  RecordingMainController main;
  const auto view = std::make_shared<RecordingView>();
  ApertureRunController page(platform_);
  const auto leave = [&] {
    workspace.launches.clear();
    page.didEnterWithModel(std::make_shared<ApertureRunModel>(platform_), view, &main, 1);
    EXPECT_FALSE(view->isHidden);
    page.didProceed(1);
  };
  EXPECT_THROW(leave(), std::out_of_range) << "there has to be an application";
  for (const char* const name : {"Beta.app", "Alpha.app"}) {
    fs::create_directories(machine_.inBundle("SharedSupport/Standalone") / name);
  }
  std::size_t launchesWhileAsleep = 0;
  machine_.clock.whileSleeping = [&] { launchesWhileAsleep = workspace.launches.size(); };
  leave();
  EXPECT_EQ(workspace.launches, (Paths{"/Applications/Alpha.app|-no-ui", "terminate"}));
  EXPECT_EQ(launchesWhileAsleep, 1U) << "it ends after the wait";
  EXPECT_EQ(machine_.clock.sleeps, std::vector(1, std::chrono::microseconds(2'000'000)));
  EXPECT_TRUE(view->isHidden);
  workspace.canLaunch = false;
  leave();
  EXPECT_EQ(workspace.launches.size(), 1U);
  EXPECT_EQ(machine_.clock.sleeps.size(), 1U) << "there is nothing to wait for";
  EXPECT_TRUE(view->isHidden);
}

}  // namespace
