// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtInputGuard.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QWidget>

namespace {

bool isReturn(const QKeyEvent& key) { return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter; }

/// Keys that do something, unlike those that move or type.
bool acts(const QKeyEvent& key, const QObject& receiver) {
  const auto* const line = qobject_cast<const QLineEdit*>(&receiver);
  const bool isTyped = key.key() == Qt::Key_Space && line != nullptr && !line->isReadOnly();
  return !isTyped &&
         (isReturn(key) || key.key() == Qt::Key_Space || key.key() == Qt::Key_Escape || key.key() == Qt::Key_Select);
}

/// Parts of the window, alerts and panels; not what only hovers over them.
bool isContent(const QWidget& widget) {
  return !widget.isWindow() || widget.windowType() == Qt::Window || widget.windowType() == Qt::Dialog;
}

}  // namespace

bool QtInputGuard::eventFilter(QObject* watched, QEvent* event) {
  auto* const widget = qobject_cast<QWidget*>(watched);
  auto* const button = qobject_cast<QAbstractButton*>(watched);
  const auto now = std::chrono::steady_clock::now();
  switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
      const QPointF place = static_cast<const QMouseEvent&>(*event).globalPosition();
      clicks_.pointerAt({place.x(), place.y()});
      isPressing_ = watched->isWindowType() && event->type() != QEvent::MouseMove;
      return button != nullptr && event->type() != QEvent::MouseMove && !clicks_.accepts(now);
    }
    case QEvent::Show:
      if (widget != nullptr && isContent(*widget) && !isPressing_) clicks_.contentChanged(now);
      break;
    case QEvent::Hide:
      if (widget != nullptr && widget->isWindow() && isContent(*widget)) clicks_.contentChanged(now);
      break;
    case QEvent::EnabledChange:
      if (button != nullptr && button->isEnabled() && !isPressing_) clicks_.contentChanged(now);
      break;
    case QEvent::KeyPress: {
      const auto& key = static_cast<const QKeyEvent&>(*event);
      if (widget == nullptr) break;
      if (key.isAutoRepeat() && acts(key, *watched)) return true;
      auto* const focused = qobject_cast<QPushButton*>(watched);
      if (focused == nullptr || !isReturn(key)) break;
      focused->click();
      return true;
    }
    default: break;
  }
  return QObject::eventFilter(watched, event);
}
