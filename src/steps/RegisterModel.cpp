// SPDX-License-Identifier: Apache-2.0

#include "steps/RegisterModel.h"

#include "foundation/Format.h"
#include "payload/InstallerTexts.h"
#include "steps/PageResource.h"

RegisterModel::RegisterModel(Platform& platform)
    : platform_(platform), registerMessage_(optionalRichTextResource(platform, "register")) {
  const Bundle& bundle = platform.bundles.mainBundle();
  mainLabelText_ = bundle.localizedString("register_title");
  stepIndicatorLabelText_ = bundle.localizedString("register_blue_dot");
  failMessage_ = formatted(bundle.localizedString("install_failed"), shownCompanyName(platform));
  useRegisterText();
}

void RegisterModel::useRegisterText() {
  informativeText_ = registerMessage_;
  indicateFailure_ = false;
}

void RegisterModel::useFailText() {
  informativeText_ = RichText(failMessage_);
  indicateFailure_ = true;
}

Picture RegisterModel::backgroundImage() const {
  return platform_.toolkit.imageNamed(indicateFailure_ ? "Installer_Error" : "checkmark");
}

std::optional<ShownValue> RegisterModel::shownValue(std::string_view key) const {
  if (key == "backgroundImage") return backgroundImage();
  return std::nullopt;
}
