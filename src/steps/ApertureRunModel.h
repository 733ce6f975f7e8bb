// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "contract/SetupStepModel.h"
#include "platform/InterfaceOwner.h"
#include "platform/Platform.h"

/// The texts of the page about Aperture, and its icon, which is the key "backgroundImage".
class ApertureRunModel : public SetupStepModel, public InterfaceOwner {
 public:
  explicit ApertureRunModel(Platform& platform);

  [[nodiscard]] std::optional<std::string> mainLabelText() const override { return mainLabelText_; }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  [[nodiscard]] RichText informativeText() const override { return informativeText_; }

  /// Null when Aperture has no icon here.
  [[nodiscard]] Picture backgroundImage() const;

  [[nodiscard]] std::optional<ShownValue> shownValue(std::string_view key) const override;

 private:
  Platform& platform_;
  RichText informativeText_;
  std::string stepIndicatorLabelText_;
  std::string mainLabelText_;
};
