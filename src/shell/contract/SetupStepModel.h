#pragma once

#include <string>

/// The texts of one page of the wizard.
class SetupStepModel {
 public:
  SetupStepModel() = default;
  SetupStepModel(const SetupStepModel&) = delete;
  SetupStepModel& operator=(const SetupStepModel&) = delete;
  virtual ~SetupStepModel() = default;

  /// Heading above the page's content.
  [[nodiscard]] virtual std::string mainLabelText() const = 0;

  /// The page's row in the step list; read once.
  [[nodiscard]] virtual std::string stepIndicatorLabelText() const = 0;

  /// Body text.
  [[nodiscard]] virtual std::string informativeText() const = 0;
};
