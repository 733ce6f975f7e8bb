// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>

#include "steps/PageController.h"

/// The last page, which tells how the installation went. There is no way back from it.
class RegisterController : public PageController {
 public:
  [[nodiscard]] bool enableBackward() const override { return false; }

  /// Asks the wizard anew each time whether the installation succeeded. The model is a RegisterModel.
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;
};
