// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QApplication>
#include <QWidget>
#include <functional>
#include <string>

// Works the installer's window from inside its process, as a person would. What waits for something ends the process
// with a line on standard error when that does not come within 20 seconds.

/// What is shown under this name; null when there is nothing.
template <class Widget>
Widget* shownWidget(const char* name) {
  for (QWidget* const top : QApplication::topLevelWidgets()) {
    const auto all = top->findChildren<QWidget*>(name);
    for (QWidget* const widget : all + QWidgetList{top}) {
      if (widget->objectName() == name && widget->isVisible()) return qobject_cast<Widget*>(widget);
    }
  }
  return nullptr;
}

[[noreturn]] void giveUp(const char* waitedFor);

/// Runs the event loop until the condition holds.
void waitUntil(const char* condition, const std::function<bool()>& holds);
void waitForPage(const char* widget);

/// Presses the button with the mouse once it is shown and enabled.
void press(const char* button);

/// Does this as soon as the widget is shown and enabled, in whatever event loop is then running.
void whenShown(const std::string& widget, const std::function<void(QWidget&)>& act);
void pressLater(
    const char* button, const std::function<void()>& before = [] {});

/// Chooses the folder in the panel, as soon as that is shown.
void chooseLater(
    const std::string& folder, const std::function<void()>& before = [] {});

/// Presses the forward button of the licence page and agrees to what is then asked.
void agreeToLicence(const std::function<void()>& beforeAgreeing = [] {});
