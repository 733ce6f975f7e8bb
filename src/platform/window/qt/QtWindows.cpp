// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtWindows.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <utility>

namespace {

class QtWindow : public Window {
 public:
  QtWindow(QWidget& widget, QtWindows& windows) : widget_(&widget), windows_(windows) {}

  void centre() override {
    if (widget_ == nullptr) return;
    const QRect screen = widget_->screen()->availableGeometry();
    widget_->move(screen.center() - QPoint(widget_->width() / 2, widget_->height() / 2));
    windows_.show(*widget_);
  }
  void close() override {
    if (widget_ != nullptr) windows_.closeWithoutAsking(*widget_);
  }

 private:
  QPointer<QWidget> widget_;
  QtWindows& windows_;
};

/// The return key presses the window's default button wherever the keyboard is, unless a control has use for it.
bool pressDefaultButton(const QWidget& window) {
  for (QPushButton* const button : window.findChildren<QPushButton*>()) {
    if (!button->isDefault() || !button->isVisible()) continue;
    if (button->isEnabled()) button->click();
    return true;
  }
  return false;
}

bool openMenus(const QWidget& window) {
  auto* const bar = window.findChild<QMenuBar*>();
  if (bar == nullptr || bar->actions().isEmpty()) return false;
  bar->setFocus(Qt::MenuBarFocusReason);
  bar->setActiveAction(bar->actions().front());
  return true;
}

}  // namespace

std::shared_ptr<Window> QtWindows::windowOf(QWidget& widget) { return std::make_shared<QtWindow>(widget, *this); }

void QtWindows::show(QWidget& window) {
  if (shown_.insert(&window).second) {
    window.installEventFilter(this);
    connect(&window, &QObject::destroyed, this, [this, &window] {
      if (shown_.erase(&window) > 0) windowClosed();
    });
  }
  window.show();
  window.raise();
  window.activateWindow();
}

void QtWindows::closeWithoutAsking(QWidget& window) {
  const bool asked = std::exchange(asks_, false);
  // What is asked in the window has nobody to answer it any more.
  for (QDialog* const dialog : window.findChildren<QDialog*>()) dialog->reject();
  window.close();
  asks_ = asked;
}

void QtWindows::closeAll() {
  for (QWidget* const window : std::set(shown_)) window->close();
}

void QtWindows::hideAll() {
  for (QWidget* const window : shown_) window->showMinimized();
}

QWidget* QtWindows::frontWindow() const {
  QWidget* const active = QApplication::activeWindow();
  if (active != nullptr) return active;
  return shown_.empty() ? nullptr : *shown_.begin();
}

void QtWindows::run() {
  if (!hasEnded_ && !shown_.empty()) loop_.exec();
}

bool QtWindows::eventFilter(QObject* watched, QEvent* event) {
  auto* const window = qobject_cast<QWidget*>(watched);
  if (window == nullptr || !shown_.contains(window)) return QObject::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (isReturn && pressDefaultButton(*window)) return true;
    if (key.key() == Qt::Key_F10 && openMenus(*window)) return true;
  } else if (event->type() == QEvent::Close) {
    if (asks_ && delegate_ != nullptr && !delegate_->windowShouldClose()) {
      event->ignore();
      return true;
    }
    shown_.erase(window);
    window->removeEventFilter(this);
    window->disconnect(this);
    event->accept();
    window->hide();
    windowClosed();
    return true;
  }
  return QObject::eventFilter(watched, event);
}

void QtWindows::windowClosed() {
  if (!shown_.empty() || (delegate_ != nullptr && !delegate_->applicationShouldTerminateAfterLastWindowClosed()))
    return;
  hasEnded_ = true;
  loop_.quit();
}
