// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/window/WindowModule.h"
#include "platform/window/qt/QtViews.h"
#include "platform/window/qt/QtWindows.h"

class QUiLoader;

/// Talks to the person through windows of Qt's. There must be a QApplication as long as this lives.
class QtToolkit : public Toolkit {
 public:
  explicit QtToolkit(const WindowServices& services);
  ~QtToolkit() override;
  QtToolkit(const QtToolkit&) = delete;
  QtToolkit& operator=(const QtToolkit&) = delete;

  AlertAnswer runAlertPanel(const Alert& alert) override;
  std::optional<std::string> runOpenPanel(const OpenPanel& panel) override;
  /// From NAME.ui in the bundle's resources, which Qt's Designer writes; docs/making-an-installer.md says more.
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) override;
  /// From NAME.icns, NAME.tiff or NAME.png of the bundle's resources, in the user's language where there is one.
  Picture imageNamed(const std::string& name) override;
  Picture imageWithContentsOfFile(const std::string& path) override;
  void setApplicationDelegate(ApplicationDelegate* delegate) override { windows_.setDelegate(delegate); }
  void run() override;

 private:
  /// What every application does: "quit:", "hide:" and "about:". False for anything else.
  bool performOwnAction(const std::string& action);
  void showAbout();

  WindowServices services_;
  std::shared_ptr<QtViews> views_ = std::make_shared<QtViews>();
  QtWindows windows_;
  std::unique_ptr<QUiLoader> loader_;
  std::map<std::string, Picture> pictures_;  ///< that were asked for by name
};
