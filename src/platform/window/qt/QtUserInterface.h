// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QApplication>
#include <memory>
#include <string>

#include "platform/window/WindowModule.h"
#include "platform/window/qt/QtInputGuard.h"
#include "platform/window/qt/QtMessages.h"
#include "platform/window/qt/QtRunLoop.h"
#include "platform/window/qt/QtToolkit.h"

/// The window's side of the program. One at a time.
class QtUserInterface : public UserInterface {
 public:
  /// Null, and the problem, when no window can be had.
  [[nodiscard]] static std::unique_ptr<QtUserInterface> make(const WindowServices& services, std::string& problem);

  [[nodiscard]] DescriptorRunLoop& runLoop() override { return runLoop_; }
  [[nodiscard]] Toolkit& toolkit() override { return *toolkit_; }

 private:
  explicit QtUserInterface(const WindowServices& services);

  QtMessages messages_;
  // Qt keeps references to both.
  int argumentCount_ = 1;
  char name_[10] = "Installer";
  char* arguments_[2] = {name_, nullptr};
  QApplication application_{argumentCount_, arguments_};
  QtRunLoop runLoop_;
  QtInputGuard inputGuard_;
  std::unique_ptr<QtToolkit> toolkit_;
};
