// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Platform.h"

/// A row of the step list: a dot and the step's label, highlighted for the step that is showing.
class StepIndicator : public InterfaceOwner {
 public:
  /// Null when the row's interface description cannot be loaded.
  [[nodiscard]] static std::shared_ptr<StepIndicator> init(Platform& platform);

  /// Of the row; 0 when its view is missing.
  [[nodiscard]] float height() const;

  /// Puts the row into the parent, as wide as that, with its lower left corner at the point, and not highlighted.
  void placeInParentView(const std::shared_ptr<View>& parent, Point placement);

  /// Nothing leaves the label as it is.
  void setText(const std::optional<std::string>& text);
  void setCurrentStep(bool isCurrent);
  /// What a screen reader says of the step: that it is done, say.
  void setDescription(const std::string& description);

 private:
  StepIndicator() = default;

  std::unique_ptr<Interface> interface_;
  std::shared_ptr<View> stepIndicatorView_;
  std::shared_ptr<ImageView> indicator_;
  std::shared_ptr<TextField> label_;
  Picture dotBlue_;
  Picture dotGray_;
};
