// SPDX-License-Identifier: Apache-2.0

// Buttons, tick boxes and fields.
#include <QPainterPath>

#include "platform/window/qt/QtPalette.h"
#include "platform/window/qt/QtStyleDrawing.h"

namespace {

constexpr qreal radius = 5;

void drawRing(QPainter& painter, const QRectF& shape, const QPalette& palette, qreal corner, int width = ring) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(withAlpha(focusColour(palette), 0.85), width));
  painter.drawRoundedRect(shape.adjusted(-1, -1, 1, 1), corner + 1, corner + 1);
}

}  // namespace

QColor withAlpha(QColor colour, double alpha) {
  colour.setAlphaF(static_cast<float>(alpha));
  return colour;
}

QColor lineColour(const QPalette& palette) { return palette.color(QPalette::Mid); }

QColor focusColour(const QPalette& palette) { return palette.color(QPalette::Link); }

QRectF inside(const QRect& rect) { return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5); }

void drawButton(QPainter& painter, const QStyleOptionButton& button) {
  const QPalette& palette = button.palette;
  const bool isEnabled = button.state.testFlag(QStyle::State_Enabled);
  const bool isDown = button.state.testFlag(QStyle::State_Sunken);
  const bool isDefault = button.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled;
  const QRectF shape = inside(button.rect.adjusted(ring, ring, -ring, -ring));
  painter.setRenderHint(QPainter::Antialiasing);
  if (button.state.testFlag(QStyle::State_HasFocus) && isEnabled) drawRing(painter, shape, palette, radius);
  QColor face = palette.color(isDefault ? QPalette::Highlight : QPalette::Button);
  if (isDown) face = isDark(palette) && !isDefault ? face.lighter(125) : face.darker(115);
  if (!isEnabled) face = withAlpha(face, 0.5);
  painter.setPen(QPen(isDefault ? face.darker(112) : withAlpha(lineColour(palette), isEnabled ? 1 : 0.5), 1));
  painter.setBrush(face);
  painter.drawRoundedRect(shape, radius, radius);
}

void drawButtonLabel(QPainter& painter, const QStyleOptionButton& button) {
  const bool isEnabled = button.state.testFlag(QStyle::State_Enabled);
  const bool isDefault = button.features.testFlag(QStyleOptionButton::DefaultButton) && isEnabled;
  painter.setPen(button.palette.color(isEnabled ? QPalette::Active : QPalette::Disabled,
                                      isDefault ? QPalette::HighlightedText : QPalette::ButtonText));
  painter.drawText(button.rect, Qt::AlignCenter | Qt::TextShowMnemonic, button.text);
}

void drawTickBox(QPainter& painter, const QStyleOption& option) {
  const QPalette& palette = option.palette;
  const bool isTicked = option.state.testFlag(QStyle::State_On);
  const double strength = option.state.testFlag(QStyle::State_Enabled) ? 1 : 0.45;
  QRect box(0, 0, boxSize, boxSize);
  box.moveCenter(option.rect.center());
  const QRectF shape = inside(box);
  painter.setRenderHint(QPainter::Antialiasing);
  if (option.state.testFlag(QStyle::State_HasFocus)) drawRing(painter, shape, palette, 3, boxRing);
  const QColor accent = withAlpha(palette.color(QPalette::Highlight), strength);
  painter.setPen(QPen(isTicked ? accent.darker(112) : withAlpha(palette.color(QPalette::Dark), strength), 1));
  painter.setBrush(isTicked ? accent : palette.color(QPalette::Base));
  painter.drawRoundedRect(shape, 3, 3);
  if (!isTicked) return;
  QPainterPath tick;
  tick.moveTo(shape.left() + 3.2, shape.top() + 6.8);
  tick.lineTo(shape.left() + 5.6, shape.top() + 9.4);
  tick.lineTo(shape.left() + 10, shape.top() + 3.6);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(withAlpha(Qt::white, strength), 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(tick);
}

void drawField(QPainter& painter, const QStyleOption& option) {
  const QRectF shape = inside(option.rect.adjusted(0, ring, 0, -ring));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(option.palette.color(QPalette::Base));
  const bool hasFocus = option.state.testFlag(QStyle::State_HasFocus);
  painter.setPen(QPen(hasFocus ? focusColour(option.palette) : lineColour(option.palette), hasFocus ? 2 : 1));
  painter.drawRoundedRect(hasFocus ? shape.adjusted(0.5, 0.5, -0.5, -0.5) : shape, 4, 4);
}
