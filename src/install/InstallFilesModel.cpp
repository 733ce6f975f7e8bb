// SPDX-License-Identifier: Apache-2.0

#include "install/InstallFilesModel.h"

#include "foundation/Format.h"
#include "payload/InstallerTexts.h"

InstallFilesModel::InstallFilesModel(Platform& platform) {
  const Bundle& bundle = platform.bundles.mainBundle();
  const std::string title = formatted(bundle.localizedString("copy_files_title"), shownCompanyName(platform));
  if (!title.empty()) mainLabelText_ = title;
  if (!mainLabelText_) platform.log.write("can't create mainLabelText in InstallFilesModel init()");
  stepIndicatorLabelText_ = bundle.localizedString("copy_files_blue_dot");
  informativeText_ = bundle.localizedString("copy_files_text");
}
