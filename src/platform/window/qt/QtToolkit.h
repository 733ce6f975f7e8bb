// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/window/WindowToolkit.h"
#include "platform/window/qt/QtViews.h"
#include "platform/window/qt/QtWindows.h"

class QUiLoader;

/// Talks to the person through windows of Qt's. There must be a QApplication as long as this lives.
class QtToolkit : public WindowToolkit {
 public:
  explicit QtToolkit(const WindowServices& services);
  ~QtToolkit() override;
  QtToolkit(const QtToolkit&) = delete;
  QtToolkit& operator=(const QtToolkit&) = delete;

  std::optional<std::string> runOpenPanel(const OpenPanel& panel) override;
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) override;
  void setApplicationDelegate(ApplicationDelegate* delegate) override { windows_.setDelegate(delegate); }
  void run() override;

 private:
  AlertAnswer askAlert(const Alert& alert, const Picture& picture) override;
  Picture readPicture(const std::string& path, const std::string& meaning) override;
  void quit() override { windows_.closeAll(); }
  void hide() override { windows_.hideAll(); }

  std::shared_ptr<QtViews> views_ = std::make_shared<QtViews>();
  QtWindows windows_;
  std::unique_ptr<QUiLoader> loader_;
};
