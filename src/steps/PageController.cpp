// SPDX-License-Identifier: Apache-2.0

#include "steps/PageController.h"

#include <utility>

void PageController::didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                       SetupMainController* withMainController, std::int32_t /*direction*/) {
  model_ = std::move(model);
  view_ = std::move(withView);
  if (view_ != nullptr) view_->setHidden(false);
  mainController_ = withMainController;
}

void PageController::didProceed(std::int32_t /*delta*/) {
  model_.reset();
  if (view_ != nullptr) view_->setHidden(true);
  view_.reset();
}
