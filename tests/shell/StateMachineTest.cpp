// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "shell/InstallStateController.h"
#include "steps/PageController.h"

namespace {

struct Page : PageController {
  bool agrees = true;
  std::string asked;

  [[nodiscard]] bool canProceed(std::int32_t direction) override {
    asked += direction > 0 ? "+" : "-";
    return agrees;
  }
};

class StateMachineTest : public testing::Test {
 protected:
  NotificationCenter center_;
  std::shared_ptr<InstallStateController> state_ = InstallStateController::initWithInstallType(center_, 0);
  Page page_;
  std::string moves_;  ///< each change as "old>new "
  NotificationCenter::Observation observation_ =
      center_.addObserver(stateDidChangeNotification, state_.get(), [this](const Notification& notification) {
        const Value old = entryOf(Value(notification.userInfo), oldStateKey);
        moves_ += std::to_string(*old.as<std::int64_t>()) + ">" + std::to_string(state_->currentState()) + " ";
      });

  void advance() { state_->advanceStateWithStepController(&page_, nullptr); }
  void retreat() { state_->retreatStateWithStepController(&page_, nullptr); }
};

TEST_F(StateMachineTest, GoesForwardAndBack) {
  EXPECT_EQ(state_->currentState(), -1);
  state_->gotoStartingState(nullptr);
  for (int i = 0; i < 4; ++i) advance();
  retreat();
  for (int i = 0; i < 4; ++i) advance();
  EXPECT_EQ(moves_, "-1>0 0>1 1>2 2>3 3>4 4>1 1>2 2>3 3>4 4>5 ");
  moves_.clear();
  state_->gotoStartingState(nullptr);
  advance();
  retreat();
  retreat();
  EXPECT_EQ(moves_, "-1>0 0>1 1>0 0>-1 ") << "tells of -1 wherever it was";
}

TEST_F(StateMachineTest, LeadsOverOrPastTheInsertedPage) {
  state_->insertAperturePage();
  state_->gotoStartingState(nullptr);
  for (int i = 0; i < 4; ++i) advance();
  retreat();
  state_->setIsAperturePageDue(true);
  for (int i = 0; i < 3; ++i) advance();
  retreat();
  for (int i = 0; i < 5; ++i) advance();
  EXPECT_EQ(moves_, "-1>0 0>1 1>2 2>3 3>5 5>1 1>2 2>3 3>4 4>1 1>2 2>3 3>4 4>5 5>6 ");
  EXPECT_EQ(state_->currentState(), state_->finishedState());
}

TEST_F(StateMachineTest, StaysWhenThePageRefuses) {
  state_->gotoStartingState(nullptr);
  moves_.clear();
  page_.agrees = false;
  advance();
  retreat();
  state_->advanceStateWithStepController(nullptr, nullptr);
  state_->retreatStateWithStepController(nullptr, nullptr);
  EXPECT_EQ(moves_, "");
  EXPECT_EQ(page_.asked, "+-");
}

}  // namespace
