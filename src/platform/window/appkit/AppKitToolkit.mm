// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitToolkit.h"

#include <utility>

#include "platform/window/appkit/AppKitAlert.h"
#include "platform/window/appkit/AppKitInterface.h"
#include "platform/window/appkit/AppKitMenus.h"
#include "platform/window/appkit/AppKitOpenPanel.h"
#include "platform/window/appkit/AppKitPicture.h"

AlertAnswer AppKitToolkit::askAlert(const Alert& alert, const Picture& picture) {
  return ::askAlert(alert, windows_.frontWindow(), picture);
}

std::optional<std::string> AppKitToolkit::runOpenPanel(const OpenPanel& panel) {
  return askForFolder(panel, volumeRoot_, windows_.frontWindow());
}

Result<std::unique_ptr<Interface>> AppKitToolkit::loadInterface(const std::string& name, InterfaceOwner& owner) {
  const auto bytes = readDescription(name);
  if (!bytes) return bytes.error();
  auto description = parseInterfaceFile(*bytes);
  if (!description) return unusable(name, description.error().reason());
  if (bundle().localizedString("layout_direction") == "rightToLeft") mirror(*description);
  @autoreleasepool {
    BuiltInterface built = buildInterface(*description);
    if (built.top.get() == nil) return unusable(name, "there is nothing in it");
    if (NSMenu* const menu = built.menu.get()) {
      addStandardMenus(menu, [&](const char* key) { return toObject(bundle().localizedString(key)); });
      [NSApp setMainMenu:menu];
    }
    auto made = std::make_unique<AppKitInterface>(
        std::move(built), windows_, owner,
        BindingServices{.interfaceName = name,
                        .log = services().log,
                        .performOwnAction = [this](const std::string& action) { return performOwnAction(action); },
                        .catchUpAfter = {}},
        InterfaceResources{.bundle = bundle(),
                           .imageNamed = [this](const std::string& picture) { return imageNamed(picture); }});
    // With the texts in it: frames are right before the window is shown.
    id const top = made->built().top.get();
    layOutAround([top isKindOfClass:[NSWindow class]] ? [(NSWindow*)top contentView] : (NSView*)top);
    return std::unique_ptr<Interface>(std::move(made));
  }
}

Picture AppKitToolkit::readPicture(const std::string& path, const std::string& /*meaning*/) {
  return ::readPicture(services().files, path);
}

void AppKitToolkit::hide() { [NSApp hide:nil]; }

void AppKitToolkit::run() {
  @autoreleasepool {
    windows_.run();
  }
}
