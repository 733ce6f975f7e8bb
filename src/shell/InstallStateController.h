// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "foundation/NotificationCenter.h"

class SetupMainController;
class SetupStepController;

/// Posted after every change of state, by the controller that changed; "oldState" of the user info is the state before.
inline constexpr std::string_view stateDidChangeNotification = "stateDidChange";
inline constexpr std::string_view oldStateKey = "oldState";

/// The wizard's steps, by their numbers.
namespace step {
inline constexpr std::int32_t none = -1;  ///< before the first one, and after quitting
inline constexpr std::int32_t license = 0;
inline constexpr std::int32_t hosts = 1;
inline constexpr std::int32_t runningHosts = 2;
inline constexpr std::int32_t installation = 3;
inline constexpr std::int32_t completion = 4;
inline constexpr std::int32_t finished = 5;
/// Of a page that follows the installation where the maker wants it; the completion and the end are one further then.
inline constexpr std::int32_t aperture = 4;
}  // namespace step

/// Which step is showing. The state is changed before its change is posted, and observers may change it again while
/// they are told.
class InstallStateController {
 public:
  [[nodiscard]] static std::shared_ptr<InstallStateController> initWithInstallType(NotificationCenter& notifications,
                                                                                   std::int32_t type);

  [[nodiscard]] std::int32_t currentState() const { return currentState_; }

  /// Puts the page about Aperture between the installation and the completion.
  void insertAperturePage() { inserted_ = 1; }
  /// Whether the installation leads to that page. It leads past it otherwise.
  void setIsAperturePageDue(bool isDue) { isAperturePageDue_ = isDue; }
  [[nodiscard]] std::int32_t completionState() const { return step::completion + inserted_; }
  [[nodiscard]] std::int32_t finishedState() const { return step::finished + inserted_; }

  /// Goes to the first step; always tells of -1 as the state before.
  void gotoStartingState(SetupMainController* mainController);

  // Move on or back, unless the step that is left says no, or there is none to ask; then nothing happens.
  void advanceStateWithStepController(SetupStepController* stepController, SetupMainController* mainController);
  void retreatStateWithStepController(SetupStepController* stepController, SetupMainController* mainController);

 private:
  InstallStateController(NotificationCenter& notifications, std::int32_t type)
      : notifications_(notifications), installType_(type) {}

  void changeState(std::int32_t newState, std::int32_t oldState);

  NotificationCenter& notifications_;
  std::int32_t currentState_ = step::none;
  std::int32_t inserted_ = 0;
  bool isAperturePageDue_ = false;
  [[maybe_unused]] std::int32_t installType_;  ///< for a maker who has several
};
