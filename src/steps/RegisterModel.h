// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "contract/SetupStepModel.h"
#include "platform/InterfaceOwner.h"
#include "platform/Platform.h"

/// What the last page says: the success page, until it is told of a failure. Shows the key "backgroundImage", whose
/// changes are announced by who changes it.
class RegisterModel : public SetupStepModel, public InterfaceOwner {
 public:
  explicit RegisterModel(Platform& platform);

  [[nodiscard]] std::optional<std::string> mainLabelText() const override { return mainLabelText_; }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  [[nodiscard]] RichText informativeText() const override { return informativeText_; }

  void useRegisterText();
  void useFailText();

  /// A check mark, or an error picture after a failure.
  [[nodiscard]] Picture backgroundImage() const;

  [[nodiscard]] std::optional<ShownValue> shownValue(std::string_view key) const override;

 private:
  Platform& platform_;
  std::string mainLabelText_;
  std::string stepIndicatorLabelText_;
  RichText informativeText_;
  RichText registerMessage_;
  std::string failMessage_;
  bool indicateFailure_ = false;
};
