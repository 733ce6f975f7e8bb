// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>
#include <string>

#include "platform/Toolkit.h"
#include "platform/window/qt/QtBindings.h"
#include "platform/window/qt/QtViews.h"
#include "platform/window/qt/QtWindows.h"

/// What was made from one description. When it goes, so do its connections to its owner and what of it lies in no
/// other interface.
class QtInterface : public Interface {
 public:
  QtInterface(std::unique_ptr<QWidget> top, std::shared_ptr<QtViews> views, QtWindows& windows)
      : top_(top.release()), views_(std::move(views)), windows_(windows) {}
  ~QtInterface() override;
  QtInterface(const QtInterface&) = delete;
  QtInterface& operator=(const QtInterface&) = delete;

  void connectTo(InterfaceOwner& owner, BindingServices services, BindingResources resources);

  [[nodiscard]] std::shared_ptr<View> view(const std::string& name) const override;
  [[nodiscard]] std::shared_ptr<Window> window(const std::string& name) const override;

 private:
  [[nodiscard]] QWidget* widget(const std::string& name) const;

  QPointer<QWidget> top_;
  std::shared_ptr<QtViews> views_;
  QtWindows& windows_;
  std::unique_ptr<QtBindings> bindings_;
};
