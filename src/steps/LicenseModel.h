// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "contract/SetupStepModel.h"
#include "platform/Platform.h"

/// The licence agreement and the texts of its page.
class LicenseModel : public SetupStepModel {
 public:
  explicit LicenseModel(Platform& platform);

  /// The agreement as plain text; nothing when its file is missing, cannot be read or is not UTF-8.
  [[nodiscard]] const std::optional<std::string>& licenseText() const { return licenseText_; }
  [[nodiscard]] std::optional<std::string> mainLabelText() const override { return mainLabelText_; }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  /// Empty: the agreement takes its place.
  [[nodiscard]] RichText informativeText() const override { return {}; }

 private:
  std::optional<std::string> licenseText_;
  std::string mainLabelText_;
  std::string stepIndicatorLabelText_;
};
