// SPDX-License-Identifier: Apache-2.0

#include "steps/ApertureRunModel.h"

#include "steps/PageResource.h"

ApertureRunModel::ApertureRunModel(Platform& platform)
    : platform_(platform), informativeText_(optionalRichTextResource(platform, "aperture")) {
  const Bundle& bundle = platform.bundles.mainBundle();
  stepIndicatorLabelText_ = bundle.localizedString("aperture_blue_dot");
  mainLabelText_ = bundle.localizedString("aperture_title");
}

Picture ApertureRunModel::backgroundImage() const {
  const std::string icon = platform_.workspace.iconFile("/Applications/Aperture.app");
  return icon.empty() ? nullptr : platform_.toolkit.imageWithContentsOfFile(icon);
}

std::optional<ShownValue> ApertureRunModel::shownValue(std::string_view key) const {
  if (key == "backgroundImage") return backgroundImage();
  return std::nullopt;
}
