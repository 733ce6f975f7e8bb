#pragma once

#include <QApplication>
#include <QWidget>
#include <functional>

/// For a module that takes the place of the installer's Window.so, whose own lies beside it as RealWindow.so: the
/// program starts as ever and shows its real window, and the module sees all of it from inside and works it.
///
/// Defined by each such module; called when the application is there, and no window yet.
void startDriving();

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

/// Runs the event loop until the condition holds; ends the program, and says so, when it does not within 20 seconds.
void waitUntil(const char* condition, const std::function<bool()>& holds);

/// Presses the button as soon as it is shown and enabled, in whatever event loop is then running.
void pressLater(
    const char* button, const std::function<void()>& before = [] {});

/// Presses the forward button of the licence page and agrees to what is then asked.
void agreeToLicence(const std::function<void()>& beforeAgreeing = [] {});
