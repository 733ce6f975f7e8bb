#pragma once

#include <string>

#include "platform/Platform.h"
#include "shell/contract/SetupStepModel.h"

/// Texts of the install page; the body text tells what is being done.
class InstallFilesModel : public SetupStepModel {
 public:
  explicit InstallFilesModel(Platform& platform);

  [[nodiscard]] std::string mainLabelText() const override { return mainLabelText_; }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  [[nodiscard]] std::string informativeText() const override { return informativeText_; }
  void setInformativeText(std::string text) { informativeText_ = std::move(text); }

 private:
  std::string mainLabelText_;
  std::string stepIndicatorLabelText_;
  std::string informativeText_;
};
