// SPDX-License-Identifier: Apache-2.0

#include "shell/StepIndicator.h"

#include <utility>

std::shared_ptr<StepIndicator> StepIndicator::init(Platform& platform) {
  const std::shared_ptr<StepIndicator> row(new StepIndicator);
  row->dotBlue_ = platform.toolkit.imageNamed("DotBlue");
  row->dotGray_ = platform.toolkit.imageNamed("DotGray");
  auto interface = platform.toolkit.loadInterface("Step Indicator", *row);
  if (!interface) {
    platform.log.write(interface.error().description());
    return nullptr;
  }
  row->interface_ = std::move(*interface);
  row->stepIndicatorView_ = row->interface_->view("stepIndicatorView");
  row->indicator_ = row->interface_->imageView("indicator");
  row->label_ = row->interface_->textField("label");
  return row;
}

float StepIndicator::height() const {
  return stepIndicatorView_ == nullptr ? 0.0F : static_cast<float>(stepIndicatorView_->frame().size.height);
}

void StepIndicator::placeInParentView(const std::shared_ptr<View>& parent, Point placement) {
  if (stepIndicatorView_ != nullptr) {
    const double width = parent == nullptr ? 0 : parent->frame().size.width;
    stepIndicatorView_->setFrame({placement, {width, stepIndicatorView_->frame().size.height}});
    if (parent != nullptr) parent->addSubview(stepIndicatorView_);
  }
  setCurrentStep(false);
}

void StepIndicator::setText(const std::optional<std::string>& text) {
  if (label_ != nullptr && text) label_->setStringValue(*text);
}

void StepIndicator::setCurrentStep(bool isCurrent) {
  if (indicator_ != nullptr) indicator_->setImage(isCurrent ? dotBlue_ : dotGray_);
  if (label_ != nullptr) label_->setFont(isCurrent, isCurrent ? TextColour::black : TextColour::grey);
}

void StepIndicator::setDescription(const std::string& description) {
  if (label_ != nullptr) label_->setDescription(description);
}
