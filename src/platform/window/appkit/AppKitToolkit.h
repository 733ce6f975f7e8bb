// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/window/WindowToolkit.h"
#include "platform/window/appkit/AppKitWindows.h"

/// Talks to the person through windows of this system's own.
class AppKitToolkit : public WindowToolkit {
 public:
  /// `volumeRoot` is the target volume's folder on this system.
  AppKitToolkit(const WindowServices& services, std::string volumeRoot)
      : WindowToolkit(services), volumeRoot_(std::move(volumeRoot)) {}

  std::optional<std::string> runOpenPanel(const OpenPanel& panel) override;
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) override;
  void setApplicationDelegate(ApplicationDelegate* delegate) override { windows_.setDelegate(delegate); }
  void run() override;

 private:
  AlertAnswer askAlert(const Alert& alert, const Picture& picture) override;
  Picture readPicture(const std::string& path, const std::string& meaning) override;
  void quit() override { windows_.closeAll(); }
  void hide() override;

  std::string volumeRoot_;
  AppKitWindows windows_;
};
