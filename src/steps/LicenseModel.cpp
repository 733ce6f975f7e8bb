// SPDX-License-Identifier: Apache-2.0

#include "steps/LicenseModel.h"

#include "foundation/Exception.h"
#include "foundation/Text.h"
#include "steps/PageResource.h"

LicenseModel::LicenseModel(Platform& platform) {
  try {
    licenseText_ = decodeUtf8(contentsOfResource(platform, "license", "txt"));
    if (licenseText_) {
      licenseText_ = platform.bundles.mainBundle().withNames(
          replacingOccurrences(replacingOccurrences(*licenseText_, "\r\n", "\n"), "\r", "\n"));
    }
  } catch (const Exception&) {
    // The page tells: it has no text.
  }
  const Bundle& bundle = platform.bundles.mainBundle();
  mainLabelText_ = bundle.localizedString("license_instructions");
  stepIndicatorLabelText_ = bundle.localizedString("license_blue_dot");
}
