#include "install/InstallFilesModel.h"

#include "foundation/Format.h"
#include "install/paths/InstallerTexts.h"

InstallFilesModel::InstallFilesModel(Platform& platform) {
  const Bundle& bundle = platform.bundles.mainBundle();
  mainLabelText_ = formatted(bundle.localizedString("copy_files_title"), companyName(platform));
  if (mainLabelText_.empty()) platform.log.write("can't create mainLabelText in InstallFilesModel init()");
  stepIndicatorLabelText_ = bundle.localizedString("copy_files_blue_dot");
  informativeText_ = bundle.localizedString("copy_files_text");
}
