// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/window/qt/QtText.h"
#include "platform/window/qt/QtUserInterface.h"
#include "platform/window/qt/SampleOwner.h"
#include "support/TestMachine.h"

/// A machine whose window is a real one, on a screen that is nowhere. What a test does to a dialogue that waits it does
/// from a timer.
class WindowTest : public testing::Test {
 protected:
  [[nodiscard]] QtToolkit& toolkit() { return dynamic_cast<QtToolkit&>(interface_->toolkit()); }
  [[nodiscard]] RunLoop& loop() { return interface_->runLoop(); }

  /// Puts a description into the bundle.
  void describe(const std::string& name, const std::string& content) {
    writeFile(machine_.inBundle("Resources/" + name + ".ui"), content);
  }
  /// Loads a description that has to be there.
  std::unique_ptr<Interface> load(const std::string& name) {
    auto loaded = toolkit().loadInterface(name, owner_);
    if (!loaded) throw std::runtime_error(loaded.error().description());
    return std::move(*loaded);
  }
  /// Does this as soon as somebody waits in an event loop.
  template <class What>
  void meanwhile(What what) {
    QTimer::singleShot(0, qApp, std::move(what));
  }

 public:
  template <class Widget>
  static Widget* find(const char* name) {
    for (QWidget* const top : QApplication::topLevelWidgets()) {
      if (top->objectName() == name) return qobject_cast<Widget*>(top);
      if (auto* const found = top->findChild<Widget*>(name)) return found;
    }
    throw std::runtime_error(std::string("no widget named ") + name);
  }

 protected:
  TestMachine machine_;
  SampleOwner owner_;
  RecordingLog& log_ = machine_.log;

 private:
  std::unique_ptr<QtUserInterface> interface_ = make();

  std::unique_ptr<QtUserInterface> make() {
    std::string problem;
    auto made = QtUserInterface::make(
        {machine_.platform.files, machine_.platform.bundles, machine_.platform.user, machine_.log}, problem);
    if (made == nullptr) throw std::runtime_error(problem);
    return made;
  }
};
