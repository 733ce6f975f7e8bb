// SPDX-License-Identifier: Apache-2.0

#include "HostTiles.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int tileSide = 128;

/// In a box of 30 by 46 points.
QPainterPath letter(char which) {
  QPainterPath path(QPointF(0, 46));
  path.lineTo(0, 0);
  switch (which) {
    case 'E':
      path.lineTo(26, 0);
      path.moveTo(0, 23);
      path.lineTo(22, 23);
      path.moveTo(0, 46);
      path.lineTo(26, 46);
      break;
    case 'H':
      path.moveTo(0, 23);
      path.lineTo(28, 23);
      path.moveTo(28, 0);
      path.lineTo(28, 46);
      break;
    case 'L':
      path.moveTo(0, 46);
      path.lineTo(25, 46);
      break;
    case 'P':
      path.lineTo(14, 0);
      path.arcTo(QRectF(1, 0, 26, 26), 90, -180);
      path.lineTo(0, 26);
      break;
    default: break;  // an upright stroke, as for "I"
  }
  return path;
}

double widthOf(char which) { return letter(which).boundingRect().width(); }

}  // namespace

QImage hostTile(const char* letters, const QColor& colour) {
  QImage image(tileSide, tileSide, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QLinearGradient body(0, 8, 0, 120);
  body.setColorAt(0, colour.lighter(118));
  body.setColorAt(1, colour.darker(112));
  painter.setBrush(body);
  painter.drawRoundedRect(QRectF(8, 8, 112, 112), 24, 24);

  constexpr double gap = 18;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.translate((tileSide - widthOf(letters[0]) - gap - widthOf(letters[1])) / 2, 41);
  painter.drawPath(letter(letters[0]));
  painter.translate(widthOf(letters[0]) + gap, 0);
  painter.drawPath(letter(letters[1]));
  return image;
}
