// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPainter>
#include <QRect>
#include <QStyleOption>

// What QtStyle draws, by kind. Each function leaves the painter's pen, brush and hints changed.

/// Width of the ring around a button that has the focus; it lies within the button's rectangle.
constexpr int ring = 3;
/// Side of a tick box, without the ring around it.
constexpr int boxSize = 14;
constexpr int boxRing = 2;

QColor withAlpha(QColor colour, double alpha);
/// Of thin lines around controls.
QColor lineColour(const QPalette& palette);
/// Of what marks the control that has the focus.
QColor focusColour(const QPalette& palette);
/// Half a pixel inside, where a line of one pixel is sharp.
QRectF inside(const QRect& rect);

void drawButton(QPainter& painter, const QStyleOptionButton& button);
void drawButtonLabel(QPainter& painter, const QStyleOptionButton& button);
void drawTickBox(QPainter& painter, const QStyleOption& option);
void drawField(QPainter& painter, const QStyleOption& option);

void drawFrame(QPainter& painter, const QStyleOption& option);
/// A row of a list; its text keeps its colour when it is selected.
void drawRow(QPainter& painter, const QStyleOption& option);
/// A tree draws its rows in pieces, which have to meet.
void drawPieceOfRow(QPainter& painter, const QStyleOption& option);

/// Where the part of the scroll bar that is moved lies: there are no arrows, and it is never too short to be caught.
QRect sliderOf(const QStyleOptionSlider& bar);
void drawScrollBar(QPainter& painter, const QStyleOptionSlider& bar, const QWidget* widget);
void drawProgress(QPainter& painter, const QStyleOptionProgressBar& bar);
