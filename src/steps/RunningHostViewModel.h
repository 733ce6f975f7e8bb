// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "contract/SetupStepModel.h"
#include "platform/InterfaceOwner.h"
#include "platform/Platform.h"

/// The texts of the page that waits for an application to quit. It announces "informativeText" on itself whenever that
/// text changes, and shows it under that key.
class RunningHostViewModel : public SetupStepModel, public InterfaceOwner {
 public:
  /// A page that cannot be read says "nil", and the log says why.
  explicit RunningHostViewModel(Platform& platform);

  /// Names the application that is to be quit, and the product, in the texts. A text without a place for its name is
  /// left as it was, which is empty at first: only what has been filled in is shown.
  void setHostName(const std::string& hostName);

  [[nodiscard]] bool hostIsRunning() const { return hostRunning_; }
  void setHostIsRunning(bool running);

  [[nodiscard]] std::optional<std::string> mainLabelText() const override {
    return hostRunning_ ? mainLabelText_ : thankYou_;
  }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  [[nodiscard]] RichText informativeText() const override { return hostRunning_ ? runningText_ : notRunningText_; }

  [[nodiscard]] std::optional<ShownValue> shownValue(std::string_view key) const override;

 private:
  Platform& platform_;
  bool hostRunning_ = false;
  std::string mainLabelText_;
  std::string stepIndicatorLabelText_;
  RichText runningText_;
  RichText notRunningText_;
  RichText runningFormatString_;
  RichText notRunningFormatString_;
  std::string thankYou_;
};
