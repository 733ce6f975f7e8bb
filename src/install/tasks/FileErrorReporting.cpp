// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/FileErrorReporting.h"

#include "foundation/Format.h"
#include "foundation/Text.h"
#include "install/InstallTexts.h"
#include "payload/InstallerTexts.h"

namespace {

const char* textOf(SkippedEntry::Reason reason) {
  switch (reason) {
    case SkippedEntry::Reason::hidden: return "it is hidden";
    case SkippedEntry::Reason::notPartOfProduct: return "it is in no bundle and in no folder of the product";
    case SkippedEntry::Reason::lightroomOnly: return "Lightroom was not selected";
    case SkippedEntry::Reason::noFileOrFolder: break;
  }
  return "it is neither a file nor a bundle";
}

}  // namespace

Alert fileErrorAlert(const Platform& platform, const std::string& errorText, const std::string& path) {
  const Bundle& bundle = platform.bundles.mainBundle();
  return fileErrorAlert(platform, formatted(bundle.localizedString("install_error_format_string"), errorText, path));
}

Alert fileErrorAlert(const Platform& platform, const std::string& message) {
  const Bundle& bundle = platform.bundles.mainBundle();
  return {.title = bundle.localizedString("install_error_title"),
          .message = message,
          .defaultButton = bundle.localizedString("install_error_proceed")};
}

Error errorWithText(const std::string& text) {
  return {.domain = "FileError", .userInfo = {{std::string(Error::localizedDescriptionKey), text}}};
}

std::string shortageText(const Platform& platform, const SpaceShortage& shortage) {
  const std::string format = platform.bundles.mainBundle().localizedString(
      "no_space", "There is not enough room: %1$@ are needed, %2$@ are available.", "Localizable");
  return formatted(format, sizeText(platform, shortage.required), sizeText(platform, shortage.available));
}

void logSkippedEntries(const Platform& platform, const InstallPlan& plan) {
  if (companyName(platform).empty()) {
    platform.log.write("The strings table has no company_name: product folders are not installed");
  }
  for (const SkippedEntry& entry : plan.skipped()) {
    platform.log.write(formatted("Not installed: %@ (%@)", entry.path, textOf(entry.reason)));
  }
}
