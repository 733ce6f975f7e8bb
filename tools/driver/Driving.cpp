// SPDX-License-Identifier: Apache-2.0

#include "Driving.h"

#include <unistd.h>

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTimer>
#include <QWindow>
#include <iostream>

namespace {

constexpr int longestWait = 20'000;

/// Presses with the mouse at the start of the button, where a check box has its box. What lies over it gets the press.
void click(const QAbstractButton& button) {
  QWidget* const top = button.window();
  const QPointF place = button.mapTo(top, QPoint(button.height() / 2, button.height() / 2));
  const QPointF onScreen = top->mapToGlobal(place);
  const auto send = [window = top->windowHandle()](QEvent::Type type, const QPointF& at, const QPointF& global,
                                                   Qt::MouseButton pressed, Qt::MouseButtons held) {
    QMouseEvent event(type, at, global, pressed, held, Qt::NoModifier);
    QApplication::sendEvent(window, &event);
  };
  // The pointer comes from elsewhere, as a person's does who means this button.
  send(QEvent::MouseMove, QPointF(-10, -10), top->mapToGlobal(QPointF(-10, -10)), Qt::NoButton, Qt::NoButton);
  send(QEvent::MouseButtonPress, place, onScreen, Qt::LeftButton, Qt::LeftButton);
  send(QEvent::MouseButtonRelease, place, onScreen, Qt::LeftButton, Qt::NoButton);
}

void actWhenShown(const std::string& name, const std::function<void(QWidget&)>& act, const QElapsedTimer& since) {
  auto* const shown = shownWidget<QWidget>(name.c_str());
  if (shown != nullptr && shown->isEnabled()) return act(*shown);
  if (since.hasExpired(longestWait)) giveUp(name.c_str());
  QTimer::singleShot(1, qApp, [=] { actWhenShown(name, act, since); });
}

}  // namespace

void giveUp(const char* waitedFor) {
  std::cerr << "driver: gave up waiting for " << waitedFor << '\n';
  ::_exit(70);
}

void waitUntil(const char* condition, const std::function<bool()>& holds) {
  QElapsedTimer since;
  since.start();
  while (!holds()) {
    if (since.hasExpired(longestWait)) giveUp(condition);
    QApplication::processEvents(QEventLoop::AllEvents, 10);
    ::usleep(500);
  }
  // What has ended the loop around this one may have been among the events.
  QApplication::eventDispatcher()->wakeUp();
}

void waitForPage(const char* widget) {
  waitUntil(widget, [widget] { return shownWidget<QWidget>(widget) != nullptr; });
}

void press(const char* button) {
  waitUntil(button, [button] {
    const auto* const shown = shownWidget<QAbstractButton>(button);
    return shown != nullptr && shown->isEnabled();
  });
  click(*shownWidget<QAbstractButton>(button));
}

void whenShown(const std::string& widget, const std::function<void(QWidget&)>& act) {
  QElapsedTimer since;
  since.start();
  QTimer::singleShot(0, qApp, [=] { actWhenShown(widget, act, since); });
}

void pressLater(const char* button, const std::function<void()>& before) {
  whenShown(button, [before](QWidget& shown) {
    before();
    if (const auto* const pressed = qobject_cast<QAbstractButton*>(&shown)) click(*pressed);
  });
}

void chooseLater(const std::string& folder, const std::function<void()>& before) {
  whenShown("path", [=](QWidget& path) {
    before();
    static_cast<QLineEdit&>(path).setText(QString::fromStdString(folder));
    press("choose");
  });
}

void agreeToLicence(const std::function<void()>& beforeAgreeing) {
  waitForPage("licenseView");
  pressLater("defaultButton", beforeAgreeing);
  press("forwardButton");
}
