// SPDX-License-Identifier: Apache-2.0

// Frames and rows of lists.
#include "platform/window/qt/QtStyleDrawing.h"

namespace {

QColor selectionIn(const QStyleOption& option) {
  const bool isActive = option.state.testFlag(QStyle::State_Active);
  const QColor colour = option.palette.color(isActive ? QPalette::Highlight : QPalette::WindowText);
  return withAlpha(colour, isActive ? 0.2 : 0.1);
}

}  // namespace

void drawFrame(QPainter& painter, const QStyleOption& option) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(lineColour(option.palette), 1));
  painter.drawRect(inside(option.rect));
  if (!option.state.testFlag(QStyle::State_HasFocus)) return;
  painter.setPen(QPen(focusColour(option.palette), 2));
  painter.drawRect(QRectF(option.rect).adjusted(1, 1, -1, -1));
}

void drawRow(QPainter& painter, const QStyleOption& option) {
  painter.setRenderHint(QPainter::Antialiasing);
  if (option.state.testFlag(QStyle::State_HasFocus)) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(focusColour(option.palette), 1));
    painter.drawRoundedRect(inside(option.rect.adjusted(3, 1, -3, -1)), 4, 4);
  }
  if (!option.state.testFlag(QStyle::State_Selected)) return;
  painter.setBrush(selectionIn(option));
  painter.setPen(Qt::NoPen);
  painter.drawRoundedRect(QRectF(option.rect).adjusted(3, 1, -3, -1), 4, 4);
}

void drawPieceOfRow(QPainter& painter, const QStyleOption& option) {
  if (option.state.testFlag(QStyle::State_Selected)) painter.fillRect(option.rect, selectionIn(option));
}
