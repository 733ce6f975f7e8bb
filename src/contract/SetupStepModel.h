// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "foundation/RichText.h"

/// The texts of one page of the wizard.
class SetupStepModel {
 public:
  SetupStepModel() = default;
  SetupStepModel(const SetupStepModel&) = delete;
  SetupStepModel& operator=(const SetupStepModel&) = delete;
  virtual ~SetupStepModel() = default;

  /// Heading above the page's content; nothing when it could not be made.
  [[nodiscard]] virtual std::optional<std::string> mainLabelText() const = 0;

  /// The page's row in the step list; read once.
  [[nodiscard]] virtual std::string stepIndicatorLabelText() const = 0;

  /// Body text.
  [[nodiscard]] virtual RichText informativeText() const = 0;
};
