// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/window/WindowModule.h"
#include "platform/window/appkit/AppKitWindows.h"

/// Talks to the person through windows of this system's own.
class AppKitToolkit : public Toolkit {
 public:
  /// `volumeRoot` is the target volume's folder on this system.
  AppKitToolkit(const WindowServices& services, std::string volumeRoot)
      : services_(services), volumeRoot_(std::move(volumeRoot)) {}

  AlertAnswer runAlertPanel(const Alert& alert) override;
  std::optional<std::string> runOpenPanel(const OpenPanel& panel) override;
  /// From NAME.ui in the bundle's resources, which Qt's Designer writes; docs/making-an-installer.md says more.
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) override;
  /// From NAME.icns, NAME.tiff or NAME.png of the bundle's resources.
  Picture imageNamed(const std::string& name) override;
  Picture imageWithContentsOfFile(const std::string& path) override;
  void setApplicationDelegate(ApplicationDelegate* delegate) override { windows_.setDelegate(delegate); }
  void run() override;

 private:
  /// What every application does: "quit:", "hide:" and "about:". False for anything else.
  bool performOwnAction(const std::string& action);
  void showAbout();

  WindowServices services_;
  std::string volumeRoot_;
  AppKitWindows windows_;
  std::map<std::string, Picture> pictures_;  ///< that were asked for by name
};
