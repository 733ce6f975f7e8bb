// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "contract/SetupStepModel.h"
#include "platform/Platform.h"

/// Texts of the install page; the body text tells what is being done.
class InstallFilesModel : public SetupStepModel {
 public:
  explicit InstallFilesModel(Platform& platform);

  [[nodiscard]] std::optional<std::string> mainLabelText() const override { return mainLabelText_; }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  [[nodiscard]] RichText informativeText() const override { return RichText(informativeText_); }
  void setInformativeText(std::string text) { informativeText_ = std::move(text); }

 private:
  std::optional<std::string> mainLabelText_;
  std::string stepIndicatorLabelText_;
  std::string informativeText_;
};
