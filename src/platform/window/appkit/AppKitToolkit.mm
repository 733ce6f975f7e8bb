// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitToolkit.h"

#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "platform/window/appkit/AppKitAlert.h"
#include "platform/window/appkit/AppKitInterface.h"
#include "platform/window/appkit/AppKitMenus.h"
#include "platform/window/appkit/AppKitOpenPanel.h"
#include "platform/window/appkit/AppKitPicture.h"

namespace {

constexpr std::size_t largestDescription = std::size_t{4} << 20U;

Error unusable(const std::string& name, const std::string& why) {
  Error error = Error::posix(std::errc::invalid_argument, name);
  error.userInfo[std::string(Error::localizedDescriptionKey)] = formatted("Interface %@: %@", name, why);
  return error;
}

}  // namespace

AlertAnswer AppKitToolkit::runAlertPanel(const Alert& alert) {
  const char* const picture = alert.style == Alert::Style::warning ? "Caution" : "Installer";
  const Bundle& bundle = services_.bundles.mainBundle();
  Alert shown = alert;
  if (shown.defaultButton.empty()) shown.defaultButton = bundle.localizedString("ok_button", "OK", "Localizable");
  if (shown.alternateButton && shown.alternateButton->empty()) {
    shown.alternateButton = bundle.localizedString("browse_cancel", "Cancel", "Localizable");
  }
  return askAlert(shown, windows_.frontWindow(), imageNamed(picture));
}

std::optional<std::string> AppKitToolkit::runOpenPanel(const OpenPanel& panel) {
  return askForFolder(panel, volumeRoot_, windows_.frontWindow());
}

Result<std::unique_ptr<Interface>> AppKitToolkit::loadInterface(const std::string& name, InterfaceOwner& owner) {
  const Bundle& bundle = services_.bundles.mainBundle();
  const auto bytes = services_.files.readFile(joinPath(bundle.resourcePath(), name + ".ui"), largestDescription);
  if (!bytes) return bytes.error();
  const auto description = parseInterfaceFile(*bytes);
  if (!description) return unusable(name, description.error().reason());
  @autoreleasepool {
    BuiltInterface built = buildInterface(*description);
    if (built.top.get() == nil) return unusable(name, "there is nothing in it");
    if (NSMenu* const menu = built.menu.get()) {
      addStandardMenus(menu, [&](const char* key) { return toObject(bundle.localizedString(key)); });
      [NSApp setMainMenu:menu];
    }
    auto made = std::make_unique<AppKitInterface>(
        std::move(built), windows_, owner,
        BindingServices{.interfaceName = name,
                        .log = services_.log,
                        .performOwnAction = [this](const std::string& action) { return performOwnAction(action); },
                        .catchUpAfter = {}},
        InterfaceResources{.bundle = bundle,
                           .imageNamed = [this](const std::string& picture) { return imageNamed(picture); }});
    // With the texts in it: frames are right before the window is shown.
    id const top = made->built().top.get();
    layOutAround([top isKindOfClass:[NSWindow class]] ? [(NSWindow*)top contentView] : (NSView*)top);
    return std::unique_ptr<Interface>(std::move(made));
  }
}

Picture AppKitToolkit::imageNamed(const std::string& name) {
  const auto known = pictures_.find(name);
  if (known != pictures_.end()) return known->second;
  const std::string folder = services_.bundles.mainBundle().resourcePath();
  Picture picture;
  for (const char* const extension : {".icns", ".tiff", ".png"}) {
    if (picture == nullptr) picture = readPicture(services_.files, joinPath(folder, name + extension));
  }
  return pictures_[name] = picture;
}

Picture AppKitToolkit::imageWithContentsOfFile(const std::string& path) { return readPicture(services_.files, path); }

void AppKitToolkit::run() {
  @autoreleasepool {
    windows_.run();
  }
}

bool AppKitToolkit::performOwnAction(const std::string& action) {
  if (action == "quit:") {
    windows_.closeAll();
  } else if (action == "hide:") {
    [NSApp hide:nil];
  } else if (action == "about:") {
    showAbout();
  } else {
    return false;
  }
  return true;
}

void AppKitToolkit::showAbout() {
  const Bundle& bundle = services_.bundles.mainBundle();
  const std::string version = bundle.infoValue("CFBundleShortVersionString").text();
  const std::string copyright = bundle.infoValue("NSHumanReadableCopyright").text();
  runAlertPanel({.title = bundle.infoValue("CFBundleName").text(),
                 .message = formatted(bundle.localizedString("about_version_fmt"), version) +
                            (copyright.empty() ? "" : "\n" + copyright),
                 .defaultButton = bundle.localizedString("ok_button"),
                 .style = Alert::Style::informational});
}
