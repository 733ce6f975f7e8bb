// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>

#include "contract/SetupMainController.h"
#include "contract/SetupStepController.h"

/// What the pages of this folder have in common: one can always go on and back, and the page shows its view from when
/// it is entered until it is left, which may happen within its entry.
class PageController : public SetupStepController {
 public:
  [[nodiscard]] bool enableForward() const override { return true; }
  [[nodiscard]] bool enableBackward() const override { return true; }
  [[nodiscard]] bool canProceed(std::int32_t /*direction*/) override { return true; }
  void didProceed(std::int32_t delta) override;
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;

 protected:
  [[nodiscard]] SetupMainController& mainController() const { return *mainController_; }

 private:
  SetupMainController* mainController_ = nullptr;  // not owned
  std::shared_ptr<SetupStepModel> model_;
  std::shared_ptr<View> view_;
};
