// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "contract/SetupStepModel.h"
#include "platform/Toolkit.h"

class SetupMainController;

/// What every page of the wizard does.
class SetupStepController {
 public:
  SetupStepController() = default;
  SetupStepController(const SetupStepController&) = delete;
  SetupStepController& operator=(const SetupStepController&) = delete;
  virtual ~SetupStepController() = default;

  /// Whether the forward and back buttons are enabled.
  [[nodiscard]] virtual bool enableForward() const = 0;
  [[nodiscard]] virtual bool enableBackward() const = 0;

  /// Asked before the page is left, +1 forward or -1 back; false keeps the wizard where it is.
  [[nodiscard]] virtual bool canProceed(std::int32_t direction) = 0;

  /// The page has been left; `delta` is the new step number minus the old one.
  virtual void didProceed(std::int32_t delta) = 0;

  /// The page is entered. It holds model and view until it is left, and only refers to the main controller, which may
  /// be asked for the next page from in here.
  virtual void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                 SetupMainController* withMainController, std::int32_t direction) = 0;
};

/// What a page that has buttons of its own does besides.
class SetupStepButtons {
 public:
  SetupStepButtons() = default;
  SetupStepButtons(const SetupStepButtons&) = delete;
  SetupStepButtons& operator=(const SetupStepButtons&) = delete;
  virtual ~SetupStepButtons() = default;

  /// A button of the page was pressed; `sender` is its name.
  virtual void buttonPressed(const std::string& sender) = 0;

  /// Asked before the wizard goes back. True when the page has used the press itself, and the wizard stays.
  [[nodiscard]] virtual bool overrideBackButton(const std::string& sender) = 0;
};
