// SPDX-License-Identifier: Apache-2.0

// Scroll bars and progress.
#include <QFrame>
#include <QStyle>
#include <algorithm>

#include "platform/window/qt/QtStyleDrawing.h"

namespace {

/// What is behind the scroll bar: a view with a quiet frame lets the window through.
QPalette::ColorRole groundOf(const QWidget* bar) {
  const QWidget* const holder = bar != nullptr ? bar->parentWidget() : nullptr;
  const auto* const view = holder != nullptr ? qobject_cast<const QFrame*>(holder->parentWidget()) : nullptr;
  return view != nullptr && view->frameShape() == QFrame::Panel ? QPalette::Window : QPalette::Base;
}

}  // namespace

QRect sliderOf(const QStyleOptionSlider& bar) {
  const bool isUpright = bar.orientation == Qt::Vertical;
  const int room = isUpright ? bar.rect.height() : bar.rect.width();
  const int range = bar.maximum - bar.minimum;
  const int length =
      range <= 0 ? room : std::clamp(room * bar.pageStep / (range + bar.pageStep), 28, std::max(28, room));
  const int start =
      QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition, room - length, bar.upsideDown);
  return isUpright ? QRect(bar.rect.x(), bar.rect.y() + start, bar.rect.width(), length)
                   : QRect(bar.rect.x() + start, bar.rect.y(), length, bar.rect.height());
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& bar, const QWidget* widget) {
  painter.fillRect(bar.rect, bar.palette.color(groundOf(widget)));
  if (bar.minimum == bar.maximum) return;
  const bool isHeld = bar.state.testFlag(QStyle::State_Sunken) || bar.state.testFlag(QStyle::State_MouseOver);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(withAlpha(bar.palette.color(QPalette::WindowText), isHeld ? 0.5 : 0.28));
  painter.drawRoundedRect(QRectF(sliderOf(bar)).adjusted(2, 2, -2, -2), 3.5, 3.5);
}

void drawProgress(QPainter& painter, const QStyleOptionProgressBar& bar) {
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF track = bar.rect;
  track = QRectF(track.left(), track.center().y() - 3, track.width(), 6);
  painter.setPen(Qt::NoPen);
  painter.setBrush(withAlpha(bar.palette.color(QPalette::WindowText), 0.14));
  painter.drawRoundedRect(track, 3, 3);
  const double range = bar.maximum - bar.minimum;
  if (range <= 0 || bar.progress <= bar.minimum) return;
  const double share = (bar.progress - bar.minimum) / range;
  QRectF done = track;
  done.setWidth(std::max(6.0, track.width() * share));
  if (bar.direction == Qt::RightToLeft) done.moveRight(track.right());
  painter.setBrush(bar.palette.color(QPalette::Highlight));
  painter.drawRoundedRect(done, 3, 3);
}
