// SPDX-License-Identifier: Apache-2.0

#include "platform/window/WindowToolkit.h"

#include "foundation/Format.h"
#include "foundation/Path.h"

namespace {

constexpr std::size_t largestDescription = std::size_t{4} << 20U;

}  // namespace

AlertAnswer WindowToolkit::runAlertPanel(const Alert& alert) {
  Alert shown = alert;
  if (shown.defaultButton.empty()) shown.defaultButton = bundle().localizedString("ok_button", "OK", "Localizable");
  if (shown.alternateButton && shown.alternateButton->empty()) {
    shown.alternateButton = bundle().localizedString("browse_cancel", "Cancel", "Localizable");
  }
  return askAlert(shown, imageNamed(alert.style == Alert::Style::warning ? "Caution" : "Installer"));
}

Picture WindowToolkit::imageNamed(const std::string& name) {
  const auto known = pictures_.find(name);
  if (known != pictures_.end()) return known->second;
  const std::string meaning = bundle().localizedString("picture_" + name);
  Picture picture;
  for (const char* const type : {"icns", "tiff", "png"}) {
    const auto path = bundle().pathForResource(name, type);
    if (picture == nullptr && path) picture = readPicture(*path, meaning);
  }
  return pictures_[name] = picture;
}

Result<std::string> WindowToolkit::readDescription(const std::string& name) const {
  return services_.files.readFile(joinPath(bundle().resourcePath(), name + ".ui"), largestDescription);
}

Error WindowToolkit::unusable(const std::string& name, std::string_view reason) {
  Error error = Error::posix(std::errc::invalid_argument, name);
  error.userInfo[std::string(Error::localizedDescriptionKey)] = formatted("Interface %@: %@", name, reason);
  return error;
}

bool WindowToolkit::performOwnAction(const std::string& action) {
  if (action == "quit:") {
    quit();
  } else if (action == "hide:") {
    hide();
  } else if (action == "about:") {
    showAbout();
  } else {
    return false;
  }
  return true;
}

void WindowToolkit::showAbout() {
  const std::string version = bundle().infoValue("CFBundleShortVersionString").text();
  const std::string copyright = bundle().infoValue("NSHumanReadableCopyright").text();
  runAlertPanel({.title = bundle().infoValue("CFBundleName").text(),
                 .message = formatted(bundle().localizedString("about_version_fmt"), version) +
                            (copyright.empty() ? "" : "\n" + copyright),
                 .defaultButton = bundle().localizedString("ok_button"),
                 .style = Alert::Style::informational});
}
